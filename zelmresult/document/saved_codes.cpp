#include "zelmresult/document/saved_codes.h"

#include "zelmresult/document/result_header.h"
#include "zelmresult/document/systeme.h"
#include "zelmresult/quantities/grandeur.h"

namespace ZelmResult {

void SavedCodes::Note(CGrandeur& quantity) { m_quantities.emplace_back(&quantity, quantity.GetChunkId()); }

void SavedCodes::Note(CSysteme& system) { m_systems.emplace_back(&system, system.systemNumber()); }

void SavedCodes::Note(CResultHeader& header)
{
    m_headers.push_back({&header, header.GetChunkId(), header.analyzerCaption()});
}

void SavedCodes::Restore() const
{
    for (const auto& [quantity, code] : m_quantities) quantity->SetChunkId(code);
    for (const auto& [system, number] : m_systems) system->setSystemNumber(number);
    for (const OfHeader& entry : m_headers) {
        entry.header->SetChunkId(entry.code);
        entry.header->setAnalyzerCaption(entry.analyzerCaption);
    }
}

} // namespace ZelmResult
