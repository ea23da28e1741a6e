#include "tools/signal_processing/peaks.h"
#include "tools/zmxf/base/open_document.h"
#include "tools/zmxf/base/text.h"
#include "tools/zmxf/showing/description.h"
#include "tools/zmxf/showing/shown_levels.h"
#include "tools/zmxf/showing/shown_vector.h"
#include "tools/zmxf/showing/shown_waterfall.h"
#include "tools/zmxf/verbs/verbs.h"
#include "zelmresult/results/scalar.h"

#include <algorithm>
#include <cmath>
#include <iostream>
#include <memory>
#include <numeric>

namespace zmxf {

namespace {

using Align = TextTable::Align;
using ZelmResult::CGrandeur;
using ZelmResult::CScalar;

struct ShowOptions {
    std::string document;
    std::size_t number = 0;
    std::size_t top = 0; // 0: all points
    bool decibels = false;
    bool json = false;
    SliceChoice slice;
};

Scale ScaleOf(const ShowOptions& options) { return options.decibels ? Scale::Decibels : Scale::Linear; }

// ---- JSON ----

Json ValueJson(float si, const CGrandeur* quantity)
{
    const auto decibels = InDecibels(si, quantity);
    return {{"si", JsonNumber(si)},
            {"inUnit", JsonNumber(static_cast<float>(InUnit(si, quantity)))},
            {"dB", decibels ? Json(*decibels) : Json(nullptr)}};
}

Json ValuesJson(const std::vector<float>& values)
{
    Json json = Json::array();
    for (const float value : values) json.push_back(JsonNumber(value));
    return json;
}

Json ColumnJson(const ShownColumn& column, const ShowOptions& options)
{
    Json json{{"name", column.name}, {"si", ValuesJson(column.values)}};
    if (!options.decibels) return json;
    json["dB"] = Json::array();
    for (const float value : column.values) {
        const auto decibels = InDecibels(value, column.quantity);
        json["dB"].push_back(decibels ? Json(*decibels) : Json(nullptr));
    }
    return json;
}

Json PeaksJson(const ShownVector& vector, std::size_t count)
{
    Json json = Json::array();
    const ShownColumn& column = vector.columns.front();
    for (const std::size_t line : vector.Highest(count))
        json.push_back({{"point", line},
                        {"x", JsonNumber(vector.x.values[line])},
                        {"value", ValueJson(column.values[line], column.quantity)}});
    return json;
}

Json ExtremesJson(const ShownVector& vector)
{
    Json json = Json::object();
    for (const ShownColumn& column : vector.columns) {
        const auto extremes = ShownVector::Extremes(column);
        if (!extremes) continue;
        for (const auto& [name, point] : {std::pair("highest", extremes->first), {"lowest", extremes->second}})
            json[column.name][name] = {{"point", point},
                                       {"x", ValueJson(vector.x.values[point], vector.x.quantity)},
                                       {"value", ValueJson(column.values[point], column.quantity)}};
    }
    return json;
}

void AddVectorJson(const ShownVector& vector, const ShowOptions& options, Json& json)
{
    const CGrandeur* quantity = vector.columns.front().quantity;
    for (const ShownLevel& level : vector.levels) json["levels"][level.name] = ValueJson(level.value, quantity);
    if (vector.columns.size() > 1 && !vector.isBands) json["extremes"] = ExtremesJson(vector);
    if (options.top != 0) {
        json["peaks"] = PeaksJson(vector, options.top);
        return;
    }
    json["x"] = ColumnJson(vector.x, {});
    json["x"]["quantity"] = QuantityJson(vector.x.quantity);
    json["columns"] = Json::array();
    for (const ShownColumn& column : vector.columns) json["columns"].push_back(ColumnJson(column, options));
    if (vector.real.empty()) return;
    json["real"] = ValuesJson(vector.real);
    json["imaginary"] = ValuesJson(vector.imaginary);
}

// The values of all references at a slice, by name.
Json ReferencesJson(const ShownWaterfall& waterfall, std::size_t slice)
{
    Json json = Json::object();
    for (const SliceReference& reference : waterfall.references)
        json[reference.name] = ValueJson(reference.values[slice], reference.quantity);
    return json;
}

Json SliceJson(const ShownWaterfall& waterfall, std::size_t slice)
{
    return {{"index", slice}, {"block", waterfall.blocks[slice]}, {"references", ReferencesJson(waterfall, slice)}};
}

Json SlicesJson(const ShownWaterfall& waterfall)
{
    Json json = Json::array();
    for (std::size_t slice = 0; slice < waterfall.blocks.size(); ++slice) json.push_back(SliceJson(waterfall, slice));
    return json;
}

void AddScalarJson(const CScalar& scalar, const CGrandeur* quantity, Json& json)
{
    json["value"] = ValueJson(scalar.lastValue(), quantity);
    json["maximum"] = ValueJson(scalar.maxValue(), quantity);
    json["minimum"] = ValueJson(scalar.minValue(), quantity);
}

Json LevelsJson(const std::vector<ShownScalar>& levels)
{
    Json json;
    for (const ShownScalar& level : levels) {
        AddScalarJson(*level.level, level.quantity(), json[level.name]);
        if (level.kind != ShownScalar::Kind::Energy) continue;
        for (const auto& [name, value] : json[level.name].items())
            value["inUnit"] = JsonNumber(value["si"].is_null() ? NAN : level.EnergyInUnit(value["si"].get<float>()));
    }
    return json;
}

// ---- Text ----

void AddLine(TextTable& table, const char* name, const std::string& text)
{
    if (!text.empty()) table.AddRow({name, text});
}

std::string HeaderText(const ZelmResult::StoredResult& stored, const CGrandeur* quantity)
{
    const auto& header = stored.header();
    TextTable table({Align::Left, Align::Left});
    AddLine(table, "Response", Printable(header.responseName()));
    AddLine(table, "Reference", Printable(header.referenceName()));
    AddLine(table, "Process",
            Printable(header.processCaption()) + " (type " + std::to_string(header.GetProcessType()) + ')');
    AddLine(table, "Quantity", quantity != nullptr ? Printable(quantity->quantityName()) : "none");
    AddLine(table, "Caption", Printable(header.caption()));
    AddLine(table, "Comment", Printable(header.comment()));
    AddLine(table, "Analyzer", Printable(header.analyzerCaption()));
    AddLine(table, "Date", DateText(header));
    AddLine(table, "System", std::to_string(stored.system()));
    return table.Text("  ");
}

std::string ScalarText(const CScalar& scalar, const ShowOptions& options)
{
    const CGrandeur* quantity = scalar.GetMagnitude();
    const Precision precision{scalar.GetAbsPrecisionY(), scalar.GetRelPrecisionY()};
    const auto text = [&](float value) {
        return options.decibels ? DecibelText(value, quantity) : LevelText(value, quantity, precision);
    };
    TextTable values({Align::Left, Align::Left});
    values.AddRow({"Value", text(scalar.lastValue())});
    values.AddRow({"Maximum", text(scalar.maxValue())});
    values.AddRow({"Minimum", text(scalar.minValue())});
    return values.Text("  ");
}

// Of the levels of the signal, which have the quantity of the result.
std::vector<float> SignalValues(const std::vector<ShownScalar>& levels)
{
    std::vector<float> values;
    for (const ShownScalar& level : levels)
        if (level.kind == ShownScalar::Kind::Signal)
            values.insert(values.end(), {level.level->lastValue(), level.level->maxValue(), level.level->minValue()});
    return values;
}

// A line per level, in the unit and in decibels, or in decibels alone. Extremes only where there are some.
std::string LevelsText(const std::vector<ShownScalar>& levels, const ZelmResult::CResult& result, Scale scale)
{
    const Precision precision{result.GetAbsPrecisionY(), result.GetRelPrecisionY()};
    const CGrandeur* quantity = result.GetMagnitude();
    std::vector<Scale> scales{scale};
    if (scale == Scale::Linear && HasDecibels(quantity)) scales.push_back(Scale::Decibels);
    const bool vary =
        std::any_of(levels.begin(), levels.end(), [](const ShownScalar& level) { return level.Varies(); });
    std::vector<std::string> titles{"Level"};
    for (const Scale shown : scales) {
        const bool isLinear = shown == Scale::Linear;
        titles.push_back((vary ? "Last" : "Value") + (isLinear ? "" : ", dB re " + DecibelReference(quantity)));
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
            row.push_back(level.Text(level.level->lastValue(), column, shown));
            if (!vary) continue;
            row.push_back(level.Text(level.level->maxValue(), column, shown));
            row.push_back(level.Text(level.level->minValue(), column, shown));
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

std::string ColumnTitle(const ShownColumn& column, Scale scale)
{
    return scale == Scale::Linear ? column.name : column.name + ", dB re " + DecibelReference(column.quantity);
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
        std::vector<std::string> row{ColumnTitle(column, scale)};
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
    for (const ShownColumn& column : vector.columns) titles.push_back(ColumnTitle(column, ScaleOf(options)));
    if (hasPhase) titles.emplace_back("Phase");
    table.AddRow(std::move(titles));
    const std::vector<std::size_t> points = ChosenPoints(vector, options);
    const ColumnText x = TextOf(vector.x, points, Scale::Linear);
    std::vector<ColumnText> texts;
    for (const ShownColumn& column : vector.columns) texts.push_back(TextOf(column, points, ScaleOf(options)));
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
    table.AddRow({"Slice", std::to_string(slice) + " of " + std::to_string(waterfall.blocks.size()) + ", block " +
                               std::to_string(waterfall.blocks[slice])});
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
SlicePeak PeaksOf(const ShownWaterfall& waterfall)
{
    SlicePeak peaks;
    for (std::size_t slice = 0; slice < waterfall.blocks.size(); ++slice) {
        const auto data = waterfall.Slice(slice);
        const auto shown = DescribeVector(*data, {});
        const ShownColumn& column = shown->columns.front();
        if (slice == 0) {
            peaks.x = {"Highest at", shown->x.quantity, shown->x.precision, {}};
            peaks.value = {"Its value", column.quantity, column.precision, {}};
        }
        const auto highest = shown->Highest(1);
        peaks.x.values.push_back(highest.empty() ? NAN : shown->x.values[highest.front()]);
        peaks.value.values.push_back(highest.empty() ? NAN : column.values[highest.front()]);
    }
    return peaks;
}

// A line per slice: its references, and where it is highest.
std::string SliceTable(const ShownWaterfall& waterfall, const ShowOptions& options)
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
    const auto [at, value] = PeaksOf(waterfall);
    const ColumnText atText(at.values, at.quantity, at.precision, Scale::Linear);
    const ColumnText valueText(value.values, value.quantity, value.precision, ScaleOf(options));
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

// ---- Both ----

void CheckDecibels(const ShowOptions& options, const CGrandeur* quantity)
{
    if (options.decibels && !HasDecibels(quantity))
        throw Failure(Printable(options.document) + ": result " + std::to_string(options.number) +
                      " is in a quantity without decibels");
}

// A result as it is shown: a level, several of them, a vector, or a waterfall with the slice that was chosen, if any.
struct Shown {
    const ZelmResult::CResult* result = nullptr;
    const CScalar* scalar = nullptr;
    std::vector<ShownScalar> levels;
    std::optional<ShownWaterfall> waterfall;
    std::optional<std::size_t> slice;
    std::unique_ptr<ZelmResult::CRegVector> sliceData;
    std::optional<ShownVector> vector;
};

Shown Describe(const ShowOptions& options, ZelmResult::StoredResult& stored)
{
    Shown shown;
    shown.result = &stored.result();
    shown.scalar = dynamic_cast<const CScalar*>(shown.result);
    shown.waterfall = DescribeWaterfall(stored.result());
    const std::string caption = Printable(stored.header().processCaption());
    const auto fail = [&options](const std::string& why) {
        throw Failure(Printable(options.document) + ": result " + std::to_string(options.number) + why);
    };
    if (!shown.waterfall) {
        if (options.slice.IsMade()) fail(" is no waterfall");
        shown.levels = DescribeLevels(stored.result(), caption);
        shown.vector = DescribeVector(stored.result(), caption);
        if (options.top != 0 && !shown.vector) fail(" has no points, so no peaks");
    } else if (options.slice.IsMade()) {
        shown.slice = shown.waterfall->Find(options.slice);
        shown.sliceData = shown.waterfall->Slice(*shown.slice);
        shown.vector = DescribeVector(*shown.sliceData, caption);
    } else if (options.top != 0) {
        fail(" is a waterfall: choose a slice with --slice, --block or --at");
    }
    if (shown.scalar == nullptr && shown.levels.empty() && !shown.vector && !shown.waterfall)
        FailToShow(options.document, stored.header(), options.number);
    return shown;
}

const CGrandeur* QuantityOf(const Shown& shown)
{
    return shown.vector ? shown.vector->columns.front().quantity : shown.result->GetMagnitude();
}

void AddWaterfallJson(const Shown& shown, Json& json)
{
    if (shown.slice)
        json["slice"] = SliceJson(*shown.waterfall, *shown.slice);
    else
        json["slices"] = SlicesJson(*shown.waterfall);
}

void RunShow(const ShowOptions& options)
{
    ZelmResult::StoredResult stored = ReadResult(options.document, options.number);
    const Shown shown = Describe(options, stored);
    const auto& [result, scalar, levels, waterfall, slice, sliceData, vector] = shown;
    const CGrandeur* quantity = QuantityOf(shown);
    CheckDecibels(options, quantity);
    if (options.json) {
        Json json;
        json["file"] = options.document;
        json["header"] = HeaderJson(stored.listed(), options.number);
        json["quantity"] = QuantityJson(quantity);
        if (scalar != nullptr) AddScalarJson(*scalar, quantity, json);
        if (!levels.empty()) json["levels"] = LevelsJson(levels);
        if (waterfall) AddWaterfallJson(shown, json);
        if (vector) AddVectorJson(*vector, options, json);
        std::cout << JsonDocument(json);
        return;
    }
    std::cout << "Result " << options.number << " of " << Printable(options.document) << '\n'
              << HeaderText(stored, quantity);
    if (scalar != nullptr) std::cout << ScalarText(*scalar, options);
    if (!levels.empty()) std::cout << LevelsText(levels, *result, ScaleOf(options));
    if (waterfall) std::cout << (slice ? SliceLines(*waterfall, *slice) : SliceTable(*waterfall, options));
    if (vector)
        std::cout << LevelLines(*vector) << ExtremeTable(*vector, ScaleOf(options)) << PointTable(*vector, options);
}

} // namespace

void AddShowVerb(CLI::App& program)
{
    auto options = std::make_shared<ShowOptions>();
    CLI::App* verb = program.add_subcommand("show", "Shows one result of a document");
    verb->add_option("FILE", options->document, "Result document")->required();
    verb->add_option("N", options->number, "Number of the result, counted from 0 in file order")
        ->check(CheckWholeNumber(0))
        ->capture_default_str();
    verb->add_flag("--db", options->decibels, "Show values in decibels, with their reference");
    verb->add_option("--top", options->top, "Show only that many peaks, the highest first")->check(CheckWholeNumber(1));
    CLI::Option_group* slices = verb->add_option_group("Slice of a waterfall");
    slices->add_option("--slice", options->slice.index, "By its index, counted from 0")->check(CheckWholeNumber(0));
    slices->add_option("--block", options->slice.block, "By the number of its block")->check(CheckWholeNumber(0));
    slices->add_option("--at", options->slice.at,
                       "The one nearest to a value of a reference, such as 3000rpm or 12.5s; without a unit of the "
                       "chosen one");
    slices->require_option(0, 1);
    verb->add_flag("--json", options->json, "Print JSON");
    verb->footer("Example:\n  zmxf show pump.zmxf 7 --db --top 5");
    verb->callback([options] { RunShow(*options); });
}

} // namespace zmxf
