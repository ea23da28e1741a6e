#include "tools/zmxf/shown_vector.h"

#include "tools/zmxf/analysis/peaks.h"
#include "tools/zmxf/text.h"
#include "zelmresult/results/double_result.h"
#include "zelmresult/results/ref_vector.h"
#include "zelmresult/results/reg_vector.h"
#include "zelmresult/waterfalls/octave_tools.h"
#include "zelmresult/waterfalls/vector_ref.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace zmxf {

namespace {

using ZelmResult::AvgOctaveTarget;
using ZelmResult::CGrandeur;
using ZelmResult::CRefVector;
using ZelmResult::CRegVector;
using ZelmResult::CVector;
using ZelmResult::SignalType;

// The points that the vector holds, whatever size it claims.
std::size_t Size(CVector& vector)
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

// The middles of bands, by the values that they are known by.
std::vector<float> BandMiddles(CVector& bands)
{
    std::vector<float> middles(Size(bands));
    for (std::size_t i = 0; i < middles.size(); ++i) {
        const auto index = static_cast<std::int16_t>(std::min<std::size_t>(i, INT16_MAX));
        middles[i] =
            ZelmResult::OctaveTools::GetOctaveFrequence(bands.GetXMin(), index, bands.GetXnOctave(), true, false);
    }
    return middles;
}

// Points that lie evenly between the limits.
std::vector<float> EvenPoints(CVector& vector)
{
    std::vector<float> points(Size(vector));
    const auto first = static_cast<double>(vector.GetXMin());
    const auto last = static_cast<double>(vector.GetXMax());
    const double intervals = std::max(static_cast<double>(points.size()) - 1.0, 1.0);
    for (std::size_t i = 0; i < points.size(); ++i)
        points[i] = static_cast<float>(first + (last - first) * (static_cast<double>(i) / intervals));
    return points;
}

// The values of the chosen reference; without one the points are counted.
std::vector<float> ReferencePoints(CRefVector& vector)
{
    std::vector<float> points(Size(vector));
    if (const ZelmResult::CVectorRef* reference = vector.GetChosenReference(); reference != nullptr)
        reference->GetRefValues(points.data(), static_cast<std::int32_t>(points.size()));
    else
        for (std::size_t i = 0; i < points.size(); ++i) points[i] = static_cast<float>(i);
    return points;
}

ShownColumn XColumn(CVector& vector)
{
    ShownColumn x;
    x.quantity = vector.GetXMagnitude();
    x.name = x.quantity != nullptr ? Printable(x.quantity->quantityName()) : "Point";
    x.precision = {vector.GetAbsPrecisionX(), vector.GetRelPrecisionX()};
    if (auto* referenced = dynamic_cast<CRefVector*>(&vector))
        x.values = ReferencePoints(*referenced);
    else
        x.values = IsBands(vector) ? BandMiddles(vector) : EvenPoints(vector);
    return x;
}

ShownColumn YColumn(const CVector& vector, const std::string& name, std::vector<float> values)
{
    return {name, vector.GetMagnitude(), {vector.GetAbsPrecisionY(), vector.GetRelPrecisionY()}, std::move(values)};
}

std::vector<float> RealValues(CVector& vector)
{
    std::vector<float> values(Size(vector));
    vector.GetRealValues(values.data(), static_cast<std::int32_t>(values.size()));
    return values;
}

std::string QuantityName(const CVector& vector)
{
    const CGrandeur* quantity = vector.GetMagnitude();
    return quantity != nullptr ? Printable(quantity->quantityName()) : "Value";
}

std::vector<float> ImaginaryValues(CVector& vector)
{
    std::vector<float> values(Size(vector));
    vector.GetImValues(values.data(), static_cast<std::int32_t>(values.size()));
    return values;
}

// Values as they are shown: of complex ones their magnitudes.
std::vector<float> ShownValues(CVector& vector)
{
    std::vector<float> values = RealValues(vector);
    if (vector.GetComplexType() != SignalType::Complex) return values;
    const std::vector<float> imaginary = ImaginaryValues(vector);
    std::transform(values.begin(), values.end(), imaginary.begin(), values.begin(),
                   [](float x, float y) { return std::hypot(x, y); });
    return values;
}

void AddLevels(const CRegVector& bands, AvgOctaveTarget target, const std::string& name, ShownVector& shown)
{
    ZelmResult::CPonderationUnite weighting;
    weighting.SetPonderationLabelUnite(static_cast<int>(bands.GetPonderationGlob()));
    shown.levels.push_back({name, bands.GetGlobLevel(target), {}});
    const std::string function =
        Printable(ZelmResult::CPonderationUnite::GetFunctionName(static_cast<int>(bands.GetPonderationGlob())));
    shown.levels.push_back(
        {name + ", weighted" + (function.empty() ? "" : " " + function), bands.GetGlobPondLevel(target), weighting});
}

// The minimum and the maximum of bands have values and levels of their own, beside the others or alone.
void AddBands(CRegVector& bands, ShownVector& shown)
{
    const SignalType type = bands.GetComplexType();
    std::vector<float> values(Size(bands));
    const auto count = static_cast<std::int32_t>(values.size());
    if (type == SignalType::Octave || type == SignalType::OctaveMinMax) {
        shown.columns.push_back(YColumn(bands, QuantityName(bands), RealValues(bands)));
        AddLevels(bands, AvgOctaveTarget::Averaged, "Global", shown);
    }
    if (type == SignalType::OctaveMin || type == SignalType::OctaveMinMax) {
        bands.GetRealValuesMin(values.data(), count);
        shown.columns.push_back(YColumn(bands, "Minimum", values));
        AddLevels(bands, AvgOctaveTarget::Minimum, "Global minimum", shown);
    }
    if (type == SignalType::OctaveMax || type == SignalType::OctaveMinMax) {
        bands.GetRealValuesMax(values.data(), count);
        shown.columns.push_back(YColumn(bands, "Maximum", values));
        AddLevels(bands, AvgOctaveTarget::Maximum, "Global maximum", shown);
    }
}

ShownVector DescribeOne(CVector& vector)
{
    ShownVector shown;
    shown.x = XColumn(vector);
    shown.isBands = IsBands(vector);
    auto* regular = dynamic_cast<CRegVector*>(&vector);
    if (regular != nullptr && shown.isBands)
        AddBands(*regular, shown);
    else
        shown.columns.push_back(YColumn(vector, QuantityName(vector), ShownValues(vector)));
    if (vector.GetComplexType() == SignalType::Complex) {
        shown.columns.front().name = "Magnitude";
        shown.real = RealValues(vector);
        shown.imaginary = ImaginaryValues(vector);
    }
    return shown;
}

} // namespace

