// A host's own backend, in memory, built against the installed library as a stranger would.

#include "zelmresult/storage/mmio.h"
#include "zelmresult/storage/mmio_file.h"
#include "zelmresult/version.h"

#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>
#include <typeinfo>

using namespace ZelmResult;

class MemoryStream : public CMmio {
public:
    bool ommioOpen(const wstring&, OMMIOINFO*, std::uint32_t) override
    {
        m_open = true;
        return true;
    }
    void ommioClose() override { m_open = false; }
    std::int32_t ommioRead(char* buffer, std::int32_t count) override
    {
        const std::size_t given = m_bytes.copy(buffer, static_cast<std::size_t>(count), m_position);
        m_position += given;
        return static_cast<std::int32_t>(given);
    }
    std::uint32_t ommioAscend(OMMCKINFO*) override { return 1; }
    std::uint32_t ommioDescend(OMMCKINFO*, OMMCKINFO*, OMMIO_DESCEND_FLAG) override { return 1; }
    std::uint32_t ommioCreateChunk(OMMCKINFO*, OMMIO_CREATE_CHUNK_FLAG) override { return 1; }
    std::int32_t ommioSeek(std::int32_t offset, OMMIO_SEEK_FLAG origin) override
    {
        const std::size_t from = origin == OMMIO_SEEK_END ? m_bytes.size() : origin == OMMIO_SEEK_CUR ? m_position : 0;
        m_position = std::min(m_bytes.size(), from + static_cast<std::size_t>(offset));
        return static_cast<std::int32_t>(m_position);
    }
    std::uint32_t ommioGetInfo(OMMIOINFO* info) override
    {
        info->lDiskOffset = static_cast<std::int32_t>(m_position);
        return m_open ? 0 : 1;
    }
    std::int32_t ommioWrite(const char* buffer, std::int32_t count) override
    {
        m_bytes.append(buffer, static_cast<std::size_t>(count));
        m_position = m_bytes.size();
        return count;
    }
    std::uint32_t ommioStringToFOURCC(const char16_t* text, OMMIO_STRING_TO_FOURCC) override { return text[0]; }

private:
    std::string m_bytes;
    std::size_t m_position = 0;
    bool m_open = false;
};

int main()
{
    CMmioFile file(false, [] { return std::make_unique<MemoryStream>(); });
    if (!file.Open(u"anywhere", nullptr, OMMIO_WRITE)) return 1;
    CMmio& backend = *file.hFile();
    // Run-time types must work across the border of the library.
    const bool known = dynamic_cast<MemoryStream*>(&backend) != nullptr && typeid(backend) == typeid(MemoryStream);
    const bool written = backend.ommioWrite("result", 6) == 6;
    const bool measured = backend.ommioSeek(2, OMMIO_SEEK_SET) == 2 && backend.BytesLeft() == 4;
    std::printf("ZelmResult %d.%d.%d: known %d, written %d, measured %d\n", VersionMajor, VersionMinor, VersionPatch,
                known, written, measured);
    return known && written && measured ? 0 : 1;
}
