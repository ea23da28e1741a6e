// Waterfalls, slice by slice.

#include "zelmresult/reading/labelled_parts.h"
#include "zelmresult/results/reg_vector.h"
#include "zelmresult/waterfalls/waterfall.h"
#include "zelmresult/waterfalls/waterfall_ref.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <type_traits>
#include <unordered_map>

namespace ZelmResult::labelled {

namespace {

constexpr float kMissing = std::numeric_limits<float>::quiet_NaN();

// Of the slices, in their order. A waterfall without room for points has none.
std::vector<std::int32_t> BlocksOf(const CWaterfall& waterfall, bool hasSlices)
{
    std::vector<std::int32_t> blocks;
    if (CWaterfall::GetComplexDim(waterfall.GetComplexType()) < 1 || waterfall.GetRealSize(waterfall.GetSize()) < 1)
        return blocks;
    if (!hasSlices) return waterfall.StoredBlocks();
    for (std::int32_t raw = 0; raw < waterfall.GetFilled(); ++raw)
        if (const std::int32_t block = waterfall.GetBlocNumber(raw); blocks.empty() || block > blocks.back())
            blocks.push_back(block); // those that occur twice have one slice
    return blocks;
}

std::vector<float> ValuesAt(const CVectorRef& reference, const std::vector<std::int32_t>& blocks)
{
    std::vector<float> along(blocks.size(), kMissing);
    const auto* ofWaterfall = dynamic_cast<const CWaterfallRef*>(&reference);
    if (ofWaterfall == nullptr || ofWaterfall->GetBlockNumberPtr() == nullptr) return along;
    std::vector<float> values(static_cast<std::size_t>(std::max(reference.GetSize(), 0)));
    reference.GetRefValues(values.data(), static_cast<std::int32_t>(values.size()));
    std::unordered_map<std::int32_t, float> byBlock;
    for (std::size_t i = 0; i < values.size(); ++i) byBlock.try_emplace(ofWaterfall->GetBlockNumberPtr()[i], values[i]);
    for (std::size_t i = 0; i < blocks.size(); ++i)
        if (const auto found = byBlock.find(blocks[i]); found != byBlock.end()) along[i] = found->second;
    return along;
}

void CopyValues(CWaterfall& waterfall, std::int32_t slot, CRegVector& slice)
{
    CVector* shown = waterfall.GetTempVector(slot);
    if (shown == nullptr) return;
    const std::int32_t size = waterfall.GetSize();
    if (slice.GetRealValue() != nullptr) shown->GetRealValues(slice.GetRealValue(), size);
    if (slice.GetComplexType() == SignalType::Complex && slice.GetImValue() != nullptr)
        shown->GetImValues(slice.GetImValue(), size);
    const auto* bands = dynamic_cast<const CRegVector*>(shown);
    if (bands == nullptr) return;
    if (slice.GetRealValueMin() != nullptr) bands->GetRealValuesMin(slice.GetRealValueMin(), size);
    if (slice.GetRealValueMax() != nullptr) bands->GetRealValuesMax(slice.GetRealValueMax(), size);
    for (const auto target : {AvgOctaveTarget::Averaged, AvgOctaveTarget::Minimum, AvgOctaveTarget::Maximum}) {
        slice.SetGlobLevel(target, bands->GetGlobLevel(target));
        slice.SetGlobPondLevel(target, bands->GetGlobPondLevel(target));
    }
    slice.SetPonderationGlob(bands->GetPonderationGlob());
}

// A vector like the slices, with the X axis of the waterfall.
std::unique_ptr<CRegVector> EmptySlice(const CWaterfall& waterfall)
{
    auto slice = std::make_unique<CRegVector>(waterfall.GetProcessType(), waterfall.GetSize(), waterfall.GetXnOctave(),
                                              waterfall.GetComplexType(), waterfall.GetWtfProcessType(), true);
    slice->SetMagnitude(waterfall.GetMagnitude());
    slice->SetXMagnitude(waterfall.GetXMagnitude());
    slice->SetXMin(waterfall.GetXMin());
    slice->SetXMax(waterfall.GetXMax());
    slice->SetXnOctave(waterfall.GetXnOctave());
    slice->SetAbsPrecisionX(waterfall.GetAbsPrecisionX());
    slice->SetRelPrecisionX(waterfall.GetRelPrecisionX());
    slice->SetAbsPrecisionY(waterfall.GetAbsPrecisionY());
    slice->SetRelPrecisionY(waterfall.GetRelPrecisionY());
    return slice;
}

// Puts the arrays of one slice after those of the former ones.
class Stack {
public:
    Stack(std::vector<LabelledArray> parts, std::size_t slices) : m_stacked(std::move(parts))
    {
        for (LabelledArray& array : m_stacked) {
            array.dimensions.insert(array.dimensions.begin(), u"slice");
            array.shape.insert(array.shape.begin(), slices);
            std::visit(
                [&](auto& values) {
                    const std::size_t size = values.size();
                    values.clear();
                    values.reserve(size * slices);
                },
                array.values);
        }
    }

