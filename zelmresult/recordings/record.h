#pragma once

#include "zelmresult/recordings/record_header.h"
#include "zelmresult/recordings/record_info.h"
#include "zelmresult/recordings/track_desc.h"
#include "zelmresult/support/pointer_list.h"

#include <cstdint>
#include <map>
#include <vector>

namespace ZelmResult {

// The description of a recording: what holds for all of it, where its samples are, and its tracks. The samples
// themselves are not in the document.
// Stored as  a list "RCRD": the header, a list per disk, a list per track, when the header counts a record at least.
//            Tracks come back with the keys 0, 1, 2 and so on, in the order of their former keys.
// Limits     17 disks and 1000 tracks: what exceeds them, and all tracks after a null one, aren't stored, and the save
//            of the document doesn't fail for it.
// Owns       disks and tracks.
// Copies     are flat: only one of them may be destroyed.
class CRecord {
public:
    explicit CRecord(bool convertedSignal) : m_header(convertedSignal) {}
    CRecord(const CRecord&) = default;
    CRecord& operator=(const CRecord&) = default;
    virtual ~CRecord();
    virtual void AddInvolvedGrandeur(std::map<CGrandeur*, int>& counts) const;
    virtual void ReplaceGrandeur(CGrandeurFichier* old, CGrandeur* replacement);

    // ---- Header ----
    [[nodiscard]] const CRecordHeader& getRecordHeader() const { return m_header; }
    CRecordHeader& getRecordHeader() { return m_header; }
    void setRecordHeader(const CRecordHeader& header) { m_header = header; }
    [[nodiscard]] const strEnregHeader& getRecordHeaderstr() const { return m_header.getRecordHeaderStr(); }
    void setRecordHeaderstr(const strEnregHeader* header) { (void)m_header.setRecordHeaderData(header); }
    [[nodiscard]] std::int32_t getTimedivider() const { return m_header.getTimedivider(); }
    [[nodiscard]] double getSampleFrequency() const { return m_header.getSampleFrequency(); }
    [[nodiscard]] std::int32_t getBlockSize() const { return m_header.getBlockSize(); }
    [[nodiscard]] std::int16_t getNbrChannel() const { return m_header.getNbrChannel(); }
    [[nodiscard]] std::int16_t getNbrChannelComp() const { return m_header.getNbrChannelComp(); }
    [[nodiscard]] std::int32_t getNbrRecord() const { return m_header.getNbrRecord(); }
    void setNbrRecord(std::int32_t count) { m_header.setNbrRecord(count); }
    [[nodiscard]] std::int32_t getNbrMarker() const { return m_header.getNbrMarker(); }
    void setNbrMarker(std::int32_t count) { m_header.setNbrMarker(count); }
    [[nodiscard]] std::uint64_t getReferenceTime() const { return m_header.getReferenceTime(); }
    void setReferenceTime(const OFILETIME& time) { m_header.setReferenceTime(time); }
    bool updateRecordLength(std::int64_t length) { return m_header.updateRecordLength(length); }

    // ---- Disks ----
    bool AddRecordInfo(CRecordInfo* info); // takes; null, and one that is there, add nothing. Always true
    [[nodiscard]] CRecordInfo* getFirstRecordInfo() const; // lends; null when there is none
    [[nodiscard]] const std::vector<CRecordInfo*>& recordInfos() const { return m_infos.All(); } // lends
    // Sets the last block of a file of a disk; does nothing when there is no such file or disk. Always true.
    bool updateFileBlocEndNbr(std::int16_t disk, std::int16_t file, std::uint32_t end);

    // ---- Tracks, in the order of their keys ----
    [[nodiscard]] std::int16_t getTrackCount() const { return static_cast<std::int16_t>(m_tracks.size()); }
    [[nodiscard]] const std::map<std::int32_t, CZMTrackDesc*>& tracks() const { return m_tracks; } // lends
    // Both lend the track of that key, null without one; they return the same object.
    [[nodiscard]] CZMTrackDesc* getTrackDesc(std::int16_t index) const;
    [[nodiscard]] strTrackDescData* getTrackData(std::int16_t index) const;
    // takes. Adds it under that key; a track that had the key isn't deleted. A negative key means the next after the
    // last, or the last itself when that is the largest number. Always true.
    bool AddTrackDesc(CZMTrackDesc* track, std::int32_t index);

    // Each writes one value per track into arrays of the caller, from *index on, and advances it, up to 32767: so
    // several systems can fill one array. Always 0.
    std::int32_t getTrackFreq(float* out, std::int16_t* index) const;
    std::int32_t getTrackBlockSize(std::int32_t* out, std::int16_t* index) const;
    std::int32_t getTrackBlockFirst(std::int32_t* out, std::int16_t* index) const;
    std::int32_t getTrackFirstOffset(std::int32_t* out, std::int16_t* index) const;
    std::int32_t getYUniData(float* sensitivity, float* convLogToVolt, float* offset, float* coeffA, float* coeffB,
                             std::int16_t* index) const;
    std::int32_t getTrackFormat(std::int32_t* format, std::int32_t* type, std::int32_t* domain, std::int32_t* factor,
                                std::int16_t* index) const;
    // Set one value per track, and the flag of the chunk. A null track ends it with false. The disk index isn't
    // changed.
    bool updateLOCATrackDesc(const std::int32_t* first, const std::int32_t* last, const std::int32_t* blockSize);
    // Skips the first track and entry 0.
    bool updateTrackOverload(const float* min, const float* max, const bool* overload);

    // ---- Storage ----
    // Called with the file inside the list. The flags are those of CZMTrackDesc::Load. A missing version or header is
    // no failure; false at the first chunk that can't be read. What was read before it is kept.
    [[nodiscard]] bool Load(CMmioFile* file, bool first, bool normalisation);
    [[nodiscard]] bool Save(CMmioFile* file) const;
    // Each reason why a file wouldn't hold all of this recording, or no load would read it, as a sentence; empty when
    // there is none. What a track's flags leave out is the host's choice and no reason, except for its links. isStored:
    // whether the document stores recordings, which it does when any of them counts a record.
    [[nodiscard]] std::vector<wstring> Unstorable(bool isStored) const;

private:
    [[nodiscard]] bool LoadHeader(CMmioFile& file);
    [[nodiscard]] bool LoadInfos(CMmioFile& file);
    [[nodiscard]] bool LoadTracks(CMmioFile& file, bool first, bool normalisation);

    CRecordHeader m_header;
    PointerList<CRecordInfo> m_infos;
    std::map<std::int32_t, CZMTrackDesc*> m_tracks;
};

} // namespace ZelmResult
