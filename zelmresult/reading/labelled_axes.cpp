// Coordinates along vectors.

#include "zelmresult/reading/labelled_parts.h"
#include "zelmresult/results/ref_vector.h"
#include "zelmresult/results/reg_vector.h"
#include "zelmresult/support/text.h"
#include "zelmresult/waterfalls/octave_tools.h"
#include "zelmresult/waterfalls/vector_ref.h"

#include <algorithm>
#include <array>
#include <limits>

namespace ZelmResult::labelled {

wstring Names::Take(const wstring& name)
{
    int& taken = m_taken[name];
    if (++taken == 1) return name;
    while (true) {
        wstring numbered = Concat(name, u"_", taken);
        if (m_taken.try_emplace(numbered, 1).second) return numbered;
        ++taken;
    }
}

LabelledArray Array(wstring name, wstring title, const std::vector<Dimension>& dimensions, LabelledArray::Values values)
{
    LabelledArray array;
    array.name = std::move(name);
    array.title = std::move(title);
    for (const Dimension& dimension : dimensions) {
        array.dimensions.push_back(dimension.name);
        array.shape.push_back(dimension.size);
    }
    array.values = std::move(values);
    return array;
}

void DescribeAsY(const CResult& result, LabelledArray& array)
{
    array.quantity = LabelledQuantity::Of(result.GetMagnitude());
    array.absolutePrecision = result.GetAbsPrecisionY();
    array.relativePrecision = result.GetRelPrecisionY();
}

void DescribeAsX(const CResult& result, LabelledArray& array)
{
    array.quantity = LabelledQuantity::Of(result.GetXMagnitude());
    array.absolutePrecision = result.GetAbsPrecisionX();
    array.relativePrecision = result.GetRelPrecisionX();
}

namespace {

// "frequency", "time" or, for any other quantity, "x". Spectra are over frequency, whatever a program says of it.
wstring AxisName(const CResult& result)
{
    const auto isPowerOfTime = [quantity = LabelledQuantity::Of(result.GetXMagnitude())](double exponent) {
        std::array<double, LabelledQuantity::kBaseUnits> exponents{};
        exponents[LabelledQuantity::Second] = exponent;
        return quantity && quantity->exponents == exponents;
    };
    if (isPowerOfTime(1.0)) return u"time";
    return isPowerOfTime(-1.0) || CResult::IsSpectral(result.GetProcessType()) ? u"frequency" : u"x";
}

wstring TitleOfX(const CResult& result)
{
    const CGrandeur* quantity = result.GetXMagnitude();
    return quantity != nullptr ? quantity->quantityName() : u"Point";
}

void AddCoordinate(const CResult& result, wstring name, const wstring& title, const Dimension& dimension,
                   std::vector<float> values, LabelledResult& labelled)
{
    labelled.coordinates.push_back(Array(std::move(name), title, {dimension}, std::move(values)));
    DescribeAsX(result, labelled.coordinates.back());
}

// The middles of bands: the values that they are known by, and those that they have.
Dimension AddBandAxis(CVector& bands, Names& names, LabelledResult& labelled)
{
    Dimension dimension{u"band", PointsOf(bands)};
    const auto middles = [&](bool isNominal) {
        std::vector<float> values(dimension.size);
        for (std::size_t i = 0; i < values.size(); ++i) {
            const auto index = static_cast<std::int16_t>(std::min<std::size_t>(i, INT16_MAX));
            values[i] = OctaveTools::GetOctaveFrequence(bands.GetXMin(), index, bands.GetXnOctave(), isNominal, false);
        }
        return values;
    };
    AddCoordinate(bands, names.Take(u"band"), TitleOfX(bands), dimension, middles(true), labelled);
    AddCoordinate(bands, names.Take(u"exact_middle"), u"Exact middle", dimension, middles(false), labelled);
    return dimension;
}

} // namespace

// The points that the vector holds, whatever size it claims.
std::size_t PointsOf(CVector& vector)
{
    const auto* regular = dynamic_cast<const CRegVector*>(&vector);
    const bool holdsValues = vector.GetRealValue() != nullptr || vector.GetImValue() != nullptr ||
                             (regular != nullptr && regular->GetRealValueMin() != nullptr) ||
                             (regular != nullptr && regular->GetRealValueMax() != nullptr);
    return holdsValues ? static_cast<std::size_t>(std::max(vector.GetSize(), 0)) : 0;
}

bool IsBands(const CVector& vector)
{
    const SignalType type = vector.GetComplexType();
    return type >= SignalType::Octave && type <= SignalType::OctaveMax;
}

Dimension AddEvenAxis(const CResult& result, std::size_t size, Names& names, LabelledResult& labelled)
{
    const wstring name = AxisName(result);
    Dimension dimension{name == u"frequency" ? name : u"point", size};
    std::vector<float> points(size);
    const auto first = static_cast<double>(result.GetXMin());
    const auto last = static_cast<double>(result.GetXMax());
    const double intervals = std::max(static_cast<double>(size) - 1.0, 1.0);
    for (std::size_t i = 0; i < size; ++i)
        points[i] = static_cast<float>(first + (last - first) * (static_cast<double>(i) / intervals));
    AddCoordinate(result, names.Take(name), TitleOfX(result), dimension, std::move(points), labelled);
    return dimension;
}

Dimension AddStepAxis(const CResult& result, double first, double step, std::size_t size, LabelledResult& labelled)
{
    Dimension dimension{u"point", size};
    std::vector<float> points(size);
    for (std::size_t i = 0; i < size; ++i) points[i] = static_cast<float>(first + static_cast<double>(i) * step);
    AddCoordinate(result, AxisName(result), TitleOfX(result), dimension, std::move(points), labelled);
    return dimension;
}

Dimension AddReferenceAxis(const CReferencedAxis& axis, const CResult& result, std::size_t size, Names& names,
                           LabelledResult& labelled)
{
    Dimension dimension{u"point", size};
    (void)names.Take(dimension.name);
    if (axis.IsWaterfall() && size > 0 && axis.GetBlocNumberPtr(0) != nullptr) {
        std::vector<std::int32_t> blocks(size);
        for (std::size_t i = 0; i < size; ++i) blocks[i] = axis.GetBlocNumber(static_cast<std::int32_t>(i));
        labelled.coordinates.push_back(Array(names.Take(u"block"), u"Block", {dimension}, std::move(blocks)));
    }
    const auto* references = axis.GetReferencesList();
    if (references == nullptr) return dimension;
    for (const CVectorRef* reference : *references) {
        const bool isHeld = reference->GetRefValue() != nullptr;
        const auto held = isHeld ? static_cast<std::size_t>(std::max(reference->GetSize(), 0)) : 0;
        std::vector<float> values(size, std::numeric_limits<float>::quiet_NaN());
        reference->GetRefValues(values.data(), static_cast<std::int32_t>(std::min(held, size)));
        const bool isChosen = reference == axis.GetChosenReference();
        LabelledArray& along = AddReference(*reference, isChosen, dimension, std::move(values), names, labelled);
        if (isChosen) DescribeAsX(result, along);
    }
    return dimension;
}

LabelledArray& AddReference(const CVectorRef& reference, bool isChosen, const Dimension& dimension,
                            std::vector<float> values, Names& names, LabelledResult& labelled)
{
    const wstring title = reference.name();
    const wstring name = names.Take(title.empty() ? u"reference" : title);
    LabelledArray& along = labelled.coordinates.emplace_back(Array(name, title, {dimension}, std::move(values)));
    DescribeAsY(reference, along);
    along.isReference = true;
    if (isChosen) labelled.chosenReference = name;
    return along;
}

Dimension AddAxis(CVector& vector, Names& names, LabelledResult& labelled)
{
    if (const auto* referenced = dynamic_cast<const CRefVector*>(&vector); referenced != nullptr)
        return AddReferenceAxis(*referenced, vector, PointsOf(vector), names, labelled);
    return IsBands(vector) ? AddBandAxis(vector, names, labelled)
                           : AddEvenAxis(vector, PointsOf(vector), names, labelled);
}

} // namespace ZelmResult::labelled