    void Add(const std::vector<LabelledArray>& parts, bool isThere)
    {
        for (std::size_t i = 0; i < m_stacked.size(); ++i)
            std::visit(
                [&](auto& values) {
                    const auto& added = std::get<std::remove_reference_t<decltype(values)>>(parts[i].values);
                    values.insert(values.end(), added.begin(), added.end());
                    if (!isThere) Miss(values, added.size());
                },
                m_stacked[i].values);
    }
    // Adds a slice of a waterfall whose slices are one array of floats, without any steps between. False for others.
    bool AddDirectly(CWaterfall& waterfall, std::int32_t block)
    {
        auto* values = m_stacked.size() == 1 ? std::get_if<std::vector<float>>(&m_stacked.front().values) : nullptr;
        if (values == nullptr || waterfall.GetComplexType() != SignalType::Real) return false;
        const std::size_t points = m_stacked.front().shape.back();
        const std::size_t former = values->size();
        values->resize(former + points, kMissing);
        if (waterfall.GetTabData(0, block).HasSlice())
            waterfall.GetValues(0, block, values->data() + former, static_cast<std::int32_t>(points));
        return true;
    }
    std::vector<LabelledArray> Take() { return std::move(m_stacked); }

private:
    template <class T>
    static void Miss(std::vector<T>& values, std::size_t count)
    {
        if constexpr (std::is_constructible_v<T, float>)
            std::fill(values.end() - static_cast<std::ptrdiff_t>(count), values.end(), T(kMissing));
    }

    std::vector<LabelledArray> m_stacked;
};

void AddSlices(CWaterfall& waterfall, const std::vector<std::int32_t>& blocks, CRegVector& slice, const Dimension& axis,
               LabelledResult& labelled)
{
    std::optional<Stack> stack;
    for (const std::int32_t block : blocks) {
        if (stack && stack->AddDirectly(waterfall, block)) continue;
        CopyValues(waterfall, block, slice);
        const std::vector<LabelledArray> parts = PartsOf(slice, axis);
        if (!stack) stack.emplace(parts, blocks.size());
        stack->Add(parts, waterfall.GetTabData(0, block).HasSlice());
    }
    if (stack) labelled.data = stack->Take();
}

} // namespace

bool AddWaterfall(CResult& result, bool hasSlices, LabelledResult& labelled)
{
    auto* waterfall = dynamic_cast<CWaterfall*>(&result);
    if (waterfall == nullptr) return false;
    labelled.form = LabelledForm::Waterfall;
    const std::vector<std::int32_t> blocks = BlocksOf(*waterfall, hasSlices);
    const Dimension slices{u"slice", blocks.size()};
    Names names;
    (void)names.Take(slices.name);
    labelled.coordinates.push_back(Array(names.Take(u"block"), u"Block", {slices}, blocks));
    std::optional<Dimension> axis;
    const auto slice = blocks.empty() ? nullptr : EmptySlice(*waterfall);
    if (slice != nullptr) axis = AddAxis(*slice, names, labelled);
    if (const auto* references = waterfall->GetReferencesList(); references != nullptr)
        for (const CVectorRef* reference : *references)
            (void)AddReference(*reference, reference == waterfall->GetChosenReference(), slices,
                               ValuesAt(*reference, blocks), names, labelled);
    if (axis && hasSlices) AddSlices(*waterfall, blocks, *slice, *axis, labelled);
    return true;
}

} // namespace ZelmResult::labelled
