#include "zelmresult/reading/labelled_result.h"

#include <algorithm>

namespace ZelmResult {

namespace {

const LabelledArray* Find(const std::vector<LabelledArray>& arrays, wstring_view name)
{
    const auto found =
        std::find_if(arrays.begin(), arrays.end(), [&](const LabelledArray& array) { return array.name == name; });
    return found != arrays.end() ? &*found : nullptr;
}

} // namespace

std::size_t LabelledArray::Size() const
{
    return std::visit([](const auto& held) { return held.size(); }, values);
}

const LabelledArray* LabelledResult::Coordinate(wstring_view name) const { return Find(coordinates, name); }

const LabelledArray* LabelledResult::Data(wstring_view name) const { return Find(data, name); }

const LabelledArray* LabelledResult::Axis(wstring_view dimension) const
{
    const auto isAlong = [&](const LabelledArray& array) {
        return array.dimensions.size() == 1 && array.dimensions.front() == dimension;
    };
    if (const LabelledArray* chosen = Coordinate(chosenReference); chosen != nullptr && isAlong(*chosen)) return chosen;
    const auto found = std::find_if(coordinates.begin(), coordinates.end(), [&](const LabelledArray& array) {
        return isAlong(array) && !array.isReference && array.Floats() != nullptr;
    });
    return found != coordinates.end() ? &*found : nullptr;
}

} // namespace ZelmResult
