#pragma once

#include "zelmresult/storage/mmio_file.h"

#include <cstdint>
#include <span>

namespace zmxf {

// Bytes in memory, which are lent, as a file that the library's readers read.
class ByteFile {
public:
    explicit ByteFile(std::span<const char> bytes);

    // Where a text that begins at an offset ends; -1 when there is none.
    [[nodiscard]] std::int64_t EndOfText(std::int64_t offset);
    // The same of the bare version of an application, which the settings of two former versions have.
    [[nodiscard]] std::int64_t EndOfApplicationVersion(std::int64_t offset);

private:
    template <class Read>
    std::int64_t EndOf(std::int64_t offset, Read read);

    ZelmResult::CMmioFile m_file;
};

// Reads the version of an application, wherever it stands, and drops it.
bool PassApplicationVersion(ZelmResult::CMmioFile& file);

} // namespace zmxf
