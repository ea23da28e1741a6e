#pragma once

#include "zelmresult/storage/file_handle.h"
#include "zelmresult/storage/mmio.h"

#include <memory>

namespace ZelmResult {

// The library's backend: RIFF chunks over a file of the platform, or over any FileHandle.
//
// Reading goes through a window of 128 KiB, never a memory map, so that a file which another process shortens gives a
// short read and no crash; its size is asked once. A file that is open for reading remembers the chunk headers that
// searches pass, so fetching many chunks by code costs time in proportion to their number. Only regular files open.
//
// Writing goes through one window that grows up to cchBuffer bytes (64 KiB without an OMMIOINFO). A write that fails at
// the device, for example on a full disk, makes every later write fail. Ascending the RIFF chunk writes the window and
// reports the failure, since closing cannot. Where the process has a limit on file sizes, the host must ignore SIGXFSZ
// for that.
//
// Copies share one open file with one position; closing any of them closes it for all, and it closes once. Final, since
// fields are read and written through the cursor, past these operations. To change bytes on their way, give it a
// FileHandle of your own.
class CMmioRiff final : public CMmio {
public:
    // Whether searches may remember headers. Without it the answers are the same, but slower.
    enum class Search { Indexed, Plain };

    CMmioRiff();
    explicit CMmioRiff(FileHandleFactory makeHandle, Search search = Search::Indexed);

    bool ommioOpen(const wstring& name, OMMIOINFO* info, std::uint32_t flags) override;
    void ommioClose() override;
    std::int32_t ommioRead(char* buffer, std::int32_t count) override;
    std::uint32_t ommioAscend(OMMCKINFO* chunk) override;
    std::uint32_t ommioDescend(OMMCKINFO* chunk, OMMCKINFO* parent, OMMIO_DESCEND_FLAG flag) override;
    std::uint32_t ommioCreateChunk(OMMCKINFO* chunk, OMMIO_CREATE_CHUNK_FLAG flag) override;
    std::int32_t ommioSeek(std::int32_t offset, OMMIO_SEEK_FLAG origin) override;
    std::uint32_t ommioGetInfo(OMMIOINFO* info) override;
    std::int32_t ommioWrite(const char* buffer, std::int32_t count) override;
    std::uint32_t ommioStringToFOURCC(const char16_t* text, OMMIO_STRING_TO_FOURCC flag) override;
    std::shared_ptr<ByteCursor> Cursor() const override;
    std::int64_t BytesLeft() override;
    void LimitSearches() override; // headers that are remembered don't count

private:
    struct OpenFile;

    [[nodiscard]] bool IsOpen() const;
    bool CloseDirtyChunk(OMMCKINFO& chunk);

    FileHandleFactory m_makeHandle;
    Search m_search;
    std::shared_ptr<OpenFile> m_open;
};

} // namespace ZelmResult
