#include "tools/zmxf/base/text.h"
#include "tools/zmxf/exporting/exported_attributes.h"
#include "tools/zmxf/exporting/exported_part.h"
#include "tools/zmxf/exporting/exporter.h"
#include "tools/zmxf/exporting/mat_value.h"
#include "zelmresult/support/text.h"

#include <fmt/format.h>

// A struct per result, "r0034", and at the end an array of structs that says what they are: "index".

namespace zmxf {

namespace {

using ZelmResult::LabelledArray;
using ZelmResult::LabelledResult;
using ZelmResult::wstring;
using Fields = std::vector<std::pair<std::string, MatValue>>;
using Role = ExportedScale::Role;

MatValue Text(const std::string& utf8) { return MatValue::Text(ZelmResult::FromUtf8(utf8)); }

Fields FieldsOf(const std::vector<ExportedAttribute>& attributes)
{
    Fields fields;
    for (const auto& [name, value] : attributes) {
        if (const auto* text = std::get_if<wstring>(&value))
            fields.emplace_back(name, MatValue::Text(*text));
        else if (const auto* number = std::get_if<double>(&value))
            fields.emplace_back(name, MatValue::Number(*number));
        else
            fields.emplace_back(name, MatValue::Number(static_cast<double>(std::get<std::int64_t>(value))));
    }
    return fields;
}

// The arrays of one result as fields of structs, with the same names in all of these.
class MatResult {
public:
    MatResult(const LabelledResult& result, const ExportChoices& choices) : m_result(result), m_choices(choices)
    {
        for (const LabelledArray& array : result.data) Add(array, Role::Data, m_data);
        for (const LabelledArray& array : result.coordinates) Add(array, Role::Coordinate, m_coordinates);
    }

    MatValue Take()
    {
        Fields attributes = FieldsOf(AttributesOf(m_result.information));
        attributes.emplace_back("chosen_reference", Text(m_chosenReference));
        Fields fields;
        fields.emplace_back("attributes", MatValue::Struct(std::move(attributes)));
        fields.emplace_back(
            "quantity", MatValue::Struct(m_result.quantity ? FieldsOf(AttributesOf(*m_result.quantity)) : Fields()));
        fields.emplace_back("coordinates", MatValue::Struct(std::move(m_coordinates)));
        fields.emplace_back("data", MatValue::Struct(std::move(m_data)));
        fields.emplace_back("units", MatValue::Struct(std::move(m_units)));
        fields.emplace_back("titles", MatValue::Struct(std::move(m_titles)));
        fields.emplace_back("dimensions", MatValue::Struct(std::move(m_dimensions)));
        return MatValue::Struct(std::move(fields));
    }

private:
    void Add(const LabelledArray& array, Role role, Fields& fields)
    {
        if (const auto* texts = array.Texts(); texts != nullptr)
            return AddField(array, "", Printable(array.title), {}, MatValue::OfTexts(array.shape, *texts), fields);
        const std::vector<ExportedPart> parts = PartsOf(m_result, array, role, m_choices);
        const ExportedPart& first = parts.front();
        const auto at = [](const ExportedPart& part) { return [part](std::size_t i) { return part[i]; }; };
        if (const auto* numbers = array.Numbers(); numbers != nullptr)
            return AddField(array, "", first.Title(), {}, MatValue::OfIntegers(array.shape, *numbers), fields);
        if (first.half() == ExportedPart::Half::Real)
            return AddField(array, "", Printable(array.title), first.Unit(),
                            MatValue::OfSingles(array.shape, at(first), at(parts.back())), fields);
        for (const ExportedPart& part : parts)
            AddField(array, part.Suffix(), part.Title(), part.Unit(), MatValue::OfSingles(array.shape, at(part)),
                     fields);
    }

    void AddField(const LabelledArray& array, const char* suffix, const std::string& title, const std::string& unit,
                  MatValue value, Fields& fields)
    {
        const std::string name = m_names.Take(array.name + ZelmResult::FromUtf8(suffix));
        wstring dimensions;
        for (const wstring& dimension : array.dimensions) dimensions += (dimensions.empty() ? u"" : u" ") + dimension;
        fields.emplace_back(name, std::move(value));
        m_units.emplace_back(name, Text(unit));
        m_titles.emplace_back(name, Text(title));
        m_dimensions.emplace_back(name, MatValue::Text(dimensions));
        if (array.isReference && array.name == m_result.chosenReference) m_chosenReference = name;
    }

    const LabelledResult& m_result;
    const ExportChoices& m_choices;
    MatNames m_names;
    std::string m_chosenReference; // its field
    Fields m_coordinates;
    Fields m_data;
    Fields m_units;
    Fields m_titles;
    Fields m_dimensions;
};

class MatExporter final : public Exporter {
public:
    MatExporter(std::ostream& output, const ExportChoices& choices, ExportNotes& notes)
        : m_output(output), m_choices(choices), m_notes(notes)
    {
    }

    void Add(const LabelledResult& result) override
    {
        const std::string variable = fmt::format("r{:04}", result.information.number);
        const MatValue value = MatResult(result, m_choices).Take();
        if (value.Bytes(variable) > MatValue::kMostBytes)
            return m_notes.LeaveOut(result, "it is beyond the 2 GiB of a variable in a MAT-file; --to hdf5 holds it");
        Begin();
        value.Write(m_output, variable);
        const ZelmResult::LabelledInformation& information = result.information;
        const auto add = [this](MatValue&& field) { m_index.push_back(std::move(field)); };
        add(MatValue::Number(static_cast<double>(information.number)));
        add(Text(variable));
        add(MatValue::Text(information.group));
        add(MatValue::Text(information.process));
        add(MatValue::Text(information.channel));
        add(MatValue::Text(information.reference));
        add(MatValue::Text(result.quantity ? result.quantity->name : wstring()));
        add(MatValue::Text(result.quantity ? result.quantity->siSymbol : wstring()));
        add(MatValue::Text(IsoDate(information.date)));
    }

    void Finish() override
    {
        Begin();
        const MatValue index = MatValue::StructArray(
            {"number", "variable", "kind", "process", "channel", "reference", "quantity", "si_units", "date"},
            std::move(m_index));
        index.Write(m_output, "index");
    }

private:
    // Nothing is written before there is a result.
    void Begin()
    {
        if (m_index.empty()) WriteMatHeader(m_output);
    }

    std::ostream& m_output;
    const ExportChoices& m_choices;
    ExportNotes& m_notes;
    std::vector<MatValue> m_index; // of the results so far
};

} // namespace

std::unique_ptr<Exporter> MakeMatExporter(std::ostream& output, const ExportedDocument& /*document*/,
                                          const ExportChoices& choices, ExportNotes& notes)
{
    return std::make_unique<MatExporter>(output, choices, notes);
}

} // namespace zmxf
