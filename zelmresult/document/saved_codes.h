#pragma once

#include "zelmresult/document/file_header.h"
#include "zelmresult/support/wstring.h"

#include <cstdint>
#include <utility>
#include <vector>

namespace ZelmResult {

class CGrandeur;
class CResultHeader;
class CSysteme;

// Restores what a save renews in memory, for a save that shouldn't count.
class SavedCodes {
public:
    // keeps pointers
    void Note(CGrandeur& quantity);
    void Note(CSysteme& system);
    void Note(CResultHeader& header);
    void Restore() const;

private:
    struct OfHeader {
        CResultHeader* header;
        std::uint32_t code;
        wstring analyzerCaption;
    };

    std::vector<std::pair<CGrandeur*, std::uint32_t>> m_quantities;
    std::vector<std::pair<CSysteme*, std::uint16_t>> m_systems;
    std::vector<OfHeader> m_headers;
};

} // namespace ZelmResult
