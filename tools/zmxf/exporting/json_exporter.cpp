#include "tools/zmxf/base/text.h"
#include "tools/zmxf/exporting/exported_attributes.h"
#include "tools/zmxf/exporting/exported_part.h"
#include "tools/zmxf/exporting/exporter.h"
#include "tools/zmxf/showing/description.h"
#include "zelmresult/quantities/ponderation_unite.h"
#include "zelmresult/support/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <functional>
#include <set>
#include <string_view>

namespace zmxf {

namespace {

using ZelmResult::LabelledArray;
using ZelmResult::LabelledResult;
using ZelmResult::wstring;
using Role = ExportedScale::Role;

// It rises when a key goes, or comes to mean something else.
constexpr int kSchema = 2;

std::string Text(const Json& json) { return json.dump(-1, ' ', false, Json::error_handler_t::replace); }
std::string Text(const wstring& text) { return Text(Json(JsonText(text))); }

void Add(Json& json, const std::vector<ExportedAttribute>& attributes)
{
    for (const ExportedAttribute& attribute : attributes) {
        if (const auto* text = std::get_if<wstring>(&attribute.value); text != nullptr)
            json[attribute.name] = JsonText(*text);
        else if (const auto* whole = std::get_if<std::int64_t>(&attribute.value); whole != nullptr)
            json[attribute.name] = *whole;
        else
            json[attribute.name] = std::get<double>(attribute.value);
    }
}

void PrintNumber(float value, std::string& text)
{
    if (!std::isfinite(value)) {
        text += "null";
        return;
    }
    std::array<char, 32> digits{};
    const std::string_view written(digits.data(),
                                   std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr);
    text += written;
    if (written.find_first_of(".e") == std::string_view::npos) text += ".0"; // else readers take it for an integer
}

using PrintElement = std::function<void(std::size_t, std::string&)>;

// Lists within lists, as deep as there are dimensions.
class ValuePrinter {
public:
    ValuePrinter(const std::vector<std::size_t>& shape, const PrintElement& print, std::ostream& output)
        : m_shape(shape), m_print(print), m_output(output)
    {
    }

    void Print()
    {
        PrintFrom(0);
        m_output << m_text;
    }

private:
    void PrintFrom(std::size_t dimension)
    {
        if (dimension == m_shape.size()) return m_print(m_element++, m_text);
        m_text += '[';
        for (std::size_t i = 0; i < m_shape[dimension]; ++i) {
            if (i != 0) m_text += ',';
            PrintFrom(dimension + 1);
            if (m_text.size() >= kFlushed) {
                m_output << m_text;
                m_text.clear();
            }
        }
        m_text += ']';
    }

    static constexpr std::size_t kFlushed = 65536; // bytes

    const std::vector<std::size_t>& m_shape;
    const PrintElement& m_print;
    std::ostream& m_output;
    std::string m_text;
    std::size_t m_element = 0;
};

// One result.
class ResultPrinter {
public:
    ResultPrinter(const LabelledResult& result, const ExportChoices& choices, std::ostream& output)
        : m_result(result), m_choices(choices), m_output(output)
    {
    }

    void Print()
    {
        for (const LabelledArray& array : m_result.data) NoteNames(array);
        m_output << R"({"attrs":)" << Text(Attributes()) << R"(,"dims":)" << Text(Dimensions());
        PrintArrays("coords", m_result.coordinates, Role::Coordinate);
        PrintArrays("data_vars", m_result.data, Role::Data);
        m_output << '}';
    }

private:
    // References may have the name of data.
    void NoteNames(const LabelledArray& array)
    {
        for (const ExportedPart& part : PartsOf(m_result, array, Role::Data, m_choices))
            m_dataNames.insert(array.name + ZelmResult::FromUtf8(part.Suffix()));
    }
    [[nodiscard]] wstring CoordinateName(const wstring& name) const
    {
        wstring given = name;
        while (m_dataNames.contains(given) || (given != name && m_result.Coordinate(given) != nullptr)) given += u'_';
        return given;
    }

