// The branches of a system besides its results: recording, references, settings and track identities.

#include "zelmresult/document/result_header.h"
#include "zelmresult/document/systeme.h"
#include "zelmresult/results/referenced_axis.h"
#include "zelmresult/results/result.h"
#include "zelmresult/storage/chunk_codes.h"
#include "zelmresult/storage/mmio_file.h"
#include "zelmresult/waterfalls/list_vector_ref.h"

namespace ZelmResult {

// A system holds no recording, settings or tracks yet.
std::uint32_t CSysteme::BranchTypeBits() const { return 0; }

bool CSysteme::SaveRecording(CMmioFile& file)
{
    OMMCKINFO recording;
    return file.CreateChunkEnregistrement(recording) && file.ExitChunk(recording);
}

bool CSysteme::LoadRecording(CMmioFile& file, bool /*ownQuantities*/, bool /*normalisation*/)
{
    OMMCKINFO recording;
    return file.EnterChunkListSansParent(recording, FourCC("RCRD")) && file.ExitChunk(recording);
}

void CSysteme::ApplyCaptionRule(CResultHeader& /*header*/) const {}

void CSysteme::SaveReferences(CMmioFile& file)
{
    for (std::size_t i = 0; i < m_referenceLists.size(); ++i)
        if (m_referenceLists[i] != nullptr) (void)m_referenceLists[i]->Write(&file, static_cast<std::int32_t>(i));
}

void CSysteme::LoadReferences(CMmioFile& /*file*/) {}

bool CSysteme::SaveSettings(CMmioFile& /*file*/, bool /*isLXFFile*/) { return true; }

bool CSysteme::LoadSettings(CMmioFile& file, ZMXFFileLoadScope /*scope*/)
{
    OMMCKINFO system = file.CurrentMmckinfo();
    OMMCKINFO settings;
    return file.EnterChunkConfig(settings, system) && file.ExitChunk(settings);
}

bool CSysteme::SaveTracks(CMmioFile& file)
{
    OMMCKINFO tracks;
    return file.CreateChunkITRACK(tracks) && file.ExitChunk(tracks);
}

// The version of an unread settings tree is unknown, and some versions hold no tracks: a missing list is no failure.
bool CSysteme::LoadTracks(CMmioFile& /*file*/, ZMXFFileLoadScope /*scope*/) { return true; }

// The list of references that a waterfall, or a vector along one, shares with others.
CListVectorRef* CSysteme::SharedReferenceList(CResult& result)
{
    const CReferencedAxis* axis = result.GetReferencedAxis();
    return axis != nullptr ? axis->GetReferences() : nullptr;
}

// The reference that a vector along a waterfall shows.
CVectorRef* CSysteme::ReferenceOfItsOwn(CResult& /*result*/) { return nullptr; }

void CSysteme::AffecteReference()
{
    for (const auto& [header, result] : m_map) {
        CReferencedAxis* axis = result != nullptr ? result->GetReferencedAxis() : nullptr;
        // The references of every other axis were stored with it.
        if (axis == nullptr || !axis->IsWaterfall() || header->GetIndexListe() < 0) continue;
        CListVectorRef* list = getListeReference(static_cast<std::size_t>(header->GetIndexListe()));
        if (list == nullptr) continue;
        axis->SetReferenceList(list);
        axis->SetReference(header->chosenReference(), nullptr, nullptr);
    }
}

} // namespace ZelmResult
