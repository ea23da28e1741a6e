#include "tools/signal_processing/recordings/csv_file.h"

#include "tools/signal_processing/recordings/csv_row.h"
#include "tools/signal_processing/recordings/even_times.h"
#include "tools/signal_processing/recordings/line_reader.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>

namespace zmxf {

namespace {

using ZelmResult::FileHandle;

constexpr std::size_t kProbedLines = 100;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

bool IsText(std::string_view line)
{
    return std::none_of(line.begin(), line.end(),
                        [](char c) { return static_cast<unsigned char>(c) < ' ' && c != '\t' && c != '\f'; });
}

// Whether the file may be one of lines. Other files may hold none that ends.
bool BeginsWithText(FileHandle& file)
{
    std::array<char, 4096> start{};
    const std::int64_t got = file.ReadAt(0, start.data(), start.size());
    return got < 0 || std::find(start.begin(), start.begin() + got, '\0') == start.begin() + got;
}

// Lines with something in them, after those that are skipped.
class RowReader {
public:
    RowReader(FileHandle& file, const std::string& path, std::size_t skip) : m_lines(file, path)
    {
        std::string_view line;
        for (std::size_t i = 0; i < skip && m_lines.Next(line); ++i) {
        }
    }
    bool Next(std::string_view& line)
    {
        while (m_lines.Next(line)) {
            if (m_lines.number() == 1 && line.starts_with(kByteOrderMark)) line.remove_prefix(kByteOrderMark.size());
            if (!Trimmed(line).empty()) return true;
        }
        return false;
    }
    [[nodiscard]] std::int64_t number() const { return m_lines.number(); }

private:
    LineReader m_lines;
};

// "Casing [g]" and "Casing (g)" name a unit.
ChannelFacts Said(std::string_view cell)
{
    constexpr std::array<std::pair<char, char>, 2> brackets = {{{'[', ']'}, {'(', ')'}}};
    for (const auto& [opens, closes] : brackets) {
        const std::size_t from = cell.rfind(opens);
        if (from == std::string_view::npos || !cell.ends_with(closes)) continue;
        return {std::string(Trimmed(cell.substr(0, from))),
                std::string(Trimmed(cell.substr(from + 1, cell.size() - from - 2)))};
    }
    return {std::string(cell), {}};
}

std::optional<double> SecondsIn(const std::string& unit)
{
    constexpr std::array<std::pair<std::string_view, double>, 7> units = {
        {{"", 1.0}, {"s", 1.0}, {"sec", 1.0}, {"ms", 1e-3}, {"us", 1e-6}, {"\u00B5s", 1e-6}, {"\xB5s", 1e-6}}};
    for (const auto& [name, seconds] : units)
        if (unit == name) return seconds;
    return std::nullopt;
}

// Whether a title names a time, as programs of several languages write it, in a unit of time or none.
bool IsTitleOfTimes(std::string_view title)
{
    constexpr std::array<std::string_view, 11> names = {"t",      "time",  "times", "timestamp", "zeit",        "temps",
                                                        "tiempo", "tempo", "tijd",  "seconds",   "elapsed time"};
    constexpr std::array<std::string_view, 3> otherUnits = {"ns", "min", "h"};
    ChannelFacts said = Said(title);
    for (char& c : said.name) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    return std::find(names.begin(), names.end(), said.name) != names.end() &&
           (SecondsIn(said.unit) || std::find(otherUnits.begin(), otherUnits.end(), said.unit) != otherUnits.end());
}

class CsvFile : public SampleSource {
public:
    CsvFile(FileHandle& file, std::string path, const CsvFormat& format, CsvLayout layout)
        : m_file(file), m_path(std::move(path)), m_format(format), m_layout(std::move(layout)),
          m_rows(file, m_path, format.skip)
    {
        m_timeColumn = format.timeColumn.value_or(MayBeginWithTimes() ? 1 : 0);
        if (m_timeColumn > m_layout.columns)
            ThrowUnreadable(m_path, fmt::format("it has {} column{}, so none is number {}", m_layout.columns,
                                                m_layout.columns == 1 ? "" : "s", m_timeColumn));
        if (m_timeColumn == m_layout.columns && m_layout.columns == 1) ThrowUnreadable(m_path, "it has times only");
        CountRows();
        m_facts.channels = m_layout.columns - (m_timeColumn == 0 ? 0 : 1);
        for (std::size_t i = 0; i < m_layout.columns; ++i)
            if (!IsTime(i)) m_facts.said.push_back(m_layout.names.empty() ? ChannelFacts() : Said(m_layout.names[i]));
        GoToStart();
    }

    void Rewind() override { GoToStart(); }

