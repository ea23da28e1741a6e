#pragma once

#include "zelmresult/storage/chunk_kinds.h"
#include "zelmresult/storage/mmio_file.h"

#include <cstdint>

namespace ZelmResult {

// The beginning of the list of a module or a submodule: its version, a text, and from some version on whether it is
// visible.
struct NodeHead {
    std::uint16_t version = 0;
    wstring text;
    bool visible = true;

    // The first versions that hold whether a node is visible. A module with transfer functions never does.
    static constexpr std::uint16_t kVisibleInModules = 513;
    static constexpr std::uint16_t kVisibleInSubmodules = 257;
    static constexpr std::uint16_t kVisibleNever = 0;
    [[nodiscard]] static bool HoldsVisible(std::uint16_t version, std::uint16_t firstWithVisible)
    {
        return firstWithVisible != kVisibleNever && version >= firstWithVisible;
    }

    // From the file's current chunk. Of a list that holds nothing but its version, that is a success.
    [[nodiscard]] bool Read(CMmioFile& file, std::uint16_t firstWithVisible)
    {
        OMMCKINFO parent = file.CurrentMmckinfo();
        if (!file.ReadChunkVersion(parent, version)) return false;
        if (IsEmpty()) return true;
        return file.ReadCString(text) && (!HoldsVisible(version, firstWithVisible) || file.mmioReadBool(visible));
    }
    [[nodiscard]] bool IsEmpty() const { return version < kFirstListVersion; }
};

} // namespace ZelmResult
