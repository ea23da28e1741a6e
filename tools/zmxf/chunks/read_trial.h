#pragma once

#include "tools/zmxf/chunks/chunk_tree.h"
#include "tools/zmxf/files.h"
#include "zelmresult/document/result_header.h"
#include "zelmresult/storage/mmio_file.h"

#include <memory>
#include <string>

namespace zmxf {

// Whether the library loads the document as a whole.
bool CanBeLoaded(const std::string& path);

// Reads results of a file one by one, however damaged the rest of it is.
class ResultTrial {
public:
    enum class Fate {
        Readable,
        UnknownKind, // a load passes over it
        Unreadable,
    };

    explicit ResultTrial(const std::string& path);
    ResultTrial(const ResultTrial&) = delete;
    ResultTrial& operator=(const ResultTrial&) = delete;
    ~ResultTrial();

    // Null for a header that can't be read.
    std::unique_ptr<ZelmResult::CResultHeader> ReadHeader(const Chunk& chunk);
    bool IsQuantity(const Chunk& chunk);
    Fate Try(const Chunk& header, const Chunk& data);

private:
    bool GoTo(const Chunk& chunk);

    LibraryPath m_path;
    ZelmResult::CMmioFile m_file;
};

} // namespace zmxf
