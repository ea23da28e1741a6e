#include "tools/zmxf/base/failure.h"
#include "tools/zmxf/base/text.h"
#include "tools/zmxf/exporting/csv_tables.h"
#include "tools/zmxf/exporting/exported_part.h"

#include <algorithm>
#include <cmath>
#include <deque>
#include <fmt/format.h>
#include <map>
#include <vector>

namespace zmxf {

namespace {

using ZelmResult::LabelledArray;
using ZelmResult::LabelledResult;
using ZelmResult::wstring;
using Role = ExportedScale::Role;

// One column: those elements of an array that lie a step apart, or one element in all rows.
struct Column {
    std::string title; // without the unit
    const LabelledArray* array = nullptr;
    const ExportedPart* part = nullptr; // null for texts and whole numbers
    std::size_t first = 0;
    std::size_t step = 1;

    // Of the rows, where no coordinate says what they stand for.
    [[nodiscard]] bool IsCount() const { return array == nullptr; }
    [[nodiscard]] std::string Unit() const { return part != nullptr ? part->Unit() : std::string(); }

    void Print(std::size_t row, CsvLines& lines) const
    {
        const std::size_t i = first + row * step;
        if (IsCount())
            lines.Whole(static_cast<std::int64_t>(row));
        else if (part != nullptr)
            lines.Number((*part)[i]);
        else if (const auto* texts = array->Texts(); texts != nullptr)
            lines.Text(Printable((*texts)[i]));
        else
            lines.Whole((*array->Numbers())[i]);
    }
};

// The dimension whose points are rows: slices, else what vectors have most of. Empty for a level.
wstring RowDimension(const LabelledResult& result)
{
    for (const auto* arrays : {&result.data, &result.coordinates})
        for (const LabelledArray& array : *arrays) {
            if (array.dimensions.empty()) continue;
            return array.dimensions.front() == u"slice" ? array.dimensions.front() : array.dimensions.back();
        }
    return {};
}

bool IsAlong(const LabelledArray& array, const wstring& dimension)
{
    return std::find(array.dimensions.begin(), array.dimensions.end(), dimension) != array.dimensions.end();
}

// What distinguishes the columns that the other dimension of an array makes: "100 Hz", "Order 2".
std::vector<std::string> LabelsAlong(const LabelledResult& result, const wstring& dimension, std::size_t size,
                                     const ExportChoices& choices)
{
    std::vector<std::string> labels;
    const LabelledArray* axis = result.Axis(dimension);
    if (axis == nullptr) axis = result.Coordinate(dimension + u"_name");
    for (std::size_t i = 0; i < size; ++i) {
        if (axis == nullptr) {
            labels.push_back(fmt::format("#{}", i + 1));
        } else if (const auto* texts = axis->Texts(); texts != nullptr) {
            labels.push_back(fmt::format("{} {}", Printable(axis->title), Printable((*texts)[i])));
        } else {
            const ExportedScale scale(*axis, Role::Coordinate, choices);
            const std::string value = ExactText(ShortestDouble(scale((*axis->Floats())[i])));
            labels.push_back(scale.Unit().empty() ? fmt::format("{} {}", Printable(axis->title), value)
                                                  : fmt::format("{} {}", value, scale.Unit()));
        }
    }
    return labels;
}

// The columns of one result, which it lends.
class Columns {
public:
    Columns(const LabelledResult& result, const ExportChoices& choices)
        : m_result(result), m_choices(choices), m_dimension(RowDimension(result))
    {
        const auto isFirst = [axis = result.Axis(m_dimension)](const LabelledArray& array) { return &array == axis; };
        for (const bool wantsFirst : {true, false})
            for (const LabelledArray& array : result.coordinates)
                if (isFirst(array) == wantsFirst && IsAlong(array, m_dimension)) AddCoordinate(array);
        if (m_coordinates.empty() && !m_dimension.empty()) m_coordinates.push_back({"Point"});
        for (const LabelledArray& array : result.data) AddData(array);
    }

    [[nodiscard]] std::size_t Rows() const { return m_dimension.empty() ? 1 : m_rows; }
    // What rows stand for, and their values.
    [[nodiscard]] const std::vector<Column>& Coordinates() const { return m_coordinates; }
    [[nodiscard]] std::vector<Column>& Data() { return m_data; }

private:
    void NoteRows(const LabelledArray& array)
    {
        for (std::size_t i = 0; i < array.dimensions.size(); ++i)
            if (array.dimensions[i] == m_dimension) m_rows = array.shape[i];
    }
    void AddCoordinate(const LabelledArray& array)
    {
        NoteRows(array);
        if (array.Floats() == nullptr) {
            m_coordinates.push_back({Printable(array.title), &array});
            return;
        }
        for (const ExportedPart* part : Keep(array, Role::Coordinate))
            m_coordinates.push_back({part->Title(), &array, part});
    }
    void AddData(const LabelledArray& array)
    {
        NoteRows(array);
        const auto parts = Keep(array, Role::Data);
        if (array.dimensions.size() > 1) return AddSpread(array, parts);
        const std::size_t step = IsAlong(array, m_dimension) ? 1 : 0;
        for (const ExportedPart* part : parts) m_data.push_back({part->Title(), &array, part, 0, step});
    }
    // Of two dimensions, one of which is spread over columns.
    void AddSpread(const LabelledArray& array, const std::vector<const ExportedPart*>& parts)
    {
        const bool isByColumns = array.dimensions.front() == m_dimension;
        const std::size_t other = isByColumns ? 1 : 0;
        const auto labels = LabelsAlong(m_result, array.dimensions[other], array.shape[other], m_choices);
        const std::size_t stepOfColumn = isByColumns ? 1 : array.shape[1];
        const std::size_t stepOfRow = isByColumns ? array.shape[1] : 1;
        for (std::size_t i = 0; i < labels.size(); ++i)
            for (const ExportedPart* part : parts)
                m_data.push_back(
                    {fmt::format("{} {}", part->Title(), labels[i]), &array, part, i * stepOfColumn, stepOfRow});
    }
    std::vector<const ExportedPart*> Keep(const LabelledArray& array, Role role)
    {
        std::vector<const ExportedPart*> kept;
        for (ExportedPart& part : PartsOf(m_result, array, role, m_choices))
            kept.push_back(&m_parts.emplace_back(std::move(part)));
        return kept;
    }

