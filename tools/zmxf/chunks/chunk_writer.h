#pragma once

#include "tools/zmxf/chunks/chunk_tree.h"
#include "tools/zmxf/failure.h"
#include "tools/zmxf/files.h"
#include "tools/zmxf/text.h"
#include "zelmresult/storage/mmio_file.h"

#include <span>
#include <string>

namespace zmxf {

// Writes a file of chunks, most of them copies of another file's. All operations throw Failure.
class ChunkWriter {
public:
    // source is what copies are taken from, lent.
    ChunkWriter(const std::string& path, std::span<const char> source) : m_path(path), m_source(source), m_file(false)
    {
        Need(m_file.Open(LibraryPath(path).text(), nullptr, ZelmResult::OMMIO_WRITE | ZelmResult::OMMIO_CREATE));
    }

    [[nodiscard]] ZelmResult::CMmioFile& file() { return m_file; }
    void Need(bool written) const
    {
        if (!written) throw Failure("cannot write " + Printable(m_path) + ", maybe for want of space");
    }
    // A list or the form itself, with what write puts into it.
    template <class Write>
    void List(std::uint32_t form, Write write, ZelmResult::OMMIO_CREATE_CHUNK_FLAG kind = ZelmResult::OMMIO_CREATELIST)
    {
        ZelmResult::OMMCKINFO chunk;
        chunk.fccType = form;
        Need(m_file.hFile()->ommioCreateChunk(&chunk, kind) == 0);
        write();
        Need(m_file.ExitChunk(chunk));
    }
    // The bytes of a chunk under a code.
    void Copy(const Chunk& chunk, std::uint32_t code)
    {
        ZelmResult::OMMCKINFO copy;
        Need(m_file.CreateChunk(copy, code));
        CopyBytes(chunk);
        Need(m_file.ExitChunk(copy));
    }
    void Copy(const Chunk& chunk) { Copy(chunk, chunk.header.code); }
    void CopyBytes(const Chunk& chunk)
    {
        const auto* bytes = reinterpret_cast<const std::uint8_t*>(m_source.data() + chunk.data);
        Need(m_file.mmioWrite_byte(bytes, static_cast<std::size_t>(chunk.Size())));
    }
    // The version of a list, or the usual one where it is lost.
    void Version(const Chunk* list, std::uint16_t usual)
    {
        const Chunk* version = list != nullptr ? list->Find(Role::Version) : nullptr;
        if (version != nullptr && version->IsWhole())
            Copy(*version);
        else
            Need(m_file.WriteChunkVersion(usual));
    }

private:
    std::string m_path;
    std::span<const char> m_source;
    ZelmResult::CMmioFile m_file;
};

} // namespace zmxf
