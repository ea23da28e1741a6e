#include "tools/signal_processing/recordings/sample_bytes.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace zmxf {

namespace {

using ZelmResult::FileHandle;

constexpr std::int64_t kHeader = 8; // of a chunk: its name and its size
constexpr std::int64_t kFormHeader = 12;
constexpr int kMostChunks = 4096; // before the samples

// A piece of the file. What follows its end reads as zeros.
class Piece {
public:
    Piece(FileHandle& file, std::int64_t offset) { (void)file.ReadAt(offset, m_bytes.data(), m_bytes.size()); }
    [[nodiscard]] std::string_view Name(std::size_t at) const { return {m_bytes.data() + at, 4}; }
    [[nodiscard]] std::uint32_t Number(std::size_t at, bool isBigEndian) const
    {
        std::uint32_t number = 0;
        for (std::size_t i = 0; i < 4; ++i)
            number = number << 8U | static_cast<unsigned char>(m_bytes[at + (isBigEndian ? i : 3 - i)]);
        return number;
    }

private:
    std::array<char, 24> m_bytes{};
};

// What programs write that stream and can't go back: the largest numbers there are, with or without a sign.
bool IsOpen(std::uint32_t size) { return size >= 0xFFFF0000U || (size >= 0x7FFF0000U && size <= 0x7FFFFFFFU); }

struct Layout {
    bool isBigEndian = false;
    std::string_view samples; // the name of their chunk
};

std::optional<Layout> LayoutOf(const Piece& form)
{
    for (const std::string_view name : {"RIFF", "RF64", "BW64"})
        if (form.Name(0) == name && form.Name(8) == "WAVE") return Layout{false, "data"};
    if (form.Name(0) == "RIFX" && form.Name(8) == "WAVE") return Layout{true, "data"};
    if (form.Name(0) == "FORM" && form.Name(8).starts_with("AIF")) return Layout{true, "SSND"};
    return std::nullopt;
}

// Walks the chunks to that of the samples.
std::optional<SampleBytes> InChunks(FileHandle& file, std::int64_t fileSize, const Layout& layout)
{
    std::optional<std::int64_t> longSize; // in a chunk of its own, for sizes above 32 bits
    std::int64_t offset = kFormHeader;
    for (int i = 0; i < kMostChunks && offset + kHeader <= fileSize; ++i) {
        const Piece chunk(file, offset);
        const std::uint32_t size = chunk.Number(4, layout.isBigEndian);
        offset += kHeader;
        if (chunk.Name(0) == "ds64")
            longSize = static_cast<std::int64_t>(std::uint64_t{chunk.Number(20, false)} << 32U |
                                                 std::uint64_t{chunk.Number(16, false)});
        if (chunk.Name(0) != layout.samples) {
            offset += std::int64_t{size} + size % 2;
            continue;
        }
        if (size == UINT32_MAX && longSize) return SampleBytes{*longSize, fileSize - offset};
        if (IsOpen(size)) return std::nullopt;
        return SampleBytes{size, fileSize - offset};
    }
    return std::nullopt;
}

std::optional<SampleBytes> InAu(std::int64_t fileSize, const Piece& header)
{
    const std::uint32_t size = header.Number(8, true);
    if (IsOpen(size)) return std::nullopt;
    return SampleBytes{size, std::max<std::int64_t>(fileSize - header.Number(4, true), 0)};
}

} // namespace

std::optional<SampleBytes> FindCut(FileHandle& file)
{
    const std::int64_t size = file.Size();
    if (size < 0) return std::nullopt;
    const Piece start(file, 0);
    std::optional<SampleBytes> bytes;
    if (const auto layout = LayoutOf(start))
        bytes = InChunks(file, size, *layout);
    else if (start.Name(0) == ".snd")
        bytes = InAu(size, start);
    return bytes && bytes->announced > bytes->present ? bytes : std::nullopt;
}

} // namespace zmxf
