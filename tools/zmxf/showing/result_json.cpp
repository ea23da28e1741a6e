#include "tools/zmxf/showing/result_json.h"

namespace zmxf {

namespace {

using ZelmResult::LabelledResult;

Json ValueJson(float si, const Quantity& quantity)
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
    const Quantity& quantity = vector.columns.front().quantity;
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

Json LevelJson(float value, float highest, float lowest, const Quantity& quantity)
{
    return {{"value", ValueJson(value, quantity)},
            {"maximum", ValueJson(highest, quantity)},
            {"minimum", ValueJson(lowest, quantity)}};
}

Json LevelsJson(const std::vector<ShownScalar>& levels)
{
    Json json;
    for (const ShownScalar& level : levels)
        json[level.name] = LevelJson(level.last, level.highest, level.lowest, level.quantity);
    return json;
}

void AddScalarJson(const LabelledResult& scalar, Json& json)
{
    const auto value = [&](ZelmResult::wstring_view name) { return scalar.Data(name)->Floats()->front(); };
    json.update(LevelJson(value(u"value"), value(u"maximum"), value(u"minimum"), scalar.quantity));
}

void AddWaterfallJson(const ShownResult& shown, Json& json)
{
    if (shown.slice)
        json["slice"] = SliceJson(*shown.waterfall, *shown.slice);
    else
        json["slices"] = SlicesJson(*shown.waterfall);
}

} // namespace

Json ResultJson(const ShowOptions& options, const ShownResult& shown)
{
    Json json;
    json["file"] = options.document;
    json["header"] = HeaderJson(shown.listed, options.number);
    json["quantity"] = QuantityJson(shown.labelled.quantity);
    if (shown.labelled.form == ZelmResult::LabelledForm::Level) AddScalarJson(shown.labelled, json);
    if (!shown.levels.empty()) json["levels"] = LevelsJson(shown.levels);
    if (shown.waterfall) AddWaterfallJson(shown, json);
    if (shown.vector) AddVectorJson(*shown.vector, options, json);
    return json;
}

} // namespace zmxf