    const LabelledResult& m_result;
    const ExportChoices& m_choices;
    wstring m_dimension;
    std::size_t m_rows = 0;
    std::deque<ExportedPart> m_parts; // which don't move
    std::vector<Column> m_coordinates, m_data;
};

bool IsSame(const LabelledArray& a, const LabelledArray& b)
{
    if (const auto* floats = a.Floats(), *others = b.Floats(); floats != nullptr && others != nullptr)
        return std::equal(floats->begin(), floats->end(), others->begin(), others->end(),
                          [](float x, float y) { return x == y || (std::isnan(x) && std::isnan(y)); });
    return a.values == b.values;
}

bool AreSame(const Columns& a, const Columns& b)
{
    const auto isSame = [](const Column& x, const Column& y) {
        return x.title == y.title && x.Unit() == y.Unit() && x.IsCount() == y.IsCount() &&
               (x.IsCount() || IsSame(*x.array, *y.array));
    };
    return a.Rows() == b.Rows() && std::equal(a.Coordinates().begin(), a.Coordinates().end(), b.Coordinates().begin(),
                                              b.Coordinates().end(), isSame);
}

class WideTable final : public CsvTable {
public:
    WideTable(std::ostream& output, const ExportChoices& choices) : m_choices(choices), m_lines(output, choices) {}

    void Add(TabledResult result) override
    {
        m_results.push_back(std::move(result));
        m_columns.emplace_back(m_results.back().result, m_choices);
        if (AreSame(m_columns.front(), m_columns.back())) return;
        throw Failure("{} has other points than {}: only results with equal axes can be joined",
                      m_results.back().Text(), m_results.front().Text());
    }

    void Finish() override
    {
        if (m_results.size() > 1) NameColumns();
        std::vector<const Column*> all;
        for (const Column& column : m_columns.front().Coordinates()) all.push_back(&column);
        for (Columns& columns : m_columns)
            for (const Column& column : columns.Data()) all.push_back(&column);
        std::map<std::string, int> known; // and how many have it
        for (const Column* column : all) {
            std::string title = Titled(column->title, column->Unit());
            for (int& times = known[title]; ++times > 1;) {
                title = Titled(fmt::format("{} ({})", column->title, times), column->Unit());
                if (known.try_emplace(title, 1).second) break;
            }
            m_lines.Text(title);
        }
        m_lines.End();
        for (std::size_t row = 0; row < m_columns.front().Rows(); ++row) {
            for (const Column* column : all) column->Print(row, m_lines);
            m_lines.End();
        }
    }

private:
    using Naming = std::string (*)(const TabledResult&);

    // Says of which result each column is, as briefly as possible: the channel, and of the rest what differs.
    void NameColumns()
    {
        static constexpr Naming channel = [](const TabledResult& result) {
            const auto& information = result.result.information;
            return information.channel.empty() ? fmt::format("#{}", information.channelNumber)
                                               : Printable(information.channel);
        };
        static constexpr Naming reference = [](const TabledResult& result) {
            return Printable(result.result.information.reference);
        };
        static constexpr Naming process = [](const TabledResult& result) {
            return Printable(result.result.information.process);
        };
        static constexpr Naming document = [](const TabledResult& result) { return Printable(result.document); };
        std::vector<std::string> names(m_results.size());
        for (const Naming naming : {channel, reference, process, document}) {
            const bool differs = std::any_of(m_results.begin(), m_results.end(), [&](const TabledResult& result) {
                return naming(result) != naming(m_results.front());
            });
            if (!differs && naming != channel) continue;
            for (std::size_t i = 0; i < names.size(); ++i) {
                const std::string name = naming(m_results[i]);
                if (!name.empty()) names[i] += (names[i].empty() ? "" : ", ") + name;
            }
        }
        for (std::size_t i = 0; i < names.size(); ++i)
            for (Column& column : m_columns[i].Data()) column.title = fmt::format("{}: {}", names[i], column.title);
    }

    const ExportChoices& m_choices;
    CsvLines m_lines;
    std::deque<TabledResult> m_results; // nor do these
    std::deque<Columns> m_columns;
};

} // namespace

std::unique_ptr<CsvTable> MakeWideTable(std::ostream& output, const ExportChoices& choices)
{
    return std::make_unique<WideTable>(output, choices);
}

} // namespace zmxf
