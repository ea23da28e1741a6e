#pragma once

#include "zelmresult/quantities/grandeur.h"

#include <memory>
#include <vector>

namespace ZelmResult {

class CMmioFile;

// The quantities that a reader has read from its document, with their units ready for decibels. The reader and
// everything that it gave share them, so they live as long as the last of these.
class StoredQuantities {
public:
    // Takes those that the file has listed since the last call.
    void TakeFrom(const CMmioFile& file);

private:
    std::vector<std::unique_ptr<CGrandeurFichier>> m_quantities;
};

} // namespace ZelmResult
