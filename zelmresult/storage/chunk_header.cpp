#include "zelmresult/storage/chunk_header.h"

#include "zelmresult/storage/chunk_codes.h"

#include <algorithm>

namespace ZelmResult {

namespace {

constexpr std::int64_t kVisitsPerByte = 4;
constexpr std::int64_t kVisitsAlways = 1000000;

} // namespace

bool ChunkSearch::Matches(const ChunkHeader& header) const
{
    switch (flag) {
    case OMMIO_FINDCHUNK: return header.ckid == code;
    case OMMIO_FINDRIFF: return header.ckid == kCodeRiff && header.fccType == code;
    case OMMIO_FINDLIST: return header.ckid == kCodeList && header.fccType == code;
    default: return true;
    }
}

std::optional<ChunkHeader> ReadChunkHeader(BufferedFile& file, std::int64_t position)
{
    std::uint32_t words[3] = {};
    if (!file.Seek(position) || file.Read(reinterpret_cast<char*>(words), 8) != 8) return std::nullopt;
    ChunkHeader header{static_cast<std::uint32_t>(position), words[0], words[1], 0};
    if (header.HasFormType()) {
        if (file.Read(reinterpret_cast<char*>(words + 2), 4) != 4) return std::nullopt;
        header.fccType = words[2];
    }
    return header;
}

void SiblingWalk::LimitVisits()
{
    m_visitsLeft =
        std::clamp<std::int64_t>(m_file.Size(), 0, BufferedFile::kLastPosition) * kVisitsPerByte + kVisitsAlways;
}

std::optional<ChunkHeader> SiblingWalk::Find(const ChunkSearch& search)
{
    for (std::int64_t position = search.start; search.Holds(position, 8) && m_visitsLeft > 0; --m_visitsLeft) {
        const auto header = ReadChunkHeader(m_file, position);
        if (!header || !search.Holds(position, header->Length())) break;
        if (search.Matches(*header)) return header;
        position = header->Next();
    }
    return std::nullopt;
}

} // namespace ZelmResult
