#include "tools/zmxf/showing/shown_vector.h"

#include "tools/signal_processing/peaks.h"
#include "tools/zmxf/base/failure.h"
#include "tools/zmxf/base/text.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <numbers>
#include <numeric>

namespace zmxf {

namespace {

using ZelmResult::LabelledArray;
using ZelmResult::LabelledForm;
using ZelmResult::LabelledResult;

// Where the values of one row of an array begin, and how many there are.
struct Row {
    std::size_t first = 0;
    std::size_t size = 0;
};

Row RowAt(const LabelledArray& array, std::size_t row) { return {row * array.shape.back(), array.shape.back()}; }

// Values as they are shown: of complex ones their magnitudes.
std::vector<float> ShownValues(const LabelledArray& array, Row row)
{
    const auto end = static_cast<std::ptrdiff_t>(row.first + row.size);
    const auto first = static_cast<std::ptrdiff_t>(row.first);
    if (const auto* floats = array.Floats(); floats != nullptr) return {floats->begin() + first, floats->begin() + end};
    const auto& complex = *array.Complexes();
    std::vector<float> magnitudes(row.size);
    std::transform(complex.begin() + first, complex.begin() + end, magnitudes.begin(),
                   [](const std::complex<float>& value) { return std::hypot(value.real(), value.imag()); });
    return magnitudes;
}

Precision PrecisionOf(const LabelledArray& array) { return {array.absolutePrecision, array.relativePrecision}; }

ShownColumn ColumnOf(const LabelledArray& array, const std::string& name, Row row)
{
    return {name, array.quantity, PrecisionOf(array), ShownValues(array, row)};
}

// Points without a coordinate are counted.
ShownColumn XColumn(const LabelledResult& labelled, const LabelledArray& values)
{
    if (const LabelledArray* axis = labelled.Axis(values.dimensions.back()); axis != nullptr)
        return ColumnOf(*axis, axis->quantity ? Printable(axis->quantity->name) : "Point", RowAt(*axis, 0));
    ShownColumn x{"Point", std::nullopt, {}, std::vector<float>(values.shape.back())};
    std::iota(x.values.begin(), x.values.end(), 0.0F);
    return x;
}

void AddParts(const LabelledArray& array, ShownVector& shown)
{
    const auto* complex = array.Complexes();
    if (complex == nullptr) return;
    shown.columns.front().name = "Magnitude";
    for (const std::complex<float>& value : *complex) {
        shown.real.push_back(value.real());
        shown.imaginary.push_back(value.imag());
    }
}

void AddLevel(const LabelledArray& array, ShownVector& shown)
{
    ZelmResult::CPonderationUnite weighting;
    weighting.SetPonderationLabelUnite(static_cast<int>(array.weighting));
    shown.levels.push_back({Printable(array.title), array.Floats()->front(), weighting});
}

// A column per order.
ShownVector DescribeOrders(const LabelledResult& labelled)
{
    constexpr std::size_t most = 1000;
    const LabelledArray& values = labelled.data.front();
    const std::size_t orders = values.shape.front();
    if (orders > most) throw Failure("{} are too many to be shown", Counted(orders, "order"));
    ShownVector shown;
    shown.x = XColumn(labelled, values);
    const LabelledArray* names = labelled.Coordinate(u"order_name");
    for (std::size_t order = 0; order < orders; ++order)
        shown.columns.push_back(ColumnOf(values,
                                         names != nullptr ? fmt::format("Order {}", Printable((*names->Texts())[order]))
                                                          : fmt::format("Track {}", order + 1),
                                         RowAt(values, order)));
    return shown;
}

bool IsBands(const LabelledResult& labelled)
{
    return labelled.form == LabelledForm::Bands ||
           (labelled.form == LabelledForm::Waterfall && labelled.Coordinate(u"band") != nullptr);
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

std::optional<ShownVector> DescribeVector(const LabelledResult& labelled)
{
    if (labelled.data.empty() || labelled.data.front().dimensions.empty()) return std::nullopt;
    if (labelled.form == LabelledForm::OrderTrack) return DescribeOrders(labelled);
    ShownVector shown;
    shown.x = XColumn(labelled, labelled.data.front());
    shown.isBands = IsBands(labelled);
    for (const LabelledArray& array : labelled.data) {
        if (array.dimensions.empty())
            AddLevel(array, shown);
        else
            shown.columns.push_back(ColumnOf(array, Printable(array.title), RowAt(array, 0)));
    }
    if (labelled.form != LabelledForm::Pair) AddParts(labelled.data.front(), shown);
    return shown;
}

ShownVector DescribeSlice(const LabelledResult& waterfall, std::size_t slice)
{
    const LabelledArray& values = waterfall.data.front();
    ShownVector shown;
    shown.x = XColumn(waterfall, values);
    shown.columns.push_back(ColumnOf(values, {}, RowAt(values, slice)));
    shown.isBands = IsBands(waterfall);
    return shown;
}

} // namespace zmxf
