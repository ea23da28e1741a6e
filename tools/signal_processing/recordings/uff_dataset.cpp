#include "tools/signal_processing/recordings/uff_dataset.h"

#include "tools/signal_processing/recordings/even_times.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>

namespace zmxf {

namespace {

using ZelmResult::FileHandle;

constexpr std::string_view kDelimiter = "    -1";
constexpr int kTimeResponse = 1;
constexpr int kUnknown = 0; // function or abscissa
constexpr int kTimeAbscissa = 17;

bool IsDelimiter(std::string_view line) { return line.starts_with(kDelimiter) && Trimmed(line) == "-1"; }

bool IsBinary(std::string_view kind) { return kind.starts_with("58b") || kind.starts_with("58B"); }

// A field of a line by its columns, without blanks. What is after the end of the line is empty.
std::string_view Field(std::string_view line, std::size_t from, std::size_t size)
{
    return from >= line.size() ? std::string_view() : Trimmed(line.substr(from, size));
}

std::string Text(std::string_view field) { return field == "NONE" ? std::string() : std::string(field); }

// Reads the datasets of a file one after the other.
class DatasetFinder {
public:
    DatasetFinder(FileHandle& file, const std::string& path)
        : m_file(file), m_path(path), m_lines(file, path), m_fileSize(std::max<std::int64_t>(file.Size(), 0))
    {
    }

    std::vector<UffDataset> All(std::vector<std::string>& notes)
    {
        std::vector<UffDataset> found;
        std::size_t others = 0;
        std::string_view line;
        while (m_lines.Next(line)) {
            if (!IsDelimiter(line)) continue; // blank lines, or what a program left between datasets
            if (!m_lines.Next(line)) break;
            const std::string kind(Trimmed(line));
            if (kind != "58" && !kind.starts_with("58 ") && !IsBinary(kind)) {
                SkipDataset();
                continue;
            }
            UffDataset dataset = ReadFunction(kind);
            if (dataset.IsTimeSignal())
                found.push_back(std::move(dataset));
            else
                ++others;
        }
        if (others != 0)
            notes.push_back(fmt::format("{} function{} of the file that {} no time signal{} left out", others,
                                        others == 1 ? "" : "s", others == 1 ? "is" : "are",
                                        others == 1 ? " is" : "s are"));
        return found;
    }

private:
    [[noreturn]] void Fail(const std::string& why) const
    {
        ThrowUnreadable(m_path, fmt::format("line {}: {}", m_lines.number(), why));
    }

    std::string_view NextLine()
    {
        std::string_view line;
        if (!m_lines.Next(line)) Fail("the file ends within the header of a dataset");
        return line;
    }

    // Another dataset, up to the line that ends it.
    void SkipDataset()
    {
        std::string_view line;
        while (m_lines.Next(line))
            if (IsDelimiter(line)) return;
        Fail("the file ends within a dataset");
    }

    // The numbers at the front of a line; those that are missing are 0.
    template <std::size_t count>
    std::array<PrintedNumber, count> Numbers(std::string_view line) const
    {
        std::array<PrintedNumber, count> numbers;
        for (PrintedNumber& number : numbers)
            if (!TakeNumber(line, '.', number)) break;
        return numbers;
    }

    UffDataset ReadFunction(const std::string& kind)
    {
        UffDataset dataset;
        dataset.line = m_lines.number();
        const std::int64_t announced = ReadKind(kind, dataset);
        dataset.name = Text(Trimmed(NextLine()));
        dataset.description = Text(Trimmed(NextLine()));
        for (int i = 0; i < 3; ++i) (void)NextLine(); // the date, and two that programs use as they like
        const std::string_view degrees = NextLine();
        dataset.function = static_cast<int>(std::clamp(Numbers<1>(degrees)[0].value, -1.0, 1000.0));
        dataset.entity = Text(Field(degrees, 31, 10));
        const PrintedNumber step = ReadForm(dataset);
        const double abscissa = Numbers<1>(NextLine())[0].value;
        dataset.isOverTime = abscissa == kTimeAbscissa || (abscissa == kUnknown && dataset.function == kTimeResponse);
        const std::string_view ordinate = NextLine();
        dataset.unit = Text(Field(ordinate, 47, 20));
        for (int i = 0; i < 2; ++i) (void)NextLine();
        dataset.dataAt = m_lines.position();
        dataset.dataLine = m_lines.number();
        if (dataset.IsTimeSignal() && dataset.isEven) dataset.rate = RateOf(step);
        if (dataset.isBinary)
            PassBinary(dataset, announced);
        else
            PassText(dataset);
        return dataset;
    }

    // The bytes of data that the line of a binary dataset announces.
    std::int64_t ReadKind(const std::string& kind, UffDataset& dataset)
    {
        constexpr double ieee = 2.0;
        dataset.isBinary = IsBinary(kind);
        if (!dataset.isBinary) return 0;
        const auto fields = Numbers<4>(std::string_view(kind).substr(3));
        dataset.isBigEndian = fields[0].value == 2.0;
        if (fields[1].value != ieee) Fail("the floating-point format of the dataset is not that of IEEE");
        const double bytes = fields[3].value;
        return bytes > 0.0 && bytes <= static_cast<double>(m_fileSize) ? static_cast<std::int64_t>(bytes) : 0;
    }

