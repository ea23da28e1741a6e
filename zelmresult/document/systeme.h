#pragma once

#include "zelmresult/document/load_scope.h"
#include "zelmresult/document/reference_lists.h"
#include "zelmresult/document/result_map.h"
#include "zelmresult/storage/mmio.h"
#include "zelmresult/support/idn.h"
#include "zelmresult/support/pointer_list.h"
#include "zelmresult/support/time.h"
#include "zelmresult/support/wstring.h"

#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <vector>

namespace ZelmResult {

class CConfigData;
class CGrandeur;
class CGrandeurFichier;
class CITrack;
class CMmioFile;
class CRecord;
class CRecordHeader;
class CRecordInfo;
class CReglageData;
class CResult;
class CResultHeader;
class CVectorRef;
class CWaterfallRef;
class CZMTrackDesc;
struct strEnregHeader;
struct strTrackDescData;

// One analysis system of a document: its results with their headers, the reference lists that they share, the recording
// that they were made from, the settings of the analyzer, and the transducers of its channels.
//
// Stored   as a list chunk of its own, with the branches that the type word of the document names. A branch that one
//          system has is written for all of them, empty where there is nothing to write.
// Owns     always its headers, recording, settings and transducers; its results once NeedToRemoveEverything was set.
//          RemoveResultat, ReplaceResultat and RemoveAllResultats delete results in any case. The reference that a
//          result shows is deleted with it, unless a list holds it. Reference lists die with their last user and aren't
//          deleted here, except for those that a load made and no result uses.
// Copies   are flat: only one of them may be destroyed.
class CSysteme {
public:
    CSysteme() = default;
    CSysteme(const CSysteme&) = default;
    CSysteme& operator=(const CSysteme&) = default;
    virtual ~CSysteme();

    // The index in the document, renewed by every save. Number 16 is stored under the code of number 1.
    [[nodiscard]] std::uint16_t systemNumber() const { return m_number; }
    void setSystemNumber(std::uint16_t number) { m_number = number; }
    // Whether the destructor deletes the results too.
    void NeedToRemoveEverything(bool remove) { m_needToRemoveEverything = remove; }

    // ---- Results ----
    // takes the header; takes the result when everything is to be removed. A null header adds nothing, one that is
    // there already gets the new result. For a waterfall or a vector along one, registerReference adds the reference
    // list that it uses to the system's lists and notes its index in the header.
    void AjouteResultat(CResultHeader* header, CResult* result, bool registerReference);
    // Deletes the first pair whose header corresponds, and the results that were calculated from it. False when none
    // corresponds. The argument may be the stored header itself.
    bool RemoveResultat(const CResultHeader* header);
    // Replaces the first pair whose header corresponds to matching by a new pair, which it takes; the old pair and what
    // was calculated from it are deleted. False when none corresponds: the new pair is then the caller's.
    bool ReplaceResultat(CResultHeader* newHeader, const CResultHeader* matching, CResult* newResult);
    // Deletes all results, headers and the references of waterfalls that no list of this system holds, and empties the
    // list of reference lists. Always true. headers() and results() are invalid until they are built again.
    bool RemoveAllResultats();
    // Change only the plain lists, which a save follows, at the place of the header.
    void RemoveResultatsFromArray(const CResultHeader* header, const CResult* result);
    void ReplaceResultatsFromArray(const CResultHeader* header, const CResult* result, CResultHeader* newHeader,
                                   CResult* newResult);
    [[nodiscard]] const ResultMap& getMapResult() const { return m_map; }
    [[nodiscard]] std::int32_t GetResultsNumber() const { return static_cast<std::int32_t>(m_map.size()); }
    // Appends the headers, which are lent, in the order of addition.
    void GetResultHeaderListe(std::vector<CResultHeader*>& out) const;
    // Appends the headers of this system's results in a file, without their data; they are given to the caller. Those
    // of operated style 2 are left out. False when the file holds no results list for this system, or at a header that
    // can't be read; those before it are in out.
    bool GetResultHeaderListe(CMmioFile* file, std::vector<CResultHeader*>& out) const;
    // Whether a result is a recording preview.
    [[nodiscard]] bool HasRecordPreview() const;

    // Builds the lists that applications show, sorted by module of the response, process type, submodules of response
    // and reference, time selection and reference number; equal ones in the order of addition. Always true. The lists
    // are lent views, and don't change until the next call.
    bool CreeListesResultatsOrdonnees();
    [[nodiscard]] const std::vector<CResultHeader*>& headers() const { return m_orderedHeaders; }
    [[nodiscard]] const std::vector<CResult*>& results() const { return m_orderedResults; }

