#include "tools/signal_processing/recordings/uff_file.h"

#include "tools/signal_processing/recordings/even_times.h"
#include "tools/signal_processing/recordings/uff_dataset.h"
#include "zelmresult/support/system_error.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <fmt/format.h>
#include <set>

namespace zmxf {

namespace {

using ZelmResult::FileHandle;

// The values of one dataset, one after the other.
class UffValues {
public:
    UffValues(FileHandle& file, const std::string& path, const UffDataset& dataset)
        : m_file(&file), m_path(&path), m_dataset(&dataset), m_lines(file, path, dataset.dataAt, dataset.dataLine)
    {
    }

    // The value, and the time of an uneven one.
    double Next(PrintedNumber* time = nullptr)
    {
        PrintedNumber abscissa;
        if (!m_dataset->isEven) abscissa = m_dataset->isBinary ? Binary(false) : Printed();
        if (time != nullptr) *time = abscissa;
        return m_dataset->isBinary ? Binary(m_dataset->isDouble).value : Printed().value;
    }
    [[nodiscard]] std::int64_t line() const { return m_lines.number(); }

private:
    PrintedNumber Printed()
    {
        PrintedNumber number;
        while (!TakeNumber(m_line, '.', number))
            if (!m_lines.Next(m_line)) ThrowUnreadable(*m_path, "it changes while it is read");
        return number;
    }

    PrintedNumber Binary(bool isDouble)
    {
        const std::size_t size = isDouble ? 8 : 4;
        if (m_bytes.size() - m_used < size) Fill();
        std::uint64_t bits = 0;
        for (std::size_t i = 0; i < size; ++i)
            bits |= std::uint64_t{Byte(m_used + (m_dataset->isBigEndian ? size - 1 - i : i))} << 8U * i;
        m_used += size;
        PrintedNumber number;
        number.significant = isDouble ? 15 : 7;
        number.value = isDouble ? std::bit_cast<double>(bits)
                                : static_cast<double>(std::bit_cast<float>(static_cast<std::uint32_t>(bits)));
        if (number.value != 0.0 && std::isfinite(number.value))
            number.lastPlace =
                static_cast<int>(std::floor(std::log10(std::fabs(number.value)))) + 1 - number.significant;
        return number;
    }

    [[nodiscard]] unsigned char Byte(std::size_t at) const { return static_cast<unsigned char>(m_bytes[at]); }

    void Fill()
    {
        constexpr std::size_t piece = 16384;
        m_bytes.erase(m_bytes.begin(), m_bytes.begin() + static_cast<std::ptrdiff_t>(m_used));
        m_used = 0;
        const std::size_t left = m_bytes.size();
        m_bytes.resize(left + piece);
        const std::int64_t got = m_file->ReadAt(m_dataset->dataAt + m_taken, m_bytes.data() + left, piece);
        if (got < 0) ThrowUnreadable(*m_path, ZelmResult::LastSystemError().message());
        if (got < 8) ThrowUnreadable(*m_path, "it changes while it is read"); // a line ends the dataset after its data
        m_bytes.resize(left + static_cast<std::size_t>(got));
        m_taken += got;
    }

    FileHandle* m_file;
    const std::string* m_path;
    const UffDataset* m_dataset;
    LineReader m_lines;
    std::string_view m_line;
    std::vector<char> m_bytes;
    std::size_t m_used = 0;
    std::int64_t m_taken = 0; // bytes of the data
};

class UffFile : public SampleSource {
public:
    UffFile(FileHandle& file, std::string path) : m_file(file), m_path(std::move(path))
    {
        m_datasets = FindUffDatasets(file, m_path, m_facts.notes);
        if (m_datasets.empty()) ThrowUnreadable(m_path, "it has no time signal: no dataset 58 over time");
        for (UffDataset& dataset : m_datasets)
            if (!dataset.isEven) dataset.rate = RateOf(dataset);
        CheckAlike();
        m_facts.frames = m_datasets.front().points;
        m_facts.channels = m_datasets.size();
        m_facts.sampleRate = m_datasets.front().rate;
        m_facts.comment = m_datasets.front().description;
        NameChannels();
        GoToStart();
    }

    void Rewind() override { GoToStart(); }

    std::size_t Read(std::span<double> block) override
    {
        const std::size_t channels = m_facts.channels;
        const auto frames = static_cast<std::size_t>(
            std::min(static_cast<std::int64_t>(block.size() / channels), m_facts.frames - m_framesRead));
        for (std::size_t channel = 0; channel < channels; ++channel)
            for (std::size_t i = 0; i < frames; ++i) block[i * channels + channel] = m_values[channel].Next();
        m_framesRead += static_cast<std::int64_t>(frames);
        return frames;
    }

private:
    void GoToStart()
    {
        m_values.clear();
        for (const UffDataset& dataset : m_datasets) m_values.emplace_back(m_file, m_path, dataset);
        m_framesRead = 0;
    }

    double RateOf(const UffDataset& dataset) const
    {
        EvenTimes times;
        UffValues values(m_file, m_path, dataset);
        for (std::int64_t i = 0; i < dataset.points; ++i) {
            PrintedNumber time;
            (void)values.Next(&time);
            times.Add(time, dataset.isBinary ? 0 : values.line());
        }
        if (const std::string why = times.WhyNone(1.0); !why.empty()) ThrowUnreadable(m_path, why);
        return times.Rate(1.0);
    }

    void CheckAlike() const
    {
        const UffDataset& first = m_datasets.front();
        for (const UffDataset& other : m_datasets)
            if (other.rate != first.rate || other.points != first.points)
                ThrowUnreadable(m_path, fmt::format("its signals differ: {} samples at {:.6g} Hz on line {}, {} at "
                                                    "{:.6g} Hz on line {}",
                                                    first.points, first.rate, first.line, other.points, other.rate,
                                                    other.line));
    }

    // By the first line of each where they differ, else by the point that was measured.
    void NameChannels()
    {
        std::set<std::string> names;
        for (const UffDataset& dataset : m_datasets) names.insert(dataset.name);
        for (const UffDataset& dataset : m_datasets)
            m_facts.said.push_back(
                {names.size() == m_datasets.size() && !dataset.name.empty() ? dataset.name : dataset.entity,
                 dataset.unit});
    }

    FileHandle& m_file;
    std::string m_path;
    std::vector<UffDataset> m_datasets;
    std::vector<UffValues> m_values; // per channel
    std::int64_t m_framesRead = 0;
};

} // namespace

std::unique_ptr<SampleSource> OpenUffFile(FileHandle& file, const std::string& path)
{
    if (!IsUff(file, path)) return nullptr;
    return std::make_unique<UffFile>(file, path);
}

} // namespace zmxf
