#include "tools/zmxf/base/failure.h"
#include "tools/zmxf/base/program_version.h"
#include "tools/zmxf/base/text.h"
#include "tools/zmxf/exporting/exported_attributes.h"
#include "tools/zmxf/exporting/exported_part.h"
#include "tools/zmxf/exporting/exporter.h"
#include "tools/zmxf/exporting/hdf5_names.h"
#include "tools/zmxf/exporting/hdf5_objects.h"
#include "zelmresult/quantities/ponderation_unite.h"
#include "zelmresult/support/text.h"

#include <algorithm>
#include <fmt/format.h>
#include <map>
#include <optional>

// A group per result, in a form that readers of netCDF know: arrays with dimension scales, the names of further
// coordinates in the attribute "coordinates" of the data, "units" and "long_name" for each array.

namespace zmxf {

namespace {

using ZelmResult::LabelledArray;
using ZelmResult::LabelledResult;
using ZelmResult::wstring;
using Role = ExportedScale::Role;

void SetIfAny(const hdf5::Object& object, const char* name, ZelmResult::wstring_view text)
{
    if (!text.empty()) hdf5::SetText(object, name, hdf5::Text(text));
}

bool IsIndex(const LabelledArray& array) { return array.dimensions.size() == 1 && array.dimensions[0] == array.name; }

void Set(const hdf5::Object& object, const std::vector<ExportedAttribute>& attributes)
{
    for (const ExportedAttribute& attribute : attributes) {
        if (const auto* text = std::get_if<wstring>(&attribute.value); text != nullptr)
            SetIfAny(object, attribute.name, *text);
        else if (const auto* whole = std::get_if<std::int64_t>(&attribute.value); whole != nullptr)
            hdf5::SetNumber(object, attribute.name, *whole);
        else
            hdf5::SetNumber(object, attribute.name, std::get<double>(attribute.value));
    }
}

// An array of the file: one of the result, or a half of one with complex values.
struct Variable {
    const LabelledArray* array = nullptr;
    std::string name;
    std::optional<ExportedPart> part; // none of texts
};

// Writes one result into a group of its own.
class ResultGroup {
public:
    ResultGroup(const hdf5::Object& parent, const LabelledResult& result, const ExportChoices& choices)
        : m_result(result), m_choices(choices),
          m_group(hdf5::MakeGroup(parent, fmt::format("r{:04}", result.information.number)))
    {
        // Names of dimensions and of data stay what they are; those of references may be any.
        for (const auto* arrays : {&result.coordinates, &result.data})
            for (const LabelledArray& array : *arrays)
                for (const wstring& dimension : array.dimensions)
                    if (!m_dimensions.contains(dimension)) m_dimensions[dimension] = m_names.Take(dimension);
        for (const LabelledArray& array : result.data) AddVariables(array, Role::Data, m_data);
        for (const LabelledArray& array : result.coordinates) AddVariables(array, Role::Coordinate, m_coordinates);
    }

    void Write()
    {
        WriteInformation();
        // Dimensions come before the arrays that lie along them.
        for (const Variable& variable : m_coordinates)
            if (IsIndex(*variable.array))
                m_scales.try_emplace(variable.name, m_group, variable.name, WriteVariable(variable));
        for (const auto* variables : {&m_coordinates, &m_data})
            for (const Variable& variable : *variables) AddBareDimensions(*variable.array);
        for (const Variable& variable : m_coordinates)
            if (!IsIndex(*variable.array)) Attach(variable, WriteVariable(variable));
        for (const Variable& variable : m_data) {
            const hdf5::Object written = WriteVariable(variable);
            NameCoordinates(variable, written);
            Attach(variable, written);
        }
        for (const auto& [name, scale] : m_scales) scale.NoteUsers(m_group);
    }

private:
    using Variables = std::vector<Variable>;

    void AddVariables(const LabelledArray& array, Role role, Variables& variables)
    {
        const auto add = [&](const char* suffix, std::optional<ExportedPart> part) {
            const wstring name = array.name + ZelmResult::FromUtf8(suffix);
            variables.push_back(
                {&array, IsIndex(array) ? m_dimensions[array.name] : m_names.Take(name), std::move(part)});
        };
        if (array.Texts() != nullptr) add("", std::nullopt);
        for (ExportedPart& part : PartsOf(m_result, array, role, m_choices)) add(part.Suffix(), std::move(part));
    }

    void WriteInformation() const
    {
        Set(m_group, AttributesOf(m_result.information));
        for (const Variable& variable : m_coordinates)
            if (variable.array->isReference && variable.array->name == m_result.chosenReference)
                hdf5::SetText(m_group, "chosen_reference", variable.name);
    }

