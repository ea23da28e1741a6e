#pragma once

#include "zelmresult/quantities/grandeur.h"

#include <memory>
#include <vector>

namespace ZelmResult {

class CMmioFile;

// The quantities that a reader met in its document, with their units ready for decibels. The reader and all that came
// from it share them, so they live as long as the last of these.
class StoredQuantities {
public:
    // Takes those that the file has listed since the last time.
    void TakeFrom(const CMmioFile& file);

private:
    std::vector<std::unique_ptr<CGrandeurFichier>> m_quantities;
};

} // namespace ZelmResult
