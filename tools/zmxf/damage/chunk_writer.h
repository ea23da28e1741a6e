#pragma once

#include "tools/zmxf/base/failure.h"
#include "tools/zmxf/base/files.h"
#include "tools/zmxf/base/text.h"
#include "tools/zmxf/damage/chunk_tree.h"
#include "tools/zmxf/damage/salvage_plan.h"
#include "zelmresult/storage/chunk_kinds.h"
#include "zelmresult/storage/mmio_file.h"

#include <map>
#include <span>
#include <string>

namespace zmxf {

// Writes a file of chunks, most of them copies of another file's. All operations throw Failure.
class ChunkWriter {
public:
    // The chunk of the source that each chunk comes from, by the offset that it has now; null for what is new.
    using Origins = std::map<std::int64_t, const Chunk*>;

    // source is what copies are taken from, with patches; both are lent.
    ChunkWriter(const std::string& path, std::span<const char> source, const Patches& patches)
        : m_path(path), m_source(source), m_patches(patches), m_file(false)
    {
        Check(m_file.Open(LibraryPath(path), nullptr, ZelmResult::OMMIO_WRITE | ZelmResult::OMMIO_CREATE));
    }

    [[nodiscard]] ZelmResult::CMmioFile& file() { return m_file; }
    void Check(bool written) const
    {
        if (!written) throw Failure("cannot write {}, maybe for want of space", Printable(m_path));
    }
    [[nodiscard]] const Origins& origins() const { return m_origins; }
    // The file, at a new chunk.
    [[nodiscard]] ZelmResult::CMmioFile& NewChunk()
    {
        m_origins[m_file.Position()] = nullptr;
        return m_file;
    }
    // A list or the form itself, with what write puts into it. origin may be null.
    template <class Write>
    void List(std::uint32_t form, const Chunk* origin, Write write,
              ZelmResult::OMMIO_CREATE_CHUNK_FLAG kind = ZelmResult::OMMIO_CREATELIST)
    {
        m_origins[m_file.Position()] = origin;
        ZelmResult::OMMCKINFO chunk;
        chunk.fccType = form;
        Check(m_file.hFile()->ommioCreateChunk(&chunk, kind) == 0);
        write();
        Check(m_file.ExitChunk(chunk));
    }
    // The bytes of a chunk under a code.
    void Copy(const Chunk& chunk, std::uint32_t code)
    {
        ZelmResult::OMMCKINFO copy;
        m_origins[m_file.Position()] = &chunk;
        Check(m_file.CreateChunk(copy, code));
        CopyBytes(chunk);
        Check(m_file.ExitChunk(copy));
    }
    void Copy(const Chunk& chunk) { Copy(chunk, chunk.header.code); }
    void CopyBytes(const Chunk& chunk)
    {
        std::int64_t from = chunk.data;
        for (auto patch = m_patches.lower_bound(from); patch != m_patches.end() && patch->first + 4 <= chunk.end;
             ++patch) {
            if (patch->first < from) continue;
            Write(m_source.subspan(static_cast<std::size_t>(from), static_cast<std::size_t>(patch->first - from)));
            Write(patch->second);
            from = patch->first + 4;
        }
        Write(m_source.subspan(static_cast<std::size_t>(from), static_cast<std::size_t>(chunk.end - from)));
    }
    // Fields between chunks, which count as a chunk of the source too.
    void CopyBare(const Chunk& chunk)
    {
        m_origins[m_file.Position()] = &chunk;
        CopyBytes(chunk);
    }
    // The version of a list, or the usual one where it is damaged or lost. list may be null.
    void Version(const Chunk* list, std::uint16_t usual)
    {
        const Chunk* version = list != nullptr ? list->Find(ChunkKind::Version) : nullptr;
        if (version != nullptr && version->IsWhole() && VersionIn(m_source, *version) == ListVersion(m_source, *list))
            Copy(*version);
        else
            Check(NewChunk().WriteChunkVersion(usual));
    }

private:
    void Write(std::span<const char> bytes)
    {
        Check(m_file.mmioWrite_byte(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()));
    }

    std::string m_path;
    std::span<const char> m_source;
    const Patches& m_patches;
    Origins m_origins;
    ZelmResult::CMmioFile m_file;
};

} // namespace zmxf