    // Those without a coordinate of their name.
    void AddBareDimensions(const LabelledArray& array)
    {
        for (std::size_t i = 0; i < array.dimensions.size(); ++i) {
            const std::string& name = m_dimensions[array.dimensions[i]];
            if (!m_scales.contains(name)) m_scales.try_emplace(name, m_group, name, hsize_t{array.shape[i]});
        }
    }

    [[nodiscard]] hdf5::Object WriteVariable(const Variable& variable) const
    {
        hdf5::Object object = WriteValues(variable);
        const std::string title = variable.part ? variable.part->Title() : Printable(variable.array->title);
        const std::string unit = variable.part ? variable.part->Unit() : std::string();
        if (!title.empty()) hdf5::SetText(object, "long_name", title);
        if (!unit.empty()) hdf5::SetText(object, "units", unit);
        if (variable.array->quantity) Set(object, AttributesOf(*variable.array->quantity));
        const auto weighting = static_cast<int>(variable.array->weighting);
        SetIfAny(object, "weighting", ZelmResult::CPonderationUnite::GetFunctionName(weighting));
        return object;
    }

    [[nodiscard]] hdf5::Object WriteValues(const Variable& variable) const
    {
        const hdf5::Shape shape(variable.array->shape.begin(), variable.array->shape.end());
        if (const auto* numbers = variable.array->Numbers(); numbers != nullptr)
            return hdf5::WriteNumbers(m_group, variable.name, shape, *numbers);
        if (const auto* texts = variable.array->Texts(); texts != nullptr) {
            std::vector<std::string> utf8;
            for (const wstring& text : *texts) utf8.push_back(hdf5::Text(text));
            return hdf5::WriteTexts(m_group, variable.name, shape, utf8);
        }
        const auto packing = m_choices.isCompressed ? hdf5::Packing::Deflate : hdf5::Packing::None;
        hdf5::Object object = hdf5::MakeFloats(m_group, variable.name, shape, packing);
        hdf5::WriteRows(object, shape, [&variable](std::size_t first, std::span<float> row) {
            for (float& value : row) value = (*variable.part)[first++];
        });
        return object;
    }

    // Those along dimensions of the data, which aren't found by their names.
    void NameCoordinates(const Variable& data, const hdf5::Object& object) const
    {
        const auto isAlong = [&data](const wstring& dimension) {
            const auto& all = data.array->dimensions;
            return std::find(all.begin(), all.end(), dimension) != all.end();
        };
        std::string names;
        for (const Variable& coordinate : m_coordinates) {
            const auto& dimensions = coordinate.array->dimensions;
            if (!IsIndex(*coordinate.array) && std::all_of(dimensions.begin(), dimensions.end(), isAlong))
                names += (names.empty() ? "" : " ") + coordinate.name;
        }
        if (!names.empty()) hdf5::SetText(object, "coordinates", names);
    }

    void Attach(const Variable& variable, const hdf5::Object& object)
    {
        std::vector<hdf5::Scale*> scales;
        for (const wstring& dimension : variable.array->dimensions)
            scales.push_back(&m_scales.at(m_dimensions[dimension]));
        hdf5::Scale::Attach(m_group, variable.name, object, scales);
    }

    const LabelledResult& m_result;
    const ExportChoices& m_choices;
    hdf5::Object m_group;
    hdf5::Names m_names;
    std::map<wstring, std::string> m_dimensions; // their names in the file
    std::map<std::string, hdf5::Scale> m_scales;
    Variables m_coordinates;
    Variables m_data;
};

class Hdf5Exporter : public Exporter {
public:
    Hdf5Exporter(const std::string& path, const ExportedDocument& document, const ExportChoices& choices)
        : m_document(document), m_choices(choices)
    {
        Write([&] {
            m_file.emplace(hdf5::MakeFile(path));
            m_results.emplace(hdf5::MakeGroup(*m_file, "results"));
            SetIfAny(*m_file, "file", ZelmResult::FromUtf8(m_document.name));
            hdf5::SetText(*m_file, "source", ProgramVersion());
        });
    }

    void Add(const LabelledResult& result) override
    {
        Write([&] { ResultGroup(*m_results, result, m_choices).Write(); });
    }
    void Finish() override
    {
        Write([this] {
            m_results.reset();
            hdf5::Finish(*std::move(m_file));
        });
    }

private:
    template <class Do>
    void Write(const Do& write)
    {
        try {
            write();
        } catch (const Failure& failure) {
            throw Failure("cannot write the HDF5 file of {}: {}", Printable(m_document.name), failure.what());
        }
    }

    const ExportedDocument& m_document;
    const ExportChoices& m_choices;
    std::optional<hdf5::Object> m_file;
    std::optional<hdf5::Object> m_results;
};

} // namespace

std::unique_ptr<Exporter> MakeHdf5Exporter(const std::string& path, const ExportedDocument& document,
                                           const ExportChoices& choices, ExportNotes& /*notes*/)
{
    return std::make_unique<Hdf5Exporter>(path, document, choices);
}

} // namespace zmxf
