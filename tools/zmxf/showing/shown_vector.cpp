#include "tools/zmxf/showing/shown_vector.h"

#include "tools/signal_processing/peaks.h"
#include "tools/zmxf/base/failure.h"
#include "tools/zmxf/base/process_names.h"
#include "tools/zmxf/base/text.h"
#include "zelmresult/results/compressed_result.h"
#include "zelmresult/results/double_result.h"
#include "zelmresult/results/order_track.h"
#include "zelmresult/results/ref_vector.h"
#include "zelmresult/results/reg_vector.h"
#include "zelmresult/waterfalls/octave_tools.h"
#include "zelmresult/waterfalls/vector_ref.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <limits>
#include <numbers>

namespace zmxf {

namespace {

using ZelmResult::AvgOctaveTarget;
using ZelmResult::CGrandeur;
using ZelmResult::COrderTracking;
using ZelmResult::CRefVector;
using ZelmResult::CRegVector;
using ZelmResult::CResult;
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

std::size_t Orders(const COrderTracking& track) { return static_cast<std::size_t>(std::max(track.GetNbOrder(), 0)); }

// Points that lie evenly between the limits.
std::vector<float> EvenPoints(const CResult& result, std::size_t size)
{
    std::vector<float> points(size);
    const auto first = static_cast<double>(result.GetXMin());
    const auto last = static_cast<double>(result.GetXMax());
    const double intervals = std::max(static_cast<double>(points.size()) - 1.0, 1.0);
    for (std::size_t i = 0; i < points.size(); ++i)
        points[i] = static_cast<float>(first + (last - first) * (static_cast<double>(i) / intervals));
    return points;
}

// The values of the chosen reference; without one the points are counted.
std::vector<float> ReferencePoints(const ZelmResult::CReferencedAxis& axis, std::size_t size)
{
    std::vector<float> points(size);
    if (const ZelmResult::CVectorRef* reference = axis.GetChosenReference(); reference != nullptr)
        reference->GetRefValues(points.data(), static_cast<std::int32_t>(points.size()));
    else
        for (std::size_t i = 0; i < points.size(); ++i) points[i] = static_cast<float>(i);
    return points;
}

ShownColumn XColumn(const CResult& result, std::vector<float> points)
{
    ShownColumn x;
    x.quantity = result.GetXMagnitude();
    x.name = x.quantity != nullptr ? Printable(x.quantity->quantityName()) : "Point";
    x.precision = {result.GetAbsPrecisionX(), result.GetRelPrecisionX()};
    x.values = std::move(points);
    return x;
}

ShownColumn XColumn(CVector& vector)
{
    if (auto* referenced = dynamic_cast<CRefVector*>(&vector))
        return XColumn(vector, ReferencePoints(*referenced, Size(vector)));
    return XColumn(vector, IsBands(vector) ? BandMiddles(vector) : EvenPoints(vector, Size(vector)));
}

ShownColumn YColumn(const CResult& result, const std::string& name, std::vector<float> values)
{
    return {name, result.GetMagnitude(), {result.GetAbsPrecisionY(), result.GetRelPrecisionY()}, std::move(values)};
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

float Magnitude(float real, float imaginary) { return std::hypot(real, imaginary); }

// Values as they are shown: of complex ones their magnitudes.
std::vector<float> ShownValues(CVector& vector)
{
    std::vector<float> values = RealValues(vector);
    if (vector.GetComplexType() != SignalType::Complex) return values;
    const std::vector<float> imaginary = ImaginaryValues(vector);
    std::transform(values.begin(), values.end(), imaginary.begin(), values.begin(), Magnitude);
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
        {function.empty() ? fmt::format("{}, weighted", name) : fmt::format("{}, weighted {}", name, function),
         bands.GetGlobPondLevel(target), weighting});
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

// A column per order, with the points of the axis that the track has.
ShownVector DescribeOrders(const COrderTracking& track, std::vector<float> points, const std::string& caption)
{
    constexpr std::size_t most = 1000;
    if (Orders(track) > most) throw Failure("{} are too many to be shown", Counted(Orders(track), "order"));
    ShownVector shown;
    const std::size_t size = points.size();
    const std::vector<std::string> titles = OrderTitles(caption, size != 0 ? Orders(track) : 1);
    shown.x = XColumn(track, std::move(points));
    std::vector<float> real(size * titles.size());
    std::vector<float> imaginary(real.size());
    track.GetRealValues(real.data(), static_cast<std::int32_t>(size), static_cast<std::int32_t>(titles.size()));
    track.GetImValues(imaginary.data(), static_cast<std::int32_t>(size), static_cast<std::int32_t>(titles.size()));
    if (track.GetComplexType() == SignalType::Complex)
        std::transform(real.begin(), real.end(), imaginary.begin(), real.begin(), Magnitude);
    for (std::size_t order = 0; order < titles.size(); ++order) {
        const auto first = real.begin() + static_cast<std::ptrdiff_t>(order * size);
        shown.columns.push_back(YColumn(track, titles[order], {first, first + static_cast<std::ptrdiff_t>(size)}));
    }
    return shown;
}

std::optional<ShownVector> DescribeTrack(CResult& result, const std::string& caption)
{
    const auto* track = dynamic_cast<COrderTracking*>(&result);
    if (track == nullptr) return std::nullopt;
    const std::size_t size = Orders(*track) != 0 ? static_cast<std::size_t>(std::max(track->GetFilled(), 0)) : 0;
    const auto* referenced = dynamic_cast<const ZelmResult::CReferencedAxis*>(&result);
    return DescribeOrders(*track, referenced != nullptr ? ReferencePoints(*referenced, size) : EvenPoints(result, size),
                          caption);
}

// Where each point of an overview begins.
std::vector<float> PointStarts(const ZelmResult::CCompressedAbstract& overview)
{
    std::vector<float> starts(static_cast<std::size_t>(std::max(overview.GetCompSize(), 0)));
    const auto frequency = static_cast<double>(overview.GetSamplingFrequency());
    const auto first = static_cast<double>(overview.GetXMin());
    const double step = frequency > 0.0 ? 1.0 / frequency : 1.0;
    for (std::size_t i = 0; i < starts.size(); ++i)
        starts[i] = static_cast<float>(first + static_cast<double>(i) * step);
    return starts;
}

std::optional<ShownVector> DescribeOverview(const CResult& result, const std::string& caption)
{
    using Levels = ZelmResult::CCompressedScalar;
    const auto* overview = dynamic_cast<const ZelmResult::CCompressedAbstract*>(&result);
    if (overview == nullptr) return std::nullopt;
    ShownVector shown;
    shown.x = XColumn(*overview, PointStarts(*overview));
    const auto add = [&](const std::string& name, auto copy) {
        std::vector<float> values(shown.x.values.size());
        copy(values.data(), static_cast<std::int32_t>(values.size()));
        shown.columns.push_back(YColumn(*overview, name, std::move(values)));
    };
    if (const auto* envelope = dynamic_cast<const ZelmResult::CCompressedVector*>(overview)) {
        add("Upper", [envelope](float* target, std::int32_t n) { envelope->GetUpValues(target, n); });
        add("Lower", [envelope](float* target, std::int32_t n) { envelope->GetDownValues(target, n); });
    } else if (const auto* levels = dynamic_cast<const Levels*>(overview)) {
        std::vector<std::string> names = OverviewTitles(caption, Levels::kTables - 2);
        names.insert(names.begin(), {"Upper", "Lower"});
        for (std::size_t i = 0; i < names.size(); ++i)
            add(names[i], [levels, i](float* target, std::int32_t n) {
                levels->GetScalarValues(static_cast<ZelmResult::OffsetScalarArray>(i), target, n);
            });
    }
    return shown;
}

} // namespace

std::vector<std::size_t> ShownVector::Highest(std::size_t count) const
{
    const std::vector<double> values(columns.front().values.begin(), columns.front().values.end());
    return isBands ? HighestBands(values, count) : HighestPeaks(values, count);
}

std::optional<std::pair<std::size_t, std::size_t>> ShownVector::Extremes(const ShownColumn& column)
{
    std::optional<std::pair<std::size_t, std::size_t>> extremes;
    for (std::size_t i = 0; i < column.values.size(); ++i) {
        if (std::isnan(column.values[i])) continue;
        if (!extremes) extremes.emplace(i, i);
        if (column.values[i] > column.values[extremes->first]) extremes->first = i;
        if (column.values[i] < column.values[extremes->second]) extremes->second = i;
    }
    return extremes;
}

double ShownVector::Phase(std::size_t line) const
{
    return std::atan2(static_cast<double>(imaginary[line]), static_cast<double>(real[line])) * 180.0 / std::numbers::pi;
}

std::optional<ShownVector> DescribeVector(CResult& result, const std::string& caption)
{
    if (auto track = DescribeTrack(result, caption)) return track;
    if (auto overview = DescribeOverview(result, caption)) return overview; // before the vector that it is besides
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
