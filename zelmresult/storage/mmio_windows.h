#pragma once

#include "zelmresult/storage/mmio.h"

struct HMMIO__;

namespace ZelmResult {

// The multimedia file services of Windows as a backend, on Windows only: each operation is a call of theirs, with the
// records copied there and back. For hosts that must have those services below; the library's own backend, CMmioRiff,
// is the default and gives the same files:
//
//     CZMXFFile document(true, false);
//     document.SetBackend([] { return std::make_unique<CMmioWindows>(); });
//
// The services keep no failure in mind. A full disk may go unnoticed, since closing reports nothing, and they take no
// path of more than 128 characters. They read each header again and again, so loading many results takes longer. In
// damaged files they find chunks where the library's own backend finds none; docs/guides/windows.md lists all that
// differs. Calls without an open file and counts below zero fail before they get there, and the position is always that
// of the next byte, also while there is a buffer.
//
// Copies share one open file as it is: closing any of them closes it, and the others must not be used again, nor end.
class CMmioWindows : public CMmio {
public:
    CMmioWindows() = default;
    CMmioWindows(const CMmioWindows&) = default;
    CMmioWindows& operator=(const CMmioWindows&) = default;
    ~CMmioWindows() override;

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

private:
    HMMIO__* m_file = nullptr; // the platform's handle
};

} // namespace ZelmResult
