#include "fuzz/laws.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <numeric>
#include <set>

namespace ZelmResult::fuzz {

namespace {

void CheckArrays(const std::vector<LabelledArray>& arrays)
{
    std::set<wstring> names;
    for (const LabelledArray& array : arrays) {
        const std::size_t size =
            std::accumulate(array.shape.begin(), array.shape.end(), std::size_t{1}, std::multiplies<>());
        Require(names.insert(array.name).second, "arrays have names of their own");
        Require(array.dimensions.size() == array.shape.size(), "each dimension has a size");
        Require(array.Size() == size, "an array has as many values as its shape says");
    }
}

// Whether the values are those at a place of a longer array; a NaN equals itself.
bool IsPartOf(const LabelledArray& part, const LabelledArray& whole, std::size_t index)
{
    return std::visit(
        [&](const auto& values) {
            using Values = std::remove_cvref_t<decltype(values)>;
            const auto& all = std::get<Values>(whole.values);
            const std::size_t first = index * values.size();
            if (first + values.size() > all.size()) return false;
            if constexpr (std::is_trivially_copyable_v<typename Values::value_type>)
                return values.empty() ||
                       std::memcmp(values.data(), all.data() + first, values.size() * sizeof values.front()) == 0;
            else
                return std::equal(values.begin(), values.end(), all.begin() + static_cast<std::ptrdiff_t>(first));
        },
        part.values);
}

void CheckSlice(const LabelledResult& slice, const LabelledResult& whole, std::size_t index)
{
    CheckArrays(slice.coordinates);
    CheckArrays(slice.data);
    Require(slice.data.size() == whole.data.size(), "a slice has the arrays of its waterfall");
    for (const LabelledArray& array : slice.data)
        Require(IsPartOf(array, *whole.Data(array.name), index), "a slice read alone is that of its waterfall");
    for (const LabelledArray& coordinate : slice.coordinates) {
        if (coordinate.name == u"slice") continue;
        const LabelledArray& all = *whole.Coordinate(coordinate.name);
        const bool isAlong = all.dimensions.front() == u"slice";
        Require(IsPartOf(coordinate, all, isAlong ? index : 0), "and so is what it stands at");
    }
}

} // namespace

void CheckLabelled(DocumentReader& reader, std::size_t number, std::size_t fileSize)
{
    std::optional<LabelledResult> whole;
    Bounded(fileSize, [&] {
        if (auto read = reader.ReadLabelled(number); read) whole = *std::move(read);
    });
    std::optional<LabelledResult> slices;
    Bounded(fileSize, [&] {
        if (auto read = reader.ReadSlices(number); read) slices = *std::move(read);
    });
    if (!whole) return; // slices of a damaged waterfall may be there all the same
    CheckArrays(whole->coordinates);
    CheckArrays(whole->data);
    Require(slices.has_value() == (whole->form == LabelledForm::Waterfall), "a waterfall has slices");
    if (!slices) return;
    const std::size_t count = slices->Coordinate(u"block")->Size();
    Require(whole->Coordinate(u"block")->values == slices->Coordinate(u"block")->values, "in the same order");
    for (const std::size_t index : {std::size_t{0}, count / 2, count}) {
        std::optional<LabelledResult> slice;
        Bounded(fileSize, [&] {
            using By = SliceChoice::By;
            if (auto read = reader.ReadSlice(number, {By::Index, static_cast<std::int64_t>(index)}); read)
                slice = *std::move(read);
        });
        Require(slice.has_value() == (index < count), "each slice can be read");
        if (slice) CheckSlice(*slice, *whole, index);
    }
}

} // namespace ZelmResult::fuzz
