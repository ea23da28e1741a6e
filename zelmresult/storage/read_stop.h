#pragma once

#include <cstdint>
#include <string>

namespace ZelmResult {

// Where a read came to its end before it had what it wanted.
struct ReadStop {
    std::uint32_t chunk = 0;   // the code of the chunk that was entered last, 0 before any
    std::int32_t offset = -1;  // where the file stood
    std::uint32_t missing = 0; // the code that was searched from there in vain, 0 when none was
    std::string field;         // the name of the field that could not be read, empty when it was none
};

} // namespace ZelmResult