    [[nodiscard]] Json Attributes() const
    {
        Json json = Json::object();
        Add(json, AttributesOf(m_result.information));
        json["chosen_reference"] =
            m_result.chosenReference.empty() ? "" : JsonText(CoordinateName(m_result.chosenReference));
        return json;
    }
    [[nodiscard]] Json Dimensions() const
    {
        Json json = Json::object();
        for (const auto* arrays : {&m_result.coordinates, &m_result.data})
            for (const LabelledArray& array : *arrays)
                for (std::size_t i = 0; i < array.dimensions.size(); ++i)
                    json[JsonText(array.dimensions[i])] = array.shape[i];
        return json;
    }
    [[nodiscard]] Json Attributes(const LabelledArray& array, const std::string& title, const std::string& unit) const
    {
        Json json{{"long_name", title}, {"units", unit}};
        if (array.quantity) Add(json, AttributesOf(*array.quantity));
        const auto weighting = ZelmResult::CPonderationUnite::GetFunctionName(static_cast<int>(array.weighting));
        if (!weighting.empty()) json["weighting"] = JsonText(weighting);
        return json;
    }

    void PrintArrays(const char* key, const std::vector<LabelledArray>& arrays, Role role)
    {
        m_output << ",\"" << key << "\":{";
        m_separator = "";
        for (const LabelledArray& array : arrays) {
            const wstring name = role == Role::Data ? array.name : CoordinateName(array.name);
            if (array.Floats() != nullptr || array.Complexes() != nullptr)
                for (const ExportedPart& part : PartsOf(m_result, array, role, m_choices))
                    PrintArray(JsonText(name) + part.Suffix(), array, Attributes(array, part.Title(), part.Unit()),
                               [&part](std::size_t i, std::string& text) { PrintNumber(part[i], text); });
            else
                PrintArray(JsonText(name), array, Attributes(array, JsonText(array.title), {}),
                           [&array](std::size_t i, std::string& text) {
                               const auto* numbers = array.Numbers();
                               text += numbers != nullptr ? std::to_string((*numbers)[i]) : Text((*array.Texts())[i]);
                           });
        }
        m_output << '}';
    }

    void PrintArray(const std::string& name, const LabelledArray& array, const Json& attributes,
                    const PrintElement& print)
    {
        Json dimensions = Json::array();
        for (const wstring& dimension : array.dimensions) dimensions.push_back(JsonText(dimension));
        m_output << m_separator << Text(Json(name)) << R"(:{"dims":)" << Text(dimensions) << R"(,"attrs":)"
                 << Text(attributes) << R"(,"data":)";
        m_separator = ",";
        ValuePrinter(array.shape, print, m_output).Print();
        m_output << '}';
    }

    const LabelledResult& m_result;
    const ExportChoices& m_choices;
    std::ostream& m_output;
    std::set<wstring> m_dataNames;
    const char* m_separator = "";
};

// A result per line, so that programs may read them one by one.
class JsonExporter final : public Exporter {
public:
    JsonExporter(std::ostream& output, const ExportedDocument& document, const ExportChoices& choices)
        : m_output(output), m_document(document), m_choices(choices)
    {
    }

    void Add(const LabelledResult& result) override
    {
        Begin();
        m_output << m_separator << '\n';
        m_separator = ",";
        ResultPrinter(result, m_choices, m_output).Print();
    }
    void Finish() override
    {
        Begin();
        m_output << "\n]\n}\n";
    }

private:
    // Nothing is written before there is a result.
    void Begin()
    {
        if (m_hasBegun) return;
        m_hasBegun = true;
        m_output << "{\n\"schema\":" << kSchema << ",\n\"file\":" << Text(Json(m_document.name)) << ",\n\"results\":[";
    }

    std::ostream& m_output;
    const ExportedDocument& m_document;
    const ExportChoices& m_choices;
    bool m_hasBegun = false;
    const char* m_separator = "";
};

} // namespace

std::unique_ptr<Exporter> MakeJsonExporter(std::ostream& output, const ExportedDocument& document,
                                           const ExportChoices& choices, ExportNotes& /*notes*/)
{
    return std::make_unique<JsonExporter>(output, document, choices);
}

} // namespace zmxf
