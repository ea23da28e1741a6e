#include "tools/zmxf/description.h"

#include "tools/zmxf/text.h"
#include "zelmresult/document/file_header.h"
#include "zelmresult/support/text.h"

#include <array>
#include <cmath>

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

const CUnite* ShownUnit(const CGrandeur* quantity)
{
    return quantity != nullptr ? quantity->GetUniteCourante() : nullptr;
}

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
    const CUnite& unit = *ShownUnit(quantity);
    return {{"reference", JsonNumber(unit.GetRef0dB())}, {"factor", JsonNumber(unit.GetCoefdB())}};
}

} // namespace

std::string JsonText(ZelmResult::wstring_view text) { return ZelmResult::ToUtf8(text); }

Json JsonNumber(float value) { return std::isfinite(value) ? Json(ShortestDouble(value)) : Json(nullptr); }

std::string JsonDocument(const Json& json) { return json.dump(2, ' ', false, Json::error_handler_t::replace) + '\n'; }

Json HeaderJson(const ListedResult& listed, std::size_t number)
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
    json["window"] = header.GetNumWindow();
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
    if (const CUnite* unit = ShownUnit(quantity); unit != nullptr) {
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

std::string DimensionText(const ZelmResult::CEquationDim& dimension)
{
    std::string text;
    for (const BaseUnit& unit : kBaseUnits) {
        const double exponent = Exponent(*dimension.GetEqDim(), unit);
        if (exponent == 0.0) continue;
        text += (text.empty() ? "" : " ") + std::string(unit.symbol);
        if (exponent != 1.0) text += '^' + NumberText(exponent);
    }
    return text;
}

std::string DateText(const CResultHeader& header) { return ZelmResult::OTimeToDateString(header.date()); }

std::string UnitLabel(const CGrandeur* quantity)
{
    const CUnite* unit = ShownUnit(quantity);
    return unit != nullptr ? Printable(unit->GetLabelLinUnite()) : std::string();
}

bool HasDecibels(const CGrandeur* quantity)
{
    const CUnite* unit = ShownUnit(quantity);
    return unit != nullptr && !unit->GetLabelLinUnite().empty() && unit->GetRef0dB() > 0.0F && unit->GetCoefdB() > 0.0F;
}

std::string DecibelReference(const CGrandeur* quantity)
{
    if (!HasDecibels(quantity)) return {};
    return NumberText(static_cast<double>(ShownUnit(quantity)->GetRef0dB())) + ' ' + UnitLabel(quantity);
}

double InUnit(float si, const CGrandeur* quantity)
{
    const CUnite* unit = ShownUnit(quantity);
    if (unit == nullptr) return static_cast<double>(si);
    return static_cast<double>(si) * static_cast<double>(unit->GetCoeffA()) + static_cast<double>(unit->GetCoeffB());
}

std::optional<double> InDecibels(float si, const CGrandeur* quantity)
{
    if (!HasDecibels(quantity)) return std::nullopt;
    const CUnite& unit = *ShownUnit(quantity);
    // Not by the unit's inverse of the reference, which a stored unit comes without.
    const double ratio = InUnit(si, quantity) / static_cast<double>(unit.GetRef0dB());
    if (!(ratio > 0.0) || std::isinf(ratio)) return std::nullopt;
    return static_cast<double>(unit.GetCoefdB()) * std::log10(ratio);
}

} // namespace zmxf
