#include "tools/zmxf/showing/description.h"

#include "tools/zmxf/base/text.h"
#include "tools/zmxf/showing/value_text.h"
#include "zelmresult/document/file_header.h"
#include "zelmresult/support/text.h"

#include <array>
#include <cmath>
#include <fmt/format.h>

namespace zmxf {

namespace {

using ZelmResult::CGrandeur;
using ZelmResult::CResultHeader;
using ZelmResult::CUnite;
using ZelmResult::EquationDim;
namespace FileType = ZelmResult::FileType;

struct ContentName {
    std::uint32_t bit;
    const char* name;
};

constexpr std::array kContentNames = std::to_array<ContentName>({
    {FileType::kQuantities, "quantities"},
    {FileType::kRecording, "recording"},
    {FileType::kResults, "results"},
    {FileType::kSettings, "settings"},
    {FileType::kTracks, "tracks"},
    {FileType::kReferences, "references"},
    {FileType::kRecordPreview, "recording preview"},
});

struct BaseUnit {
    std::uint8_t EquationDim::*biased;
    const char* symbol;
};

constexpr std::array kBaseUnits = std::to_array<BaseUnit>({
    {&EquationDim::Radians, "rad"},
    {&EquationDim::Steradians, "sr"},
    {&EquationDim::Meters, "m"},
    {&EquationDim::Kilograms, "kg"},
    {&EquationDim::Seconds, "s"},
    {&EquationDim::Amperes, "A"},
    {&EquationDim::Kelvins, "K"},
    {&EquationDim::Moles, "mol"},
    {&EquationDim::Candelas, "cd"},
});

double Exponent(const EquationDim& dim, const BaseUnit& unit) { return (int{dim.*unit.biased} - 128) / 2.0; }

Json DimensionJson(const EquationDim& dim)
{
    Json json = Json::object();
    for (const BaseUnit& unit : kBaseUnits)
        if (const double exponent = Exponent(dim, unit); exponent != 0.0) json[unit.symbol] = exponent;
    return json;
}

Json DecibelsJson(const CGrandeur* quantity)
{
    if (!HasDecibels(quantity)) return nullptr;
    const CUnite& unit = *quantity->GetUniteCourante();
    return {{"reference", JsonNumber(unit.GetRef0dB())}, {"factor", JsonNumber(unit.GetCoefdB())}};
}

} // namespace

std::string JsonText(ZelmResult::wstring_view text) { return ZelmResult::ToUtf8(text); }

Json JsonNumber(float value) { return std::isfinite(value) ? Json(ShortestDouble(value)) : Json(nullptr); }

std::string IndentedJson(const Json& json) { return json.dump(2, ' ', false, Json::error_handler_t::replace); }

std::string JsonDocument(const Json& json)
{
    Json document = json;
    if (json.is_object()) {
        document = {{"schema", kJsonSchema}};
        document.update(json);
    }
    return IndentedJson(document) + '\n';
}

Json HeaderJson(const ZelmResult::ListedResult& listed, std::size_t number)
{
    const CResultHeader& header = *listed.header;
    Json json;
    json["number"] = number;
    json["system"] = listed.system;
    json["processType"] = header.GetProcessType();
    json["process"] = JsonText(header.processCaption());
    json["response"] = JsonText(header.responseName());
    json["responseChannel"] = header.GetNumReponse();
    json["responseId"] = JsonText(idn::IdnString::idnToStringT(header.GetIdnResponse()));
    json["reference"] = JsonText(header.referenceName());
    json["referenceChannel"] = header.GetNumReference();
    json["date"] = DateText(header);
    json["caption"] = JsonText(header.caption());
    json["comment"] = JsonText(header.comment());
    json["analyzer"] = JsonText(header.analyzerCaption());
    json["identification"] = JsonText(header.identificationName());
    json["file"] = JsonText(header.filename());
    json["weighting"] = header.GetPonderation();
    json["timeWeighting"] = header.GetPonderationTemporelle();
    json["window"] = header.GetNumWindow().toInt();
    json["waterfallDimension"] = header.GetWaterfallDimension();
    return json;
}

Json QuantityJson(const CGrandeur* quantity)
{
    if (quantity == nullptr) return nullptr;
    Json json;
    json["key"] = JsonText(quantity->quantityKey());
    json["name"] = JsonText(quantity->quantityName());
    json["dimension"] = DimensionJson(*quantity->GetEqDim().GetEqDim());
    json["uffType"] = quantity->GetTypeUFF();
    if (const CUnite* unit = quantity->GetUniteCourante(); unit != nullptr) {
        json["unit"] = JsonText(unit->GetLabelLinUnite());
        json["unitPerSI"] = JsonNumber(unit->GetCoeffA());
        json["unitOffset"] = JsonNumber(unit->GetCoeffB());
    }
    json["decibels"] = DecibelsJson(quantity);
    return json;
}

std::vector<std::string> ContentNames(std::uint32_t type)
{
    std::vector<std::string> names;
    for (const ContentName& content : kContentNames)
        if ((type & content.bit) != 0) names.emplace_back(content.name);
    return names;
}

std::string IdnText(const idn::Idn& idn) { return ZelmResult::ToUtf8(idn::IdnString::idnToStringT(idn)); }

std::string DimensionText(const ZelmResult::CEquationDim& dimension)
{
    std::vector<std::string> factors;
    for (const BaseUnit& unit : kBaseUnits) {
        const double exponent = Exponent(*dimension.GetEqDim(), unit);
        if (exponent == 0.0) continue;
        factors.push_back(exponent == 1.0 ? unit.symbol : fmt::format("{}^{}", unit.symbol, NumberText(exponent)));
    }
    return fmt::format("{}", fmt::join(factors, " "));
}

std::string DateText(const CResultHeader& header) { return ZelmResult::OTimeToDateString(header.date()); }

} // namespace zmxf
