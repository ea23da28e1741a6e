#include "tools/zmxf/showing/result_text.h"

#include "tools/zmxf/base/text.h"
#include "tools/zmxf/showing/description.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <numeric>

namespace zmxf {

namespace {

using Align = TextTable::Align;
using ZelmResult::LabelledResult;

void AddLine(TextTable& table, const char* name, const std::string& text)
{
    if (!text.empty()) table.AddRow({name, text});
}

// Of a column of values.
std::string TitleIn(const std::string& name, const Quantity& quantity, Scale scale)
{
    return scale == Scale::Linear ? name : fmt::format("{}, dB re {}", name, DecibelReference(quantity));
}

std::string HeaderText(const LabelledResult& labelled)
{
    const auto& information = labelled.information;
    TextTable table({Align::Left, Align::Left});
    AddLine(table, "Response", Printable(information.channel));
    AddLine(table, "Reference", Printable(information.reference));
    AddLine(table, "Process", fmt::format("{} (type {})", Printable(information.process), information.processType));
    AddLine(table, "Quantity", labelled.quantity ? Printable(labelled.quantity->name) : "none");
    AddLine(table, "Caption", Printable(information.caption));
    AddLine(table, "Comment", Printable(information.comment));
    AddLine(table, "Analyzer", Printable(information.analyzer));
    AddLine(table, "Date", DateText(information.date));
    AddLine(table, "System", std::to_string(information.system));
    return table.Text("  ");
}

std::string ScalarText(const LabelledResult& scalar, const ShowOptions& options)
{
    const auto text = [&](ZelmResult::wstring_view name) {
        const ZelmResult::LabelledArray& level = *scalar.Data(name);
        const float value = level.Floats()->front();
        return options.decibels ? DecibelText(value, level.quantity)
                                : LevelText(value, level.quantity, {level.absolutePrecision, level.relativePrecision});
    };
    TextTable values({Align::Left, Align::Left});
    values.AddRow({"Value", text(u"value")});
    values.AddRow({"Maximum", text(u"maximum")});
    values.AddRow({"Minimum", text(u"minimum")});
    return values.Text("  ");
}

// Of the levels of the signal, which have the quantity of the result.
std::vector<float> SignalValues(const std::vector<ShownScalar>& levels)
{
    std::vector<float> values;
    for (const ShownScalar& level : levels)
        if (level.kind == ShownScalar::Kind::Signal)
            values.insert(values.end(), {level.last, level.highest, level.lowest});
    return values;
}

// A line per level, in the unit and in decibels, or in decibels alone. Extremes only where there are some.
std::string LevelsText(const std::vector<ShownScalar>& levels, const LabelledResult& labelled, Scale scale)
{
    const auto& first = labelled.data.front();
    const Precision precision{first.absolutePrecision, first.relativePrecision};
    const Quantity& quantity = labelled.quantity;
    std::vector<Scale> scales{scale};
    if (scale == Scale::Linear && HasDecibels(quantity)) scales.push_back(Scale::Decibels);
    const bool vary =
        std::any_of(levels.begin(), levels.end(), [](const ShownScalar& level) { return level.Varies(); });
    std::vector<std::string> titles{"Level"};
    for (const Scale shown : scales) {
        const bool isLinear = shown == Scale::Linear;
        titles.push_back(TitleIn(vary ? "Last" : "Value", quantity, shown));
        if (vary && isLinear) titles.insert(titles.end(), {"Highest", "Lowest"});
        if (vary && !isLinear) titles.insert(titles.end(), {"Highest, dB", "Lowest, dB"});
    }
    std::vector<Align> columns(titles.size(), Align::Right);
    columns.front() = Align::Left;
    TextTable table(std::move(columns));
    table.AddRow(std::move(titles));
    const std::vector<float> values = SignalValues(levels);
    for (const ShownScalar& level : levels) {
        std::vector<std::string> row{level.name};
        for (const Scale shown : scales) {
            const ColumnText column(values, quantity, precision, shown);
            row.push_back(level.Text(level.last, column, shown));
            if (!vary) continue;
            row.push_back(level.Text(level.highest, column, shown));
            row.push_back(level.Text(level.lowest, column, shown));
        }
        table.AddRow(std::move(row));
    }
    return table.Text("  ");
}

std::string LevelLines(const ShownVector& vector)
{
    TextTable table({Align::Left, Align::Left});
    const ShownColumn& column = vector.columns.front();
    for (const ShownLevel& level : vector.levels)
        table.AddRow({level.name, LevelText(level.value, column.quantity, column.precision, &level.weighting)});
    return table.Text("  ");
}

// The points of the table: all in their order, or the highest peaks.
std::vector<std::size_t> ChosenPoints(const ShownVector& vector, const ShowOptions& options)
{
    if (options.top != 0) return vector.Highest(options.top);
    std::vector<std::size_t> all(vector.x.values.size());
    std::iota(all.begin(), all.end(), std::size_t{0});
    return all;
}

ColumnText TextOf(const ShownColumn& column, const std::vector<std::size_t>& points, Scale scale)
{
    std::vector<float> values;
    values.reserve(points.size());
    for (const std::size_t point : points) values.push_back(column.values[point]);
    return {values, column.quantity, column.precision, scale};
}

// Where the columns of a result with several are highest and lowest.
std::string ExtremeTable(const ShownVector& vector, Scale scale)
{
    if (vector.columns.size() < 2 || vector.isBands) return {};
    TextTable table({Align::Left, Align::Right, Align::Right, Align::Right, Align::Right});
    table.AddRow({"", "Highest", "At", "Lowest", "At"});
    const ShownColumn& first = vector.columns.front(); // the others have its quantity
    std::vector<float> all;
    for (const ShownColumn& column : vector.columns) all.insert(all.end(), column.values.begin(), column.values.end());
    const ColumnText text(all, first.quantity, first.precision, scale);
    const ColumnText x(vector.x.values, vector.x.quantity, vector.x.precision, Scale::Linear);
    for (const ShownColumn& column : vector.columns) {
        std::vector<std::string> row{TitleIn(column.name, column.quantity, scale)};
        const auto extremes = ShownVector::Extremes(column);
        if (!extremes) continue;
        for (const std::size_t point : {extremes->first, extremes->second}) {
            row.push_back(text(column.values[point]));
            row.push_back(x(vector.x.values[point]));
        }
        table.AddRow(std::move(row));
    }
    return table.Text("  ");
}

std::string PointTable(const ShownVector& vector, const ShowOptions& options)
{
    const bool hasPhase = !vector.real.empty();
    TextTable table(std::vector<Align>(1 + vector.columns.size() + (hasPhase ? 1 : 0), Align::Right));
    std::vector<std::string> titles{vector.x.name};
    for (const ShownColumn& column : vector.columns)
        titles.push_back(TitleIn(column.name, column.quantity, options.ShownScale()));
    if (hasPhase) titles.emplace_back("Phase");
    table.AddRow(std::move(titles));
    const std::vector<std::size_t> points = ChosenPoints(vector, options);
    const ColumnText x = TextOf(vector.x, points, Scale::Linear);
    std::vector<ColumnText> texts;
    for (const ShownColumn& column : vector.columns) texts.push_back(TextOf(column, points, options.ShownScale()));
    for (const std::size_t point : points) {
        std::vector<std::string> row{x(vector.x.values[point])};
        for (std::size_t i = 0; i < texts.size(); ++i) row.push_back(texts[i](vector.columns[i].values[point]));
        if (hasPhase) row.push_back(AngleText(vector.Phase(point)));
        table.AddRow(std::move(row));
    }
    return table.Text("  ");
}

std::string ReferenceText(const SliceReference& reference, std::size_t slice)
{
    return ValueText(reference.values[slice], reference.quantity, reference.precision, Scale::Linear);
}

std::string SliceLines(const ShownWaterfall& waterfall, std::size_t slice)
{
    TextTable table({Align::Left, Align::Left});
    table.AddRow({"Slice", fmt::format("{} of {}, block {}", slice, waterfall.blocks.size(), waterfall.blocks[slice])});
    for (const SliceReference& reference : waterfall.references)
        table.AddRow({reference.name, ReferenceText(reference, slice)});
    return table.Text("  ");
}

// Of a slice: the point where it is highest, and its value there.
struct SlicePeak {
    ShownColumn x;
    ShownColumn value;
};

// Of all slices, a NaN for those without a peak.
SlicePeak PeaksOf(const LabelledResult& waterfall, std::size_t slices)
{
    SlicePeak peaks;
    for (std::size_t slice = 0; slice < slices; ++slice) {
        const ShownVector shown = DescribeSlice(waterfall, slice);
        const ShownColumn& column = shown.columns.front();
        if (slice == 0) {
            peaks.x = {"Highest at", shown.x.quantity, shown.x.precision, {}};
            peaks.value = {"Its value", column.quantity, column.precision, {}};
        }
        const auto highest = shown.Highest(1);
        peaks.x.values.push_back(highest.empty() ? NAN : shown.x.values[highest.front()]);
        peaks.value.values.push_back(highest.empty() ? NAN : column.values[highest.front()]);
    }
    return peaks;
}

// A line per slice: its references, and where it is highest.
std::string SliceTable(const LabelledResult& labelled, const ShownWaterfall& waterfall, const ShowOptions& options)
{
    TextTable table(std::vector<Align>(waterfall.references.size() + 4, Align::Right));
    std::vector<std::string> titles{"Slice", "Block"};
    std::vector<ColumnText> references;
    for (const SliceReference& reference : waterfall.references) {
        titles.push_back(reference.name);
        references.emplace_back(reference.values, reference.quantity, reference.precision, Scale::Linear);
    }
    titles.insert(titles.end(), {"Highest at", "Its value"});
    table.AddRow(std::move(titles));
    const auto [at, value] = PeaksOf(labelled, waterfall.blocks.size());
    const ColumnText atText(at.values, at.quantity, at.precision, Scale::Linear);
    const ColumnText valueText(value.values, value.quantity, value.precision, options.ShownScale());
    for (std::size_t slice = 0; slice < waterfall.blocks.size(); ++slice) {
        std::vector<std::string> row{std::to_string(slice), std::to_string(waterfall.blocks[slice])};
        for (std::size_t i = 0; i < references.size(); ++i)
            row.push_back(references[i](waterfall.references[i].values[slice]));
        const bool hasPeak = !std::isnan(at.values[slice]);
        row.push_back(hasPeak ? atText(at.values[slice]) : "none");
        row.push_back(hasPeak ? valueText(value.values[slice]) : "");
        table.AddRow(std::move(row));
    }
    return table.Text("  ");
}

} // namespace

std::string ResultText(const ShowOptions& options, const ShownResult& shown)
{
    const Scale scale = options.ShownScale();
    const auto& waterfall = shown.waterfall;
    std::string text = fmt::format("Result {} of {}\n", options.number, Printable(options.document));
    text += HeaderText(shown.labelled);
    if (shown.labelled.form == ZelmResult::LabelledForm::Level) text += ScalarText(shown.labelled, options);
    if (!shown.levels.empty()) text += LevelsText(shown.levels, shown.labelled, scale);
    if (waterfall)
        text += shown.slice ? SliceLines(*waterfall, *shown.slice) : SliceTable(shown.labelled, *waterfall, options);
    if (shown.vector)
        text += LevelLines(*shown.vector) + ExtremeTable(*shown.vector, scale) + PointTable(*shown.vector, options);
    return text;
}

} // namespace zmxf
