#include "tools/zmxf/base/text.h"
#include "tools/zmxf/exporting/csv_tables.h"
#include "tools/zmxf/exporting/exported_part.h"
#include "tools/zmxf/showing/shown_levels.h"

#include <limits>

namespace zmxf {

namespace {

using ZelmResult::LabelledArray;
using ZelmResult::LabelledForm;
using ZelmResult::LabelledResult;

constexpr float kMissing = std::numeric_limits<float>::quiet_NaN();

// A level and its extremes, which octave bands don't have.
struct Level {
    std::string name;
    Quantity quantity;
    float value = kMissing;
    float minimum = kMissing;
    float maximum = kMissing;
};

std::vector<Level> LevelsOf(const LabelledResult& result)
{
    std::vector<Level> levels;
    const auto value = [&result](ZelmResult::wstring_view name) { return result.Data(name)->Floats()->front(); };
    if (result.form == LabelledForm::Level)
        levels.push_back({Printable(result.information.process), result.data.front().quantity, value(u"value"),
                          value(u"minimum"), value(u"maximum")});
    if (result.form == LabelledForm::Bands)
        for (const LabelledArray& array : result.data)
            if (array.dimensions.empty())
                levels.push_back({Printable(array.title), array.quantity, array.Floats()->front()});
    for (const ShownScalar& level : DescribeLevels(result))
        levels.push_back({level.name, level.quantity, level.last, level.lowest, level.highest});
    return levels;
}

class LevelTable final : public CsvTable {
public:
    LevelTable(std::ostream& output, const ExportChoices& choices) : m_choices(choices), m_lines(output, choices) {}

    void Add(TabledResult result) override
    {
        if (!m_hasTitles) PrintTitles();
        for (const Level& level : LevelsOf(result.result)) {
            LabelledArray array;
            array.quantity = level.quantity;
            const ExportedScale scale(array, ExportedScale::Role::Data, m_choices);
            AddOrigin(result, m_lines);
            m_lines.Text(level.name);
            for (const float value : {level.value, level.minimum, level.maximum}) m_lines.Number(scale(value));
            m_lines.Text(scale.Unit());
            m_lines.End();
        }
    }

    void Finish() override {}

private:
    void PrintTitles()
    {
        m_hasTitles = true;
        AddOriginTitles(m_lines);
        for (const char* title : {"Name", "Value", "Minimum", "Maximum", "Unit"}) m_lines.Text(title);
        m_lines.End();
    }

    const ExportChoices& m_choices;
    CsvLines m_lines;
    bool m_hasTitles = false;
};

} // namespace

std::unique_ptr<CsvTable> MakeLevelTable(std::ostream& output, const ExportChoices& choices)
{
    return std::make_unique<LevelTable>(output, choices);
}

} // namespace zmxf