    PrintedNumber ReadForm(UffDataset& dataset)
    {
        constexpr double realSingle = 2.0;
        constexpr double realDouble = 4.0;
        constexpr double complexSingle = 5.0;
        constexpr double complexDouble = 6.0;
        const auto form = Numbers<5>(NextLine());
        dataset.isDouble = form[0].value == realDouble || form[0].value == complexDouble;
        dataset.isComplex = form[0].value == complexSingle || form[0].value == complexDouble;
        if (!dataset.isDouble && !dataset.isComplex && form[0].value != realSingle)
            Fail(fmt::format("the values of the dataset are of the unknown type {:.6g}", form[0].value));
        // A point takes 4 bytes at least, as binary or as text.
        if (!(form[1].value >= 1.0 && form[1].value <= static_cast<double>(m_fileSize)))
            Fail(fmt::format("the dataset says that it has {:.6g} points", form[1].value));
        dataset.points = static_cast<std::int64_t>(form[1].value);
        dataset.isEven = form[2].value != 0.0;
        return form[4];
    }

    double RateOf(const PrintedNumber& step) const
    {
        const double rate = step.value > 0.0 ? RateOfStep(step) : 0.0;
        if (!(rate >= kLowestRate && rate <= kHighestRate))
            Fail(fmt::format("the samples are {:.6g} s apart", step.value));
        return rate;
    }

    // Whether the dataset ends there, after whatever ends of lines.
    [[nodiscard]] bool EndsAt(std::int64_t position) const
    {
        std::array<char, 100> bytes{};
        const std::int64_t got = m_file.ReadAt(position, bytes.data(), bytes.size());
        const std::string_view text(bytes.data(), static_cast<std::size_t>(std::max<std::int64_t>(got, 0)));
        const std::size_t from = text.find_first_not_of("\r\n");
        return from != std::string_view::npos && IsDelimiter(text.substr(from, text.find('\n', from) - from));
    }

    // Goes after the end of binary data. The number of points counts; where the dataset doesn't end after them, the
    // number of bytes does, and the points that fill them.
    void PassBinary(UffDataset& dataset, std::int64_t announced)
    {
        const std::int64_t perPoint = dataset.bytesPerPoint();
        std::int64_t bytes = dataset.points * perPoint;
        if (bytes > m_fileSize - dataset.dataAt || !EndsAt(dataset.dataAt + bytes)) {
            const bool fits = announced > 0 && announced % perPoint == 0 && announced <= m_fileSize - dataset.dataAt;
            if (!fits || !EndsAt(dataset.dataAt + announced))
                Fail(fmt::format("the dataset that begins here doesn't end after its {} points: the file is cut short "
                                 "or damaged",
                                 dataset.points));
            bytes = announced;
            dataset.points = bytes / perPoint;
        }
        m_lines = LineReader(m_file, m_path, dataset.dataAt + bytes, m_lines.number());
        std::string_view line;
        while (m_lines.Next(line))
            if (IsDelimiter(line)) return;
    }

    // Counts the numbers up to the end: more than there are points are a last line that was filled up.
    void PassText(const UffDataset& dataset)
    {
        const std::int64_t wanted = dataset.points * ((dataset.isEven ? 1 : 2) + (dataset.isComplex ? 1 : 0));
        std::int64_t count = 0;
        std::string_view line;
        while (m_lines.Next(line)) {
            if (IsDelimiter(line)) {
                if (count < wanted) Fail(fmt::format("the dataset ends after {} of {} numbers", count, wanted));
                return;
            }
            if (count >= wanted && !Trimmed(line).empty()) Fail("there are more numbers than the dataset says");
            PrintedNumber number;
            while (TakeNumber(line, '.', number)) ++count;
            if (!Trimmed(line).empty()) Fail(fmt::format("\"{}\" is no number", Trimmed(line).substr(0, 20)));
        }
        Fail(fmt::format("the file ends after {} of {} numbers of a dataset", count, wanted));
    }

    FileHandle& m_file;
    const std::string& m_path;
    LineReader m_lines;
    std::int64_t m_fileSize;
};

} // namespace

bool UffDataset::IsTimeSignal() const
{
    return isOverTime && !isComplex && (function == kTimeResponse || function == kUnknown);
}

std::vector<UffDataset> FindUffDatasets(FileHandle& file, const std::string& path, std::vector<std::string>& notes)
{
    return DatasetFinder(file, path).All(notes);
}

bool IsUff(FileHandle& file, const std::string& path)
{
    std::array<char, 4096> start{};
    const std::int64_t got = file.ReadAt(0, start.data(), start.size());
    if (got <= 0) return false;
    // Long lines are no reason to fail here: a file of another format may have no lines.
    const std::string_view text(start.data(), static_cast<std::size_t>(got));
    const std::size_t from = text.find_first_not_of("\r\n");
    if (from == std::string_view::npos || !text.substr(from).starts_with(kDelimiter)) return false;
    LineReader lines(file, path, static_cast<std::int64_t>(from));
    std::string_view line;
    if (!lines.Next(line) || !IsDelimiter(line) || !lines.Next(line)) return false;
    PrintedNumber kind;
    return TakeNumber(line, '.', kind) && kind.value > 0.0;
}

} // namespace zmxf
