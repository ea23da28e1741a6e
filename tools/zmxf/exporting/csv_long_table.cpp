#include "tools/zmxf/base/text.h"
#include "tools/zmxf/exporting/csv_tables.h"
#include "tools/zmxf/exporting/exported_part.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <map>
#include <vector>

namespace zmxf {

namespace {

using ZelmResult::LabelledArray;
using ZelmResult::LabelledResult;
using Role = ExportedScale::Role;

constexpr std::array<const char*, 3> kValueTitles = {"Name", "Value", "Unit"};

// Whether any table has a column of this title.
bool IsFixed(const std::string& title)
{
    return std::find(kOriginTitles.begin(), kOriginTitles.end(), title) != kOriginTitles.end() ||
           std::find(kValueTitles.begin(), kValueTitles.end(), title) != kValueTitles.end();
}

// Of the coordinates. References have one of their own, even those of the same name or of the name of a column that
// isn't theirs; numbers and names of orders share one.
std::vector<std::string> TitlesOf(const LabelledResult& result, const ExportChoices& choices)
{
    std::vector<std::string> titles;
    for (const LabelledArray& coordinate : result.coordinates) {
        const auto parts = PartsOf(result, coordinate, Role::Coordinate, choices);
        const std::string name = parts.empty() ? Printable(coordinate.title) : parts.front().Title();
        const std::string unit = parts.empty() ? std::string() : parts.front().Unit();
        std::string title = Titled(name, unit);
        const auto isTaken = [&] {
            return IsFixed(title) || std::find(titles.begin(), titles.end(), title) != titles.end();
        };
        for (int i = 2; coordinate.isReference && isTaken(); ++i) title = Titled(fmt::format("{} ({})", name, i), unit);
        titles.push_back(std::move(title));
    }
    return titles;
}

// A coordinate at an element of an array.
struct Position {
    const LabelledArray* coordinate = nullptr;
    std::vector<ExportedPart> parts;
    std::size_t column = 0;
    // The index along the dimension is index / step % size.
    std::size_t step = 1;
    std::size_t size = 1;

    void Print(std::size_t element, CsvLines& lines) const
    {
        const std::size_t i = element / step % size;
        if (const auto* texts = coordinate->Texts(); texts != nullptr)
            lines.Text(Printable((*texts)[i]));
        else if (const auto* numbers = coordinate->Numbers(); numbers != nullptr)
            lines.Whole((*numbers)[i]);
        else
            lines.Number(parts.front()[i]);
    }
};

// Has a column for each coordinate of any result.
class LongTable final : public CsvTable {
public:
    LongTable(std::ostream& output, const ExportChoices& choices) : m_choices(choices), m_lines(output, choices) {}

    [[nodiscard]] bool WantsAnnouncements() const override { return true; }

    void Announce(const TabledResult& result) override
    {
        for (const std::string& title : TitlesOf(result.result, m_choices))
            if (std::find(m_coordinates.begin(), m_coordinates.end(), title) == m_coordinates.end())
                m_coordinates.push_back(title);
    }

    void Add(TabledResult result) override
    {
        if (!m_hasTitles) PrintTitles();
        for (const LabelledArray& array : result.result.data)
            for (const ExportedPart& part : PartsOf(result.result, array, Role::Data, m_choices)) Print(result, part);
    }

    void Finish() override {}

private:
    void PrintTitles()
    {
        m_hasTitles = true;
        AddOriginTitles(m_lines);
        for (const std::string& title : m_coordinates) m_lines.Text(title);
        for (const char* title : kValueTitles) m_lines.Text(title);
        m_lines.End();
    }

    // By column. Of coordinates with the same title, the first.
    [[nodiscard]] std::map<std::size_t, Position> PositionsOf(const LabelledResult& result,
                                                              const LabelledArray& array) const
    {
        std::map<std::size_t, Position> positions;
        const std::vector<std::string> titles = TitlesOf(result, m_choices);
        std::size_t step = array.Size();
        for (std::size_t i = 0; i < array.dimensions.size(); ++i) {
            step /= std::max<std::size_t>(array.shape[i], 1);
            for (std::size_t c = 0; c < result.coordinates.size(); ++c) {
                const LabelledArray& coordinate = result.coordinates[c];
                if (coordinate.dimensions.empty() || coordinate.dimensions.front() != array.dimensions[i]) continue;
                const auto column =
                    std::find(m_coordinates.begin(), m_coordinates.end(), titles[c]) - m_coordinates.begin();
                positions.try_emplace(static_cast<std::size_t>(column),
                                      Position{&coordinate, PartsOf(result, coordinate, Role::Coordinate, m_choices),
                                               static_cast<std::size_t>(column), step, array.shape[i]});
            }
        }
        return positions;
    }

    void Print(const TabledResult& result, const ExportedPart& part)
    {
        const auto positions = PositionsOf(result.result, part.array());
        const std::string title = part.Title();
        const std::string unit = part.Unit();
        for (std::size_t element = 0; element < part.array().Size(); ++element) {
            AddOrigin(result, m_lines);
            for (std::size_t column = 0; column < m_coordinates.size(); ++column) {
                const auto position = positions.find(column);
                if (position == positions.end())
                    m_lines.Empty();
                else
                    position->second.Print(element, m_lines);
            }
            m_lines.Text(title);
            m_lines.Number(part[element]);
            m_lines.Text(unit);
            m_lines.End();
        }
    }

    const ExportChoices& m_choices;
    CsvLines m_lines;
    std::vector<std::string> m_coordinates; // titles
    bool m_hasTitles = false;
};

} // namespace

std::unique_ptr<CsvTable> MakeLongTable(std::ostream& output, const ExportChoices& choices)
{
    return std::make_unique<LongTable>(output, choices);
}

} // namespace zmxf
