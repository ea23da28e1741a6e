#pragma once

#include "zelmresult/storage/mmio_file.h"

#include <cstdint>

namespace ZelmResult {

// The beginning of the list of a module or a submodule: its version, a text, and from some version on whether it is
// visible.
struct NodeHead {
    std::uint16_t version = 0;
    wstring text;
    bool visible = true;

    static constexpr std::uint16_t kFirstVersion = 256;

    // From the file's current chunk. firstWithVisible is the first version that holds the flag, 0 for none. Below
    // version 256 the list holds nothing else, which is no failure.
    [[nodiscard]] bool Read(CMmioFile& file, std::uint16_t firstWithVisible)
    {
        OMMCKINFO parent = file.CurrentMmckinfo();
        if (!file.ReadChunkVersion(parent, version)) return false;
        if (IsEmpty()) return true;
        const bool hasVisible = firstWithVisible != 0 && version >= firstWithVisible;
        return file.ReadCString(text) && (!hasVisible || file.mmioReadBool(visible));
    }
    [[nodiscard]] bool IsEmpty() const { return version < kFirstVersion; }
};

} // namespace ZelmResult
