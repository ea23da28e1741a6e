#pragma once

#include <cstdint>
#include <string>
#include <vector>

// Documents that a page carries.

namespace zmxf {

struct CarriedDocument {
    std::string name; // of its file
    std::vector<char> bytes;
    std::string note; // what was left out, for the user; empty for a whole document
};

// What browsers take with ease.
inline constexpr std::int64_t kMostCarried = 64'000'000;

// Documents of together no more than that many bytes, damaged ones too. Beyond, the results with the most data are left
// out, then documents that are too large even so. Throws Failure for what is no document, and when nothing fits.
std::vector<CarriedDocument> CarryDocuments(const std::vector<std::string>& paths, std::int64_t most = kMostCarried);

} // namespace zmxf
