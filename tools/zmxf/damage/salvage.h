#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace zmxf {

// What came over from a damaged document.
struct Salvaged {
    struct Count {
        std::string what; // "results"
        std::size_t kept = 0;
        std::size_t found = 0;
    };

    std::vector<Count> counts;
    std::vector<std::string> lost; // one line each
};

// Writes a document that can be loaded, of all that is whole in another one; good must be another file, which is
// overwritten. Bytes of what is kept stay as they are, except for the numbers of chunks that must be without gaps.
// Throws Failure, also for a file that is no result document and one of which nothing can be kept.
Salvaged Salvage(const std::string& bad, const std::string& good);

} // namespace zmxf