    // ---- Recording ----
    // takes, null for none. A former one isn't deleted: the caller owns it again.
    void setRecord(CRecord* record) { m_record = record; }
    [[nodiscard]] CRecord* getRecord() const { return m_record; } // lends, may be null
    // One less than the tracks of the recording; 0 without one.
    [[nodiscard]] std::int32_t getNbrChannel() const;
    [[nodiscard]] double GetRecordDuration() const; // seconds; 0 without a recording
    [[nodiscard]] bool IsConvertedSignal() const;   // false without a recording
    // As in CRecord. Without a recording they return 0, false or null, change nothing, and take nothing.
    [[nodiscard]] CRecordHeader* getRecordHeader() const;           // lends
    bool setRecordHeader(const CRecordHeader& header);              // whether there is a recording, here and below
    [[nodiscard]] const strEnregHeader* getRecordHeaderstr() const; // lends
    bool setRecordHeaderstr(const strEnregHeader* header);
    [[nodiscard]] std::int32_t getTimedivider() const;
    [[nodiscard]] double getSampleFrequency() const;
    [[nodiscard]] std::int32_t getBlockSize() const;
    [[nodiscard]] std::int16_t getNbrChannelComp() const;
    [[nodiscard]] std::int32_t getNbrRecord() const;
    bool setNbrRecord(std::int32_t count);
    [[nodiscard]] std::int32_t getNbrMarker() const;
    bool setNbrMarker(std::int32_t count);
    [[nodiscard]] std::uint64_t getReferenceTime() const;
    bool setReferenceTime(const OFILETIME& time);
    bool updateRecordLength(std::int64_t length);
    // Both lend, empty without a recording.
    [[nodiscard]] const std::vector<CRecordInfo*>& recordInfos() const;
    [[nodiscard]] const std::map<std::int32_t, CZMTrackDesc*>& tracks() const; // by their numbers
    bool AddRecordInfo(CRecordInfo* info);                                     // takes when true
    [[nodiscard]] CRecordInfo* getFirstRecordInfo() const;                     // lends
    bool updateFileBlocEndNbr(std::int16_t disk, std::int16_t file, std::uint32_t end);
    [[nodiscard]] std::int16_t getTrackCount() const;
    [[nodiscard]] CZMTrackDesc* getTrackDesc(std::int16_t index) const;     // lends
    [[nodiscard]] strTrackDescData* getTrackData(std::int16_t index) const; // lends
    bool AddTrackDesc(CZMTrackDesc* track, std::int32_t index);             // takes when true
    std::int32_t getTrackFreq(float* out, std::int16_t* index) const;
    std::int32_t getTrackBlockSize(std::int32_t* out, std::int16_t* index) const;
    std::int32_t getTrackBlockFirst(std::int32_t* out, std::int16_t* index) const;
    std::int32_t getTrackFirstOffset(std::int32_t* out, std::int16_t* index) const;
    std::int32_t getYUniData(float* sensitivity, float* convLogToVolt, float* offset, float* coeffA, float* coeffB,
                             std::int16_t* index) const;
    std::int32_t getTrackFormat(std::int32_t* format, std::int32_t* type, std::int32_t* domain, std::int32_t* factor,
                                std::int16_t* index) const;
    bool updateLOCATrackDesc(const std::int32_t* first, const std::int32_t* last, const std::int32_t* blockSize);
    bool updateTrackOverload(const float* min, const float* max, const bool* overload);

    // ---- Transducers ----
    void AddITrack(CITrack* track); // takes; null, and one that is there, add nothing
    [[nodiscard]] std::int32_t getNbrTransducer() const { return static_cast<std::int32_t>(m_itracks.size()); }
    [[nodiscard]] const std::vector<CITrack*>& iTracks() const { return m_itracks.All(); } // lends

    // ---- Settings ----
    // takes, null for none. A former tree isn't deleted: the caller owns it again.
    void SetConfig(CConfigData* config) { m_config = config; }
    [[nodiscard]] CConfigData* getPConfig() const { return m_config; } // lends, may be null
    // takes; makes the tree when there is none. As CConfigData::AddReglage.
    void AddReglage(CReglageData* setting);
    [[nodiscard]] CReglageData* GetReglage(const idn::Idn& idn) const; // lends; null without it
    // As CConfigData::GetSubmoduleSet; empty without a tree.
    [[nodiscard]] std::set<idn::Idn> GetSubmoduleSet(const idn::Idn& idn, idn::ESubmoduleCollection kind) const;
    // The frequencies of four groups of inputs in the settings: out[0] for "fs1", out[1] for "fs2", out[2] for "slow",
    // out[3] for "fast"; 0 for a group without inputs.
    void GetFrequencyUsed(float* out) const;
    // One setting of a system in a file, without loading the others; null without it or when it can't be read. The
    // system's list is the file's current chunk, and the search for its settings begins at the position.
    static std::unique_ptr<CReglageData> GetReglage(CMmioFile* file, const idn::Idn& idn);

