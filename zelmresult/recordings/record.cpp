#include "zelmresult/recordings/record.h"

#include "zelmresult/quantities/grandeur.h"
#include "zelmresult/storage/chunk_kinds.h"
#include "zelmresult/storage/mmio_file.h"

#include <algorithm>
#include <memory>
#include <set>

namespace ZelmResult {

namespace {

using Tracks = std::map<std::int32_t, CZMTrackDesc*>;

// Writes a value of each track, 0 for null, into consecutive places.
template <class T>
std::int32_t Gather(const Tracks& tracks, T* out, std::int16_t* index, T (CZMTrackDesc::*value)() const)
{
    for (const auto& [key, track] : tracks) {
        if (*index == INT16_MAX) break; // as many as the index can name
        out[(*index)++] = track != nullptr ? (track->*value)() : T{};
    }
    return 0;
}

} // namespace

CRecord::~CRecord()
{
    for (const CRecordInfo* info : m_infos) delete info;
    std::set<const CZMTrackDesc*> tracks; // a track may have two keys
    for (const auto& [key, track] : m_tracks) tracks.insert(track);
    for (const CZMTrackDesc* track : tracks) delete track;
}

void CRecord::AddInvolvedGrandeur(std::map<CGrandeur*, int>& counts) const
{
    for (const auto& [key, track] : m_tracks)
        if (track != nullptr) track->AddInvolvedGrandeur(counts);
}

void CRecord::ReplaceGrandeur(CGrandeurFichier* old, CGrandeur* replacement)
{
    for (const auto& [key, track] : m_tracks)
        if (track != nullptr) track->ReplaceGrandeur(old, replacement);
}

bool CRecord::AddRecordInfo(CRecordInfo* info)
{
    (void)m_infos.Add(info);
    return true;
}

CRecordInfo* CRecord::getFirstRecordInfo() const { return m_infos.empty() ? nullptr : m_infos[0]; }

bool CRecord::updateFileBlocEndNbr(std::int16_t disk, std::int16_t file, std::uint32_t end)
{
    if (disk >= 0 && static_cast<std::size_t>(disk) < m_infos.size())
        return m_infos[static_cast<std::size_t>(disk)]->updateFileBlocEndNbr(file, end);
    return true;
}

CZMTrackDesc* CRecord::getTrackDesc(std::int16_t index) const
{
    const auto found = m_tracks.find(index);
    return found == m_tracks.end() ? nullptr : found->second;
}

strTrackDescData* CRecord::getTrackData(std::int16_t index) const { return getTrackDesc(index); }

bool CRecord::AddTrackDesc(CZMTrackDesc* track, std::int32_t index)
{
    constexpr std::int32_t last = INT32_MAX;
    const std::int32_t next = m_tracks.empty() ? 0 : std::min(m_tracks.rbegin()->first, last - 1) + 1;
    m_tracks[index >= 0 ? index : next] = track;
    return true;
}

std::int32_t CRecord::getTrackFreq(float* out, std::int16_t* index) const
{
    return Gather(m_tracks, out, index, &CZMTrackDesc::getFreq);
}

std::int32_t CRecord::getTrackBlockSize(std::int32_t* out, std::int16_t* index) const
{
    return Gather(m_tracks, out, index, &CZMTrackDesc::getBlockSize);
}

std::int32_t CRecord::getTrackBlockFirst(std::int32_t* out, std::int16_t* index) const
{
    return Gather(m_tracks, out, index, &CZMTrackDesc::getBlockFirst);
}

std::int32_t CRecord::getTrackFirstOffset(std::int32_t* out, std::int16_t* index) const
{
    return Gather(m_tracks, out, index, &CZMTrackDesc::getFirstOffset);
}

std::int32_t CRecord::getYUniData(float* sensitivity, float* convLogToVolt, float* offset, float* coeffA, float* coeffB,
                                  std::int16_t* index) const
{
    for (const auto& [key, track] : m_tracks) {
        if (*index == INT16_MAX) break;
        if (track != nullptr) (void)track->getYUniData(sensitivity, convLogToVolt, offset, coeffA, coeffB, index);
        ++*index;
    }
    return 0;
}

std::int32_t CRecord::getTrackFormat(std::int32_t* format, std::int32_t* type, std::int32_t* domain,
                                     std::int32_t* factor, std::int16_t* index) const
{
    for (const auto& [key, track] : m_tracks) {
        if (*index == INT16_MAX) break;
        if (track != nullptr) (void)track->getTrackFormat(format, type, domain, factor, index);
        ++*index;
    }
    return 0;
}

bool CRecord::updateLOCATrackDesc(const std::int32_t* first, const std::int32_t* last, const std::int32_t* blockSize)
{
    std::size_t n = 0;
    for (const auto& [key, track] : m_tracks) {
        if (track == nullptr) return false;
        (void)track->updateLOCA(first[n], last[n], blockSize[n], 0);
        ++n;
    }
    return true;
}

bool CRecord::updateTrackOverload(const float* min, const float* max, const bool* overload)
{
    std::size_t n = 0;
    for (const auto& [key, track] : m_tracks) {
        const std::size_t entry = n++;
        if (entry == 0) continue; // the first track is left out, and callers depend on that
        if (track == nullptr) return false;
        (void)track->updateTrackOverload(min[entry], max[entry], overload[entry]);
    }
    return true;
}

bool CRecord::Load(CMmioFile* file, bool first, bool normalisation)
{
    const std::int32_t start = file->Position();
    const auto backToStart = [&] { return file->mmioSeek(start, OMMIO_SEEK_SET); };
    return file->PassVersionIfThere() && backToStart() && LoadHeader(*file) && backToStart() && LoadInfos(*file) &&
           backToStart() && LoadTracks(*file, first, normalisation);
}

bool CRecord::LoadHeader(CMmioFile& file)
{
    OMMCKINFO chunk;
    return !file.Enter(ChunkKind::RecordHeader, chunk) || (m_header.Load(&file) && file.ExitChunk(chunk));
}

bool CRecord::LoadInfos(CMmioFile& file)
{
    OMMCKINFO list;
    for (std::int16_t n = 0; file.EnterChunkRecInfo(list, n); ++n) {
        auto info = std::make_unique<CRecordInfo>();
        if (!info->Load(&file)) return false;
        m_infos.AddNew(info.release());
        if (!file.ExitChunk(list)) return false;
    }
    return true;
}

bool CRecord::LoadTracks(CMmioFile& file, bool first, bool normalisation)
{
    OMMCKINFO list;
    for (std::int16_t n = 0; file.EnterChunkTrackDesc(list, n); ++n) {
        if (!file.RoomFor(1, sizeof(CZMTrackDesc))) return false;
        auto track = std::make_unique<CZMTrackDesc>();
        if (!track->Load(&file, first, normalisation)) return false;
        (void)AddTrackDesc(track.release(), -1);
        if (!file.ExitChunk(list)) return false;
    }
    return true;
}

bool CRecord::Save(CMmioFile* file) const
{
    (void)m_header.Save(file); // the save asks the file whether it failed
    std::int16_t n = 0;
    for (const CRecordInfo* info : m_infos)
        if (!info->Save(file, n++)) return false;
    n = 0;
    for (const auto& [key, track] : m_tracks)
        if (track == nullptr || !track->Save(file, n++)) return false;
    return true;
}

} // namespace ZelmResult
