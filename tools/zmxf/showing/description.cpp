#include "tools/zmxf/showing/description.h"

#include "tools/zmxf/base/text.h"
#include "zelmresult/document/file_header.h"
#include "zelmresult/storage/chunk_codes.h"
#include "zelmresult/support/text.h"

#include <array>
#include <cmath>
#include <fmt/format.h>

namespace zmxf {

namespace {

using ZelmResult::CResultHeader;
using ZelmResult::LabelledQuantity;
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

std::string BaseSymbol(std::size_t i) { return ZelmResult::ToUtf8(LabelledQuantity::kBaseSymbols[i]); }

Json DimensionJson(const LabelledQuantity& quantity)
{
    Json json = Json::object();
    for (std::size_t i = 0; i < quantity.exponents.size(); ++i)
        if (quantity.exponents[i] != 0.0) json[BaseSymbol(i)] = quantity.exponents[i];
    return json;
}

Json DecibelsJson(const LabelledQuantity& quantity)
{
    if (!quantity.HasDecibels()) return nullptr;
    return {{"reference", JsonNumber(quantity.shown->decibelReference)},
            {"factor", JsonNumber(quantity.shown->decibelFactor)}};
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
    json["date"] = DateText(header.date());
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

Json HardwareJson(const std::vector<ZelmResult::strHardInfo>& hardware)
{
    Json json = Json::array();
    for (const auto& entry : hardware)
        json.push_back({{"shortName", entry.HardShortName},
                        {"serialNumber", entry.HardSN},
                        {"diskName", entry.DiskName},
                        {"diskSerialNumber", entry.DiskSN}});
    return json;
}

Json QuantityJson(const Quantity& quantity)
{
    if (!quantity) return nullptr;
    Json json;
    json["key"] = JsonText(quantity->key);
    json["name"] = JsonText(quantity->name);
    json["dimension"] = DimensionJson(*quantity);
    json["uffType"] = quantity->uffType;
    if (const auto& unit = quantity->shown; unit) {
        json["unit"] = JsonText(unit->label);
        json["unitPerSI"] = JsonNumber(static_cast<float>(unit->slope));
        json["unitOffset"] = JsonNumber(static_cast<float>(unit->offset));
    }
    json["decibels"] = DecibelsJson(*quantity);
    return json;
}

std::string CodeText(const ZelmResult::StoredQuantity& stored)
{
    return ZelmResult::ToUtf8(ZelmResult::FourCCToString(stored.code));
}

std::vector<std::string> ContentNames(std::uint32_t type)
{
    std::vector<std::string> names;
    for (const ContentName& content : kContentNames)
        if ((type & content.bit) != 0) names.emplace_back(content.name);
    return names;
}

std::string IdnText(const idn::Idn& idn) { return ZelmResult::ToUtf8(idn::IdnString::idnToStringT(idn)); }

std::string DimensionText(const LabelledQuantity& quantity)
{
    std::vector<std::string> factors;
    for (std::size_t i = 0; i < quantity.exponents.size(); ++i) {
        const double exponent = quantity.exponents[i];
        if (exponent == 0.0) continue;
        factors.push_back(exponent == 1.0 ? BaseSymbol(i) : fmt::format("{}^{}", BaseSymbol(i), NumberText(exponent)));
    }
    return fmt::format("{}", fmt::join(factors, " "));
}

std::string DateText(const ZelmResult::OTime& date) { return ZelmResult::OTimeToDateString(date); }

} // namespace zmxf
