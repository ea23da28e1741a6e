#include "zelmresult/storage/mmio_windows.h"

#include <windows.h>

#include <mmsystem.h>

namespace ZelmResult {

namespace {

constexpr std::int32_t kStreamError = -1;

MMCKINFO ToPlatform(const OMMCKINFO& chunk)
{
    return {chunk.ckid, chunk.cksize, chunk.fccType, chunk.dwDataOffset, chunk.dwFlags};
}

OMMCKINFO FromPlatform(const MMCKINFO& chunk)
{
    return {static_cast<std::uint32_t>(chunk.ckid), static_cast<std::uint32_t>(chunk.cksize),
            static_cast<std::uint32_t>(chunk.fccType), static_cast<std::uint32_t>(chunk.dwDataOffset),
            static_cast<std::uint32_t>(chunk.dwFlags)};
}

} // namespace

CMmioWindows::~CMmioWindows() { CMmioWindows::ommioClose(); }

bool CMmioWindows::ommioOpen(const wstring& name, OMMIOINFO* info, std::uint32_t flags)
{
    ommioClose();
    std::wstring path(name.begin(), name.end());
    MMIOINFO platform{};
    if (info != nullptr) {
        platform.cchBuffer = info->cchBuffer;
        platform.lDiskOffset = info->lDiskOffset;
    }
    m_file = mmioOpenW(path.data(), info != nullptr ? &platform : nullptr, flags);
    return m_file != nullptr;
}

void CMmioWindows::ommioClose()
{
    if (m_file != nullptr) (void)mmioClose(m_file, 0);
    m_file = nullptr;
}

// A count below zero would be a huge one.
std::int32_t CMmioWindows::ommioRead(char* buffer, std::int32_t count)
{
    return count < 0 ? kStreamError : mmioRead(m_file, buffer, count);
}

std::uint32_t CMmioWindows::ommioAscend(OMMCKINFO* chunk)
{
    if (m_file == nullptr) return MMSYSERR_INVALHANDLE; // some services leave a chunk of no file
    MMCKINFO platform = ToPlatform(*chunk);
    const std::uint32_t result = mmioAscend(m_file, &platform, 0);
    *chunk = FromPlatform(platform);
    return result;
}

std::uint32_t CMmioWindows::ommioDescend(OMMCKINFO* chunk, OMMCKINFO* parent, OMMIO_DESCEND_FLAG flag)
{
    MMCKINFO platform = ToPlatform(*chunk);
    MMCKINFO above = parent != nullptr ? ToPlatform(*parent) : MMCKINFO{};
    const std::uint32_t result = mmioDescend(m_file, &platform, parent != nullptr ? &above : nullptr, flag);
    *chunk = FromPlatform(platform);
    if (parent != nullptr) *parent = FromPlatform(above);
    return result;
}

std::uint32_t CMmioWindows::ommioCreateChunk(OMMCKINFO* chunk, OMMIO_CREATE_CHUNK_FLAG flag)
{
    MMCKINFO platform = ToPlatform(*chunk);
    const std::uint32_t result = mmioCreateChunk(m_file, &platform, flag);
    *chunk = FromPlatform(platform);
    return result;
}

std::int32_t CMmioWindows::ommioSeek(std::int32_t offset, OMMIO_SEEK_FLAG origin)
{
    // Some services answer the number of an error without a file, which is a place like any other.
    return m_file == nullptr ? kStreamError : mmioSeek(m_file, offset, static_cast<int>(origin));
}

std::uint32_t CMmioWindows::ommioGetInfo(OMMIOINFO* info)
{
    MMIOINFO platform{};
    platform.cchBuffer = info->cchBuffer;
    platform.lDiskOffset = info->lDiskOffset;
    const std::uint32_t result = mmioGetInfo(m_file, &platform, 0);
    // While there is a buffer, the services' own offset is where that lies on the disk.
    *info = {platform.cchBuffer, ommioSeek(0, OMMIO_SEEK_CUR)};
    return result;
}

std::int32_t CMmioWindows::ommioWrite(const char* buffer, std::int32_t count)
{
    return count < 0 ? kStreamError : mmioWrite(m_file, buffer, count);
}

std::uint32_t CMmioWindows::ommioStringToFOURCC(const char16_t* text, OMMIO_STRING_TO_FOURCC flag)
{
    const wstring_view given(text);
    std::wstring platform(given.begin(), given.end());
    return mmioStringToFOURCCW(platform.data(), flag);
}

} // namespace ZelmResult
