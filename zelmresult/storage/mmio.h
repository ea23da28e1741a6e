#pragma once

#include "zelmresult/storage/byte_cursor.h"
#include "zelmresult/support/wstring.h"

#include <cstdint>
#include <functional>
#include <memory>

namespace ZelmResult {

// A chunk, as input and output of every chunk operation. The caller fills it with zeros and sets ckid or fccType before
// a search or a create; between create and ascend the caller must not change it.
struct OMMCKINFO {
    std::uint32_t ckid = 0;         // four-character code; "RIFF" or "LIST" for those two
    std::uint32_t cksize = 0;       // bytes of data, without header and pad byte; includes a form type
    std::uint32_t fccType = 0;      // form type of a RIFF or LIST chunk, 0 for a plain chunk
    std::uint32_t dwDataOffset = 0; // file offset of the data; of the form type for a RIFF or LIST chunk
    std::uint32_t dwFlags = 0;      // OMMIO_DIRTY between create and ascend

    bool operator==(const OMMCKINFO&) const = default;
};

struct OMMIOINFO {
    std::int32_t cchBuffer = 0;   // bytes of the write buffer
    std::int32_t lDiskOffset = 0; // position in the file
};

inline constexpr std::uint32_t OMMIO_DIRTY = 0x10000000; // made by ommioCreateChunk and not yet ascended

enum OMMIO_DESCEND_FLAG : std::uint32_t {
    OMMIO_FINDNEXT = 0, // the next chunk, whatever it is
    OMMIO_FINDCHUNK = 0x10,
    OMMIO_FINDRIFF = 0x20,
    OMMIO_FINDLIST = 0x40
};

enum OMMIO_CREATE_CHUNK_FLAG : std::uint32_t {
    OMMIO_CREATECHUNK = 0,
    OMMIO_CREATERIFF = 0x20,
    OMMIO_CREATELIST = 0x40
};

enum OMMIO_SEEK_FLAG : std::uint32_t { OMMIO_SEEK_SET = 0, OMMIO_SEEK_CUR = 1, OMMIO_SEEK_END = 2 };

enum OMMIO_STRING_TO_FOURCC : std::uint32_t { OMMIO_ASIS = 0, OMMIO_TOUPPER = 0x10 };

// Open flags.
inline constexpr std::uint32_t OMMIO_READ = 0;
inline constexpr std::uint32_t OMMIO_WRITE = 1;
inline constexpr std::uint32_t OMMIO_CREATE = 0x1000;
inline constexpr std::uint32_t OMMIO_ALLOCBUF = 0x10000;

// All access of the library to files: an open stream of bytes with a position, and the RIFF chunks in it. A host may
// derive its own backend, to keep documents in memory or in an archive; see CMmioFile for how to use it.
//
// Writers don't look at every result: after a write that failed, all further ones and the ascend of the RIFF form must
// fail as well, so that a file with a hole in it is never taken for a whole one.
//
// A backend is closed or open and starts closed. While it is closed, stream operations give -1 and chunk operations a
// nonzero value. All positions are signed 32-bit: anything beyond 2^31-1 fails. One thread at a time.
class CMmio {
public:
    CMmio() = default;
    CMmio(const CMmio&) = default;
    CMmio& operator=(const CMmio&) = default;
    virtual ~CMmio() = default; // closes an open file

    // Closes what is open, then opens name. True when the file is open. info may be null; else its buffer size and
    // position are used. Flags 0 open for reading only; OMMIO_CREATE truncates an existing file at once.
    virtual bool ommioOpen(const wstring& name, OMMIOINFO* info, std::uint32_t flags) = 0;
    // Flushes and closes; does nothing on a closed backend.
    virtual void ommioClose() = 0;
    // Bytes read into buffer, which advances the position. Fewer than count, or 0, at the end of the file; -1 on error.
    virtual std::int32_t ommioRead(char* buffer, std::int32_t count) = 0;
    // Leaves a chunk: 0 on success, with the position at the next sibling. For a chunk that ommioCreateChunk made, the
    // size becomes the count of bytes written since, a pad byte follows an odd size, and the size field on disk is set.
    virtual std::uint32_t ommioAscend(OMMCKINFO* chunk) = 0;
    // Searches for the wanted code among the siblings from the current position on; within the data of parent, or to
    // the end of the file when it is null. 0 when found: chunk is filled and the position is at its data, after the
    // form type of a RIFF or LIST chunk. Nonzero otherwise, with the position unspecified.
    virtual std::uint32_t ommioDescend(OMMCKINFO* chunk, OMMCKINFO* parent, OMMIO_DESCEND_FLAG flag) = 0;
    // Writes the header of a chunk at the current position, with size 0 on disk until it is ascended. 0 on success.
    virtual std::uint32_t ommioCreateChunk(OMMCKINFO* chunk, OMMIO_CREATE_CHUNK_FLAG flag) = 0;
    // The new position, -1 on error.
    virtual std::int32_t ommioSeek(std::int32_t offset, OMMIO_SEEK_FLAG origin) = 0;
    // Reports the buffer size and the exact position. 0 on success.
    virtual std::uint32_t ommioGetInfo(OMMIOINFO* info) = 0;
    // Bytes written, -1 on error.
    virtual std::int32_t ommioWrite(const char* buffer, std::int32_t count) = 0;
    // The code of the first four characters of a text, padded with blanks. Needs no open file.
    virtual std::uint32_t ommioStringToFOURCC(const char16_t* text, OMMIO_STRING_TO_FOURCC flag) = 0;

    // Lends a cursor on the bytes that the open backend holds in memory, and shares it: once the backend is closed the
    // cursor is empty. Null, as here, where a backend has none. Ask again after an open.
    [[nodiscard]] virtual std::shared_ptr<ByteCursor> Cursor() const { return nullptr; }
    // Bytes between the position and the end of the file, 0 when closed. Readers ask before they size memory by a
    // number from the file. This one seeks to the end and back; a backend that knows the size overrides it.
    virtual std::int64_t BytesLeft();
    // Limits the chunk headers that all searches of the open file together visit to a small multiple of its size; after
    // that they find nothing. Loaders ask for it, since hostile files are made to cost time. This one does nothing.
    virtual void LimitSearches() {}
};

// Makes a closed backend for each file that is opened.
using BackendFactory = std::function<std::unique_ptr<CMmio>()>;

} // namespace ZelmResult
