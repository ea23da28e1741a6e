#include "web/binding/calls.h"

#include "tools/signal_processing/peaks.h"
#include "tools/zmxf/base/failure.h"
#include "web/binding/memory.h"

#include "zelmresult/quantities/ponderation_unite.h"

#include <limits>
#include <new>

namespace zmxf::web {

namespace {

Json Peaks(const Json& parameters)
{
    const auto given = PlaceIn<const float>(parameters.at("values"));
    const std::vector<double> values(given.begin(), given.end());
    const std::size_t count = parameters.at("count").get<std::size_t>();
    return parameters.at("areBands").get<bool>() ? HighestBands(values, count) : HighestPeaks(values, count);
}

} // namespace

std::string Calls::Answer(std::string_view request)
{
    m_told.reset();
    Json answer;
    try {
        const Json json = Json::parse(request);
        answer["result"] = Result(json.at("name").get<std::string>(), json.at("parameters"));
    } catch (const std::bad_alloc&) {
        answer = {{"failure", "there is not enough memory for it"}};
    } catch (const std::exception& failure) {
        answer = {{"failure", failure.what()}};
    }
    return answer.dump(-1, ' ', false, Json::error_handler_t::replace);
}

Json Calls::Result(const std::string& name, const Json& parameters)
{
    if (name == "open") return Open(parameters);
    if (name == "read" || name == "readSlices" || name == "readSlice") return Read(name, parameters);
    if (name == "texts") return Texts(parameters);
    if (name == "peaks") return Peaks(parameters);
    if (name == "settings") return DocumentOf(parameters).SettingsJson();
    if (name == "recordings") return DocumentOf(parameters).RecordingsJson();
    if (name == "verify") return DocumentOf(parameters).VerifyJson();
    if (name == "scaled")
        Scale(parameters);
    else if (name == "close")
        m_documents.erase(parameters.at("document").get<int>());
    else
        throw Failure("the library knows no call {}", name);
    return nullptr;
}

Json Calls::Open(const Json& parameters)
{
    BytesDocument document(PlaceIn<char>(parameters.at("bytes")), parameters.at("name").get<std::string>());
    Json json{{"document", m_lastDocument + 1}};
    json["info"] = document.InfoJson(m_quantities);
    json["results"] = document.HeadersJson();
    m_documents.emplace(++m_lastDocument, std::move(document));
    return json;
}

Json Calls::Read(const std::string& name, const Json& parameters)
{
    BytesDocument& document = DocumentOf(parameters);
    const std::size_t number = parameters.at("number").get<std::size_t>();
    if (name == "read")
        m_told.emplace(document.Read(number), m_quantities);
    else if (name == "readSlices")
        m_told.emplace(document.ReadSlices(number), m_quantities);
    else
        m_told.emplace(document.ReadSlice(number, parameters.at("slice").get<std::int64_t>()), m_quantities);
    Json json = m_told->json();
    json["header"] = document.HeaderOf(number);
    return json;
}

// In place.
void Calls::Scale(const Json& parameters) const
{
    const Quantity& quantity = m_quantities.Find(parameters.at("quantity"));
    const bool areDecibels = parameters.at("scale").get<std::string>() == "decibels";
    for (float& value : PlaceIn<float>(parameters.at("values"))) {
        const auto scaled = areDecibels ? InDecibels(value, quantity) : InUnit(value, quantity);
        value = scaled ? static_cast<float>(*scaled) : std::numeric_limits<float>::quiet_NaN();
    }
}

Json Calls::Texts(const Json& parameters) const
{
    const Quantity& quantity = m_quantities.Find(parameters.at("quantity"));
    const Precision precision{parameters.at("absolutePrecision").get<float>(),
                              parameters.at("relativePrecision").get<float>()};
    ZelmResult::CPonderationUnite weighting;
    weighting.SetPonderationLabelUnite(parameters.at("weighting").get<int>());
    const std::string scale = parameters.at("scale").get<std::string>();
    Json json = Json::array();
    for (const float value : PlaceIn<const float>(parameters.at("values")))
        json.push_back(
            ValueText(value, quantity, precision, scale == "decibels" ? Scale::Decibels : Scale::Linear, &weighting));
    return json;
}

BytesDocument& Calls::DocumentOf(const Json& parameters)
{
    const auto found = m_documents.find(parameters.at("document").get<int>());
    if (found == m_documents.end()) throw Failure("the document is closed");
    return found->second;
}

} // namespace zmxf::web