    // ---- References ----
    // Lists are kept as pointers; one that dies becomes null, and so does one that a file no longer holds. An empty
    // set, or one whose first list the host gave as null, is not stored.
    [[nodiscard]] const std::vector<CListVectorRef*>& GetArPtrListeReferences() const { return m_referenceLists.All(); }
    void SetArPtrListeReferences(const std::vector<CListVectorRef*>& lists);  // appends
    [[nodiscard]] CListVectorRef* getListeReference(std::size_t index) const; // lends; null past the end
    [[nodiscard]] bool IsInListReferences(const CVectorRef* reference) const;
    // Ties waterfalls to their reference lists after a load.
    void AffecteReference();

    // Uses another quantity in every result and in the recording. Neither is freed.
    void ReplaceGrandeur(CGrandeurFichier* old, CGrandeur* replacement);

    // ---- Storage ----
    // What this system adds to the type word of its document.
    [[nodiscard]] std::uint32_t TypeBits() const;
    // type is the type word of the whole document. resultNumber counts through all systems of a file and is advanced.
    // Each header gets the code of its data chunk. False at the first failure that isn't of a single header. Messages
    // of the file say what is left out, or would not be restored by a load.
    [[nodiscard]] bool Save(CMmioFile* file, bool isLXFFile, std::uint32_t type, std::int32_t& resultNumber);
    // Called with the file after the list type of the system, whose list is its CurrentMmckinfo. Adds to what is there,
    // but replaces recording and settings. Results of an unknown kind are skipped, and a list of references that can't
    // be read leaves its place empty: a later save says so. False keeps what was loaded before the failure.
    [[nodiscard]] bool Load(CMmioFile* file, std::uint32_t type, bool ownQuantities, bool normalisation,
                            ZMXFFileLoadScope scope);

private:
    friend class CZMXFFile; // for the codes of the headers that a save renews

    void DeleteOperatedResults(const CResultHeader& of, const CResultHeader* spared);
    void AddLoaded(std::unique_ptr<CResultHeader> header, CResult& result);
    void DeleteTaken(const ResultMap::Entry& entry);
    void DeleteUnlessShared(CResult* result) const;
    void DeleteUnusedLists();
    [[nodiscard]] const ResultMap::Entry* FirstCorresponding(const CResultHeader& header) const;
    void RegisterReferenceList(CResultHeader& header, CResult& result);

    bool SaveResults(CMmioFile& file, std::int32_t& resultNumber);
    bool SaveResult(CMmioFile& file, CResultHeader& header, CResult& result, std::int32_t number) const;
    class LoadedKinds;
    static std::unique_ptr<CResult> NewResult(const CResultHeader& header); // to be read; null for an unknown kind
    void NoteLosses(CMmioFile& file, const CResultHeader& header, CResult& result, std::int32_t number,
                    LoadedKinds& kinds) const;
    void NoteLeftOut(CMmioFile& file, bool isLXFFile, std::uint32_t type) const;
    [[nodiscard]] CListVectorRef* StoredListOf(const CResultHeader& header) const;
    bool LoadResults(CMmioFile& file, ZMXFFileLoadScope scope);
    bool LoadResult(CMmioFile& file, OMMCKINFO& results, std::int32_t firstChild, ZMXFFileLoadScope scope,
                    LoadedKinds& kinds);

    // The branches of a system besides its results, see systeme_branches.cpp.
    bool SaveRecording(CMmioFile& file);
    bool LoadRecording(CMmioFile& file, bool ownQuantities, bool normalisation);
    void ApplyCaptionRule(CResultHeader& header) const;
    void NoteMistakenReferences(CMmioFile& file) const;
    void SaveReferences(CMmioFile& file);
    void LoadReferences(CMmioFile& file);
    [[nodiscard]] std::int32_t LastListNamed() const;
    bool SaveSettings(CMmioFile& file, bool isLXFFile);
    bool LoadSettings(CMmioFile& file, ZMXFFileLoadScope scope, std::int32_t& after);
    bool SaveTracks(CMmioFile& file);
    [[nodiscard]] bool MayHoldTracks() const;
    bool LoadTracks(CMmioFile& file, ZMXFFileLoadScope scope);
    [[nodiscard]] std::uint32_t BranchTypeBits() const;
    static CListVectorRef* SharedReferenceList(CResult& result);
    static CWaterfallRef* ReferenceOfItsOwn(const CResult* result);
    static void DeleteWithReferences(const std::set<CResult*>& results);

    std::uint16_t m_number = 0;
    ResultMap m_map;
    std::vector<CResultHeader*> m_headers; // a save follows them; they match m_results index by index
    std::vector<CResult*> m_results;
    ReferenceLists m_referenceLists;
    ReferenceLists m_loadedLists; // this system deletes those that no result uses in the end
    CRecord* m_record = nullptr;
    CConfigData* m_config = nullptr;
    PointerList<CITrack> m_itracks;
    bool m_needToRemoveEverything = false;
    std::size_t m_passedOver = 0;  // results of an unknown kind in the files that were loaded
    bool m_lostReferences = false; // a list of references couldn't be read
    std::vector<CResultHeader*> m_orderedHeaders;
    std::vector<CResult*> m_orderedResults;
};

} // namespace ZelmResult
