// Finds what a file can't hold of a recording, before anything is written.

#include "zelmresult/quantities/translation.h"
#include "zelmresult/recordings/lidn.h"
#include "zelmresult/recordings/record.h"
#include "zelmresult/storage/chunk_kinds.h"
#include "zelmresult/storage/mmio_file.h"
#include "zelmresult/support/text.h"

#include <algorithm>

namespace ZelmResult {

namespace {

using Reasons = std::vector<wstring>;

wstring Reason(const char* text, std::ptrdiff_t first, std::ptrdiff_t second = 0)
{
    return FillPlaceholders(TranslateUserString("ErrorMessage", text), Concat(first), Concat(second));
}

void CheckDisks(const std::vector<CRecordInfo*>& disks, Reasons& out)
{
    const std::ptrdiff_t mostDisks = MostOf(ChunkKind::Disk);
    const std::ptrdiff_t mostFiles = MostOf(ChunkKind::DiskFile);
    if (std::ssize(disks) > mostDisks)
        out.push_back(
            Reason("The recording has %1 disks: only %2 are saved, and no track", std::ssize(disks), mostDisks));
    for (std::ptrdiff_t n = 0; n < std::min(std::ssize(disks), mostDisks); ++n)
        if (std::ssize(disks[static_cast<std::size_t>(n)]->fileBlockInfos()) > mostFiles)
            out.push_back(
                Reason("Disk %1 of the recording has more than %2 files: the rest is not saved", n, mostFiles));
}

void CheckTrack(std::ptrdiff_t key, const CZMTrackDesc& track, Reasons& out)
{
    if (!track.HasChunk(TrackChunk::Info) || !track.HasChunk(TrackChunk::Loca))
        out.push_back(Reason("Track %1 of the recording has no INFO or no LOCA: no load reads it", key));
    if (!track.HasChunk(TrackChunk::Link) && !track.linkLists().empty())
        out.push_back(Reason("Track %1 of the recording has links but not the flag LINK: they are not saved", key));
    if (!track.HasChunk(TrackChunk::Link)) return;
    for (const std::vector<idn::Idn>* list : track.linkLists())
        if (std::ssize(*list) > CLIDN::kMostIdentifiers)
            out.push_back(Reason("A list of links of track %1 is longer than %2: the rest is not saved", key,
                                 CLIDN::kMostIdentifiers));
}

} // namespace

std::vector<wstring> CRecord::Unstorable(bool isStored) const
{
    const bool isEmpty = m_infos.empty() && m_tracks.empty() && m_header.getRecordHeaderStr() == strEnregHeader{};
    if (!isStored)
        return isEmpty ? Reasons()
                       : Reasons{Reason("The recording counts %1 records: it is not saved", getNbrRecord())};
    Reasons reasons;
    CheckDisks(m_infos.All(), reasons);
    const std::ptrdiff_t mostTracks = MostOf(ChunkKind::Track);
    if (std::ssize(m_tracks) > mostTracks)
        reasons.push_back(
            Reason("The recording has %1 tracks: only the first %2 are saved", std::ssize(m_tracks), mostTracks));
    std::ptrdiff_t n = 0;
    bool isRenumbered = false;
    for (const auto& [key, track] : m_tracks) {
        if (n++ == mostTracks) break;
        if (track == nullptr) {
            reasons.push_back(
                Reason("Track %1 of the recording is null: it and the tracks after it are not saved", key));
            break;
        }
        if (key != n - 1 && !isRenumbered) {
            reasons.push_back(Reason("Track %1 of the recording comes back as track %2", key, n - 1));
            isRenumbered = true; // and all after it
        }
        CheckTrack(key, *track, reasons);
    }
    return reasons;
}

} // namespace ZelmResult