    std::size_t Read(std::span<double> block) override
    {
        std::size_t frames = 0;
        std::string_view line;
        for (; (frames + 1) * m_facts.channels <= block.size() && m_rows.Next(line); ++frames) {
            const std::vector<std::string> cells = Cells(line);
            auto target = block.begin() + static_cast<std::ptrdiff_t>(frames * m_facts.channels);
            for (std::size_t i = 0; i < cells.size(); ++i)
                if (!IsTime(i)) *target++ = Number(cells, i).value;
        }
        return frames;
    }

private:
    void GoToStart()
    {
        m_rows = RowReader(m_file, m_path, m_format.skip);
        std::string_view line;
        if (!m_layout.names.empty()) (void)m_rows.Next(line);
    }

    [[nodiscard]] bool MayBeginWithTimes() const
    {
        return m_layout.columns > 1 && !m_layout.names.empty() && IsTitleOfTimes(m_layout.names.front());
    }
    [[nodiscard]] bool IsTime(std::size_t column) const { return column + 1 == m_timeColumn; }

    std::vector<std::string> Cells(std::string_view line) const
    {
        std::vector<std::string> cells = CellsOf(line, m_layout.delimiter);
        if (cells.size() != m_layout.columns)
            ThrowUnreadable(m_path, fmt::format("line {} has {} columns instead of {}", m_rows.number(), cells.size(),
                                                m_layout.columns));
        return cells;
    }

    PrintedNumber Number(const std::vector<std::string>& cells, std::size_t column) const
    {
        constexpr std::size_t longest = 40;
        PrintedNumber number;
        if (!IsNumber(cells[column], m_layout.decimal, number))
            ThrowUnreadable(m_path, fmt::format("line {}, column {}: \"{}\" is no number", m_rows.number(), column + 1,
                                                cells[column].substr(0, longest)));
        return number;
    }

    // And the rate, which the last time tells.
    void CountRows()
    {
        GoToStart();
        EvenTimes times;
        std::string_view line;
        const bool needsTimes = m_timeColumn != 0 && !(m_format.rate && m_format.timeColumn);
        for (; m_rows.Next(line); ++m_facts.frames)
            if (needsTimes) times.Add(Number(Cells(line), m_timeColumn - 1), m_rows.number());
        if (needsTimes && !m_format.timeColumn) SettleTimes(times);
        m_facts.sampleRate = m_format.rate || m_timeColumn == 0 ? m_format.rate.value_or(0.0) : RateOf(times);
        if (m_facts.sampleRate == 0.0)
            ThrowUnreadable(m_path, "CSV without a rate: give --rate, or the --time-column that tells it");
    }

    // Whether a first column that is called a time holds times. One called t that falls is a torque or a temperature;
    // of others that aren't even only the user knows.
    void SettleTimes(const EvenTimes& times)
    {
        const std::string& title = m_layout.names.front();
        if (Said(title).name.size() == 1 && !times.Rise()) {
            m_timeColumn = 0;
            return;
        }
        const std::string why = times.WhyNone(SecondsIn(Said(title).unit).value_or(1.0));
        if (!why.empty() && m_format.rate)
            ThrowUnreadable(m_path,
                            fmt::format("column 1 is called \"{}\", but {}; --time-column 1 takes it as times all "
                                        "the same, --time-column 0 as a channel",
                                        title, why));
        m_facts.times = title;
    }

    double RateOf(const EvenTimes& times) const
    {
        const std::string unit = m_layout.names.empty() ? "" : Said(m_layout.names[m_timeColumn - 1]).unit;
        const std::optional<double> seconds = SecondsIn(unit);
        if (!seconds)
            ThrowUnreadable(m_path, fmt::format("its times are in {}, not in s, ms or us: give --rate", unit));
        if (const std::string why = times.WhyNone(*seconds); !why.empty())
            ThrowUnreadable(m_path, fmt::format("{}; --rate takes them as even", why));
        return times.Rate(*seconds);
    }

    FileHandle& m_file;
    std::string m_path;
    CsvFormat m_format;
    CsvLayout m_layout;
    std::size_t m_timeColumn = 0; // counted from 1
    RowReader m_rows;
};

} // namespace

std::unique_ptr<SampleSource> OpenCsvFile(FileHandle& file, const std::string& path, const CsvFormat& format)
{
    if (!BeginsWithText(file)) return nullptr;
    std::vector<std::string> lines;
    RowReader rows(file, path, format.skip);
    std::string_view line;
    while (lines.size() < kProbedLines && rows.Next(line)) {
        if (!IsText(line)) return nullptr;
        lines.emplace_back(line);
    }
    CsvLayout layout = LayoutOf(lines, format);
    if (layout.columns == 0) return nullptr;
    return std::make_unique<CsvFile>(file, path, format, std::move(layout));
}

} // namespace zmxf
