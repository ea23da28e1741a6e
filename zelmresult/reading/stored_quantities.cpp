#include "zelmresult/reading/stored_quantities.h"

#include "zelmresult/storage/mmio_file.h"

namespace ZelmResult {

void StoredQuantities::TakeFrom(const CMmioFile& file)
{
    const std::vector<CGrandeurFichier*>& listed = file.ListeGrandeur();
    for (std::size_t i = m_quantities.size(); i < listed.size(); ++i) {
        m_quantities.emplace_back(listed[i]);
        // A unit is stored without the inverse of its reference, which decibels need.
        if (CUnite* unit = listed[i]->GetUniteCourante(); unit != nullptr) unit->SetRef0dB(unit->GetRef0dB());
    }
}

} // namespace ZelmResult
