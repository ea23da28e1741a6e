#pragma once

#include "zelmresult/storage/mmio.h"

#include <span>
#include <vector>

namespace ZelmResult {

// Backends over bytes in memory, whatever name is opened. Both keep a pointer to the bytes, which the caller keeps
// alive until the file is closed.

// Reads the bytes; neither creates nor writes.
BackendFactory ReadMemory(std::span<const char> bytes);
// Reads and writes the bytes, which grow; a create empties them. A write for which there is no memory fails.
BackendFactory WriteMemory(std::vector<char>& bytes);

} // namespace ZelmResult
