#pragma once

#include "tools/zmxf/base/files.h"
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

// The u32 at an offset, 0 when the file ends before its end.
std::uint32_t NumberAt(std::span<const char> bytes, std::int64_t offset);

} // namespace zmxf