std::vector<std::size_t> ShownVector::Highest(std::size_t count) const
{
    const std::vector<double> values(columns.front().values.begin(), columns.front().values.end());
    return isBands ? HighestBands(values, count) : HighestPeaks(values, count);
}

double ShownVector::Phase(std::size_t line) const
{
    return std::atan2(static_cast<double>(imaginary[line]), static_cast<double>(real[line])) * 180.0 / std::numbers::pi;
}

std::optional<ShownVector> DescribeVector(ZelmResult::CResult& result)
{
    if (auto* vector = dynamic_cast<CVector*>(&result)) return DescribeOne(*vector);
    const auto* pair = dynamic_cast<ZelmResult::CDoubleResult*>(&result);
    if (pair == nullptr || pair->GetMinVector() == nullptr || pair->GetMaxVector() == nullptr) return std::nullopt;
    ShownVector shown;
    shown.x = XColumn(*pair->GetMinVector());
    shown.columns.push_back(YColumn(*pair->GetMinVector(), "Minimum", ShownValues(*pair->GetMinVector())));
    shown.columns.push_back(YColumn(*pair->GetMaxVector(), "Maximum", ShownValues(*pair->GetMaxVector())));
    // The pair may be uneven: what one of them lacks is no number.
    shown.columns.back().values.resize(shown.x.values.size(), std::numeric_limits<float>::quiet_NaN());
    return shown;
}

} // namespace zmxf
