#pragma once

#include "zelmresult/document/comment.h"
#include "zelmresult/document/file_header.h"
#include "zelmresult/document/hard_info.h"
#include "zelmresult/document/load_scope.h"
#include "zelmresult/document/project_info.h"
#include "zelmresult/document/result_header.h"
#include "zelmresult/document/systeme.h"
#include "zelmresult/quantities/quantity_vector.h"
#include "zelmresult/results/result.h"
#include "zelmresult/storage/mmio.h"
#include "zelmresult/support/idn.h"
#include "zelmresult/support/time.h"
#include "zelmresult/support/wstring.h"

#include <cstdint>
#include <iosfwd>
#include <map>
#include <memory>
#include <span>
#include <utility>
#include <vector>

namespace ZelmResult {

class CConfigData;
class CITrack;
class CMmioFile;
class CRecord;
class CRecordHeader;
class CRecordInfo;
class CRefWaterfall;
class CReglageData;
class CZMTrackDesc;
class FieldObserver;
class SavedCodes;
struct strEnregHeader;
struct strTrackDescData;

// One result document in memory: systems with their results, quantities, comments, records of project and hardware, and
// the messages about failures. It doesn't keep a file open: each operation on a file opens and closes it.
//
// Owns     its systems and comments. Results are deleted with it only after NeedToRemoveEverything(true), otherwise the
//          host deletes them. Quantities with OwnershipOwned are deleted; those with OwnershipDefault, such as the ones
//          a load brings, only with OwnQuantities or after NeedToRemoveEverything(true). So a program that needs a
//          document for a short time calls NeedToRemoveEverything(true) after Load.
// Copies   are flat: only one of them may be destroyed.
// Failures return false; Save, and opening a file, add a message, which fetchErrors returns. One thread at a time.
class CZMXFFile {
public:
    // A file of the LXF kind holds a project record, and its comments are not read.
    CZMXFFile(bool ownQuantities, bool isLXFFile);
    CZMXFFile(const CZMXFFile&) = default;
    CZMXFFile& operator=(const CZMXFFile&) = default;
    virtual ~CZMXFFile();

    // ---- Whole documents. Paths are UTF-16, ended by 0. ----
    // Writes everything to a file, which is truncated at once: a failed save leaves a partial file that every load
    // refuses. Renews the codes of quantities and results, the systems' numbers and the header in memory. False, with a
    // message, after any call of the device that failed. Messages name everything that a load would not restore, such
    // as tracks after the thousandth, which have no code, also when the save is true.
    [[nodiscard]] bool Save(const char16_t* path);
    // The same, but the file keeps its former content, mode and links until the new one is whole and has reached the
    // device: it is first written beside the file. Also false, and nothing changed, when CheckSave would list a reason,
    // unless losses are accepted; the reasons are among the messages. Always a file on disk, by the library's own
    // backend, in a folder that may be written.
    [[nodiscard]] bool SaveSafely(const char16_t* path, bool acceptLosses = false);
    // Appends a sentence for each part of the document that a load would not restore if it were saved now; true without
    // any. Writes nothing, and changes nothing except the slice that a waterfall's temporary vector shows; takes the
    // time of a save to memory. What the format leaves out by design is no reason: comments, which are stored and never
    // read back, a project record or modules that the kind of the file doesn't hold, and data of tracks without the
    // flags that store it.
    [[nodiscard]] bool CheckSave(std::vector<wstring>& reasons);
    // Adds what the file holds; use a new document. Settings that can't be read whole are loaded as far as possible,
    // which is no failure. A failure keeps the systems before it, and adds a message only when the file can't be opened
    // or asks for more than the bounds on hostile files allow. A message also reports waterfalls without room for their
    // slices, and settings that were loaded in part; see CWaterfall::HasLostSlices and CConfigData::CameInPart. Sets
    // the file name on success and clears it otherwise.
    [[nodiscard]] bool Load(const char16_t* path, ZMXFFileLoadScope scope);
    // The same in memory and on streams, whatever SetBackend says. A save to memory replaces the bytes; none are left
    // when it fails. A stream is written in one piece and read to its end, so it need not support seeking; the document
    // is then in memory twice for a while. name is the file's name for messages, headers and quantities.
    [[nodiscard]] bool SaveToMemory(std::vector<char>& bytes);
    [[nodiscard]] bool SaveToStream(std::ostream& stream);
    [[nodiscard]] bool LoadFromMemory(std::span<const char> bytes, ZMXFFileLoadScope scope,
                                      const char16_t* name = nullptr);
    [[nodiscard]] bool LoadFromStream(std::istream& stream, ZMXFFileLoadScope scope, const char16_t* name = nullptr);
    // The backend of the files that this document opens by a path, except in SaveSafely; CMmioFile::DefaultBackend
    // while it is null, as at start.
    void SetBackend(BackendFactory makeBackend) { m_makeBackend = std::move(makeBackend); }
    // The observer of each field of the records that this document reads; null, as at start, for none. Keeps the
    // pointer.
    void SetFieldObserver(FieldObserver* observer) { m_fieldObserver = observer; }
    // Sets the system count and the type word from the contents of the document. Save does it.
    void UpdateFileHeader();
    [[nodiscard]] const FileHeader& fileHeader() const { return m_fileHeader; }

    // ---- One thing from a file, without loading it ----
    // Replaces the contents of out by all result headers of the file, which it gives, and this document's header by
    // that of the file.
    bool GetResultHeaderListe(const char16_t* path, std::vector<CResultHeader*>& out);
    // Reads the data that header describes from the file that it names into result, which must be of the fitting class
    // (see ResultFactory). systemNumber becomes the system that holds it, -1 when none does. The quantities of the
    // result are given to the caller: AddReferredGrandeur names them. A result that failed is to be discarded.
    bool GetResultat(CResult* result, const CResultHeader* header, std::int32_t& systemNumber);
    // Appends the references of waterfalls that a file stores under that index of a list, and turns waterfall, which
    // may be null, into a ring; see MmioFile_VectorRef::FillVecteurRef. The quantities of the references are given to
    // the caller. name has no effect.
    bool FillListeVecteurRef(CRefWaterfall* waterfall, const char16_t* name, CListVectorRef& list, const char16_t* path,
                             std::int32_t listIndex, std::int32_t system);
    bool GetHardInfo(const char16_t* path, CHardInfo& out);
    // Reads the settings of a system, 0 to 15, into out, which should be new; for 16 those of system 1, whose code it
    // shares. False keeps what was read before the failure.
    bool GetConfig(const char16_t* path, CConfigData& out, std::uint16_t system);
    // One setting of system 0, without loading the others; null without it or when it can't be read. The whole
    // identifier counts, with the analyzer.
    std::unique_ptr<CReglageData> GetReglage(const char16_t* path, const idn::Idn& idn);
    // Whether a file holds a recording preview; without a path, whether this document's header says so.
    bool HasRecordPreview(const char16_t* path);
    [[nodiscard]] bool HasRecordPreview() const { return m_fileHeader.HasType(FileType::kRecordPreview); }

    // ---- Systems. A system number at or above the count makes one new system at the end and uses that. ----
    bool AddSysteme(CSysteme* system); // takes; false for null and for one that is there already
    [[nodiscard]] CSysteme* getSystem(std::int32_t index) const; // lends; null out of range
    [[nodiscard]] std::int32_t getNbrSys() const { return static_cast<std::int32_t>(m_systems.size()); }
    void AjouteResultat(CResultHeader* header, CResult* result, std::uint16_t system, bool registerReference);
    // As in CSysteme; false for a system that isn't there.
    bool RemoveResultat(const CResultHeader* header, std::uint16_t system);
    bool ReplaceResultat(CResultHeader* newHeader, const CResultHeader* matching, CResult* newResult,
                         std::uint16_t system);
    bool RemoveAllResultats();

    // ---- Settings, recordings and transducers ----
    // All take when they return true; the caller then owns a former tree or recording. SetConfig makes a new system for
    // any number after the last, the others only for the next one; false for greater numbers.
    bool SetConfig(CConfigData* config, std::uint16_t system);
    bool SetRecord(CRecord* record, std::uint16_t system);
    bool SetITrack(CITrack* track, std::uint16_t system);
    bool AddReglage(CReglageData* setting, std::uint16_t system);
    // Lend a setting of system 0, of the given system, or of the system that holds the channel; null without it.
    [[nodiscard]] CReglageData* GetReglage(const idn::Idn& idn) const { return GetReglageBySystem(idn, 0); }
    [[nodiscard]] CReglageData* GetReglageBySystem(const idn::Idn& idn, std::int32_t system) const;
    [[nodiscard]] CReglageData* GetReglageByChannel(const idn::Idn& idn, std::int32_t channel) const;

    // ---- Recordings. Channel c is track c % 1024 of system c / 1024. ----
    static constexpr std::int32_t kChannelsPerSystem = 1024;
    [[nodiscard]] CRecord* getRecord(std::uint16_t system) const; // lends, may be null
    // The first recording's; 0 without one.
    [[nodiscard]] double getSampleFrequency() const;
    [[nodiscard]] std::int32_t getNbrRecord() const;
    [[nodiscard]] std::int32_t getTimedivider() const;
    [[nodiscard]] std::int32_t getBlockSize() const;
    [[nodiscard]] std::int32_t getNbrMarker() const;
    [[nodiscard]] std::uint64_t getReferenceTime() const;
    [[nodiscard]] std::int32_t getNbrChannelComp() const; // of all recordings together
    // Both lend what they find under a channel, null without it.
    [[nodiscard]] CZMTrackDesc* getTrackDesc(std::int32_t channel) const;
    [[nodiscard]] strTrackDescData* getTrackData(std::int32_t channel) const;
    // As in CSysteme, on the recording of a system: null or false without it, and nothing taken.
    [[nodiscard]] CRecordHeader* getRecordHeader(std::uint16_t system) const;           // lends
    [[nodiscard]] const strEnregHeader* getRecordHeaderstr(std::uint16_t system) const; // lends
    [[nodiscard]] CRecordInfo* getFirstRecordInfo(std::uint16_t system) const;          // lends
    [[nodiscard]] std::int16_t getTrackCount(std::uint16_t system) const;               // 0 without one
    bool setRecordHeader(const CRecordHeader& header, std::uint16_t system);
    bool setRecordHeaderstr(const strEnregHeader* header, std::uint16_t system);
    bool setNbrRecord(std::int32_t count, std::uint16_t system);
    bool setNbrMarker(std::int32_t count, std::uint16_t system);
    bool setReferenceTime(const OFILETIME& time, std::uint16_t system);
    bool updateRecordLength(std::int64_t length, std::uint16_t system);
    bool AddRecordInfo(CRecordInfo* info, std::uint16_t system);                      // takes when true
    bool AddTrackDesc(CZMTrackDesc* track, std::int32_t index, std::uint16_t system); // takes when true
    bool updateFileBlocEndNbr(std::int16_t disk, std::int16_t file, std::uint32_t end, std::uint16_t system);
    bool updateLOCATrackDesc(const std::int32_t* first, const std::int32_t* last, const std::int32_t* blockSize,
                             std::uint16_t system);
    bool updateTrackOverload(const float* min, const float* max, const bool* overload, std::uint16_t system);
    // The sum over the systems of one less than their tracks: a system without a recording counts -1. So do the
    // operations below, which write values of all tracks into arrays of the caller, each in its own layout.
    [[nodiscard]] std::int32_t getNbrChannel() const;
    // Writes 1 for each track of system s from s * 1024 on; the other places don't change.
    std::int32_t getNbrChannel(std::int16_t* marks) const;
    // System by system, with 1024 places between the last track of one and the first of the next.
    std::int32_t getTrackFreq(float* out) const;
    // Without gaps.
    std::int32_t getTrackBlockSize(std::int32_t* out) const;
    std::int32_t getTrackBlockFirst(std::int32_t* out) const;
    std::int32_t getTrackFirstOffset(std::int32_t* out) const;
    std::int32_t getYUniData(float* sensitivity, float* convLogToVolt, float* offset, float* coeffA,
                             float* coeffB) const;
    std::int32_t getTrackFormat(std::int32_t* format, std::int32_t* type, std::int32_t* domain,
                                std::int32_t* factor) const;
    // Gives the recording of system 0 a new date, moves its reference time by the difference and saves the document
    // under its file name. A former date that doesn't exist moves nothing. False without a recording, for a date that
    // doesn't exist, and when the save fails.
    [[nodiscard]] bool ChangeRecordDateAndSave(const OSYSTEMTIME& date);

    // ---- Quantities ----
    [[nodiscard]] const QuantityVectorExplicitOwnership& GetListeGrandeur() const { return m_quantities; }
    QuantityVectorExplicitOwnership& writeListeGrandeur() { return m_quantities; }
    // Adds a quantity unless it is null or in the list, and gives it a code. Every quantity of a result must be added,
    // or the document can't be read back.
    void AjouteGrandeur(CGrandeur* quantity, EOwnership ownership);
    // The code of the first quantity that compares equal; false and -1 without one.
    bool GrandeurExist(const CGrandeur* quantity, std::int32_t& chunkId) const;
    // All lend; null without a match.
    [[nodiscard]] CGrandeur* getGrandeur(std::uint32_t chunkId) const;
    [[nodiscard]] CUnite* getUnit(std::uint32_t chunkId) const; // the current unit of that quantity
    [[nodiscard]] CGrandeur* GetGrandeur(const wstring& name) const;
    void AddInvolvedGrandeur(std::map<CGrandeur*, int>& counts) const;
    void obsolete_RemoveAllGrandeurs() { m_quantities.clear(); }
    void obsolete_ClearListeGrandeurs(); // deletes only what is explicitly owned
    bool obsolete_ReplaceGrandeur(CGrandeur* old, EOwnership* oldOwnership, CGrandeur* replacement,
                                  EOwnership ownership);

    // ---- Comments and records ----
    std::int32_t AddComment(CComment* comment);                                               // takes, once; always 0
    [[nodiscard]] const std::vector<CComment*>& comments() const { return m_comments.All(); } // lent
    void setProjectInfo(const wstring& projectName, const wstring& measurementName, const wstring& userName);
    void getProjectInfo(wstring& projectName, wstring& measurementName, wstring& userName) const;
    [[nodiscard]] const CHardInfo& readHardInfo() const { return m_hardInfo; }
    CHardInfo& writeHardInfo() { return m_hardInfo; }

    // ---- Switches ----
    void setFilename(const wstring& path) { m_filename = path; }
    [[nodiscard]] const wstring& filename() const { return m_filename; } // of the last load
    // For this document and every system that it holds now.
    void NeedToRemoveEverything(bool remove);
    // Writes a debug dump beside every file that is written; see CMmioFile.
    void GenerateInfoFile(bool generate) { m_generateInfoFile = generate; }
    void SetInvert(bool invert) { m_invert = invert; } // kept for the host
    [[nodiscard]] bool GetInvert() const { return m_invert; }
    void SetIsLXFFile(bool isLXFFile) { m_isLXFFile = isLXFFile; }
    [[nodiscard]] bool GetIsLXFFile() const { return m_isLXFFile; }
    void SetNormalisation(bool normalisation) { m_normalisation = normalisation; } // of tracks, while loading
    [[nodiscard]] std::uint16_t GetVersion() const { return m_version; }           // of the last file loaded
    // Bands per octave of a choice: 1, 3, 12 or 24.
    static void SetNOctave(int choice, double& bands);
    // Two texts for hosts, kept for the whole process. Until they are set, reading them returns false and changes
    // nothing.
    static void setReferenceParameters(const wstring& entityName, const wstring& referenceNode);
    static bool getReferenceParameters(wstring& entityName, wstring& referenceNode);

    // ---- Messages ----
    void addErrorMessage(const wstring& text) { m_messages.push_back(text); }
    // Appends the messages to out, and empties the list when clear is true.
    void fetchErrors(std::vector<wstring>& out, bool clear);

private:
    CSysteme& SystemOrNew(std::uint16_t index);
    [[nodiscard]] CSysteme* SystemOrNext(std::uint16_t index);
    [[nodiscard]] const CRecord* FirstRecord() const;
    template <class Use>
    std::int32_t ForEachRecord(Use use) const;
    template <class Write>
    std::int32_t Gather(Write write) const;

    // The steps of a save; each adds its message when it fails.
    bool WriteTo(CMmioFile& file, const wstring& path, const wstring& name);
    bool SaveForm(CMmioFile& file, const wstring& path);
    [[nodiscard]] SavedCodes Codes() const;
    void NoteUnreadableQuantities(CMmioFile& file) const;
    bool SaveQuantities(CMmioFile& file, const wstring& path);
    bool SaveSystems(CMmioFile& file, const wstring& path);
    bool SaveRecords(CMmioFile& file, const wstring& path);
    bool Failed(const wstring& message);
    bool Failed(CMmioFile& file, const wstring& message);

    // The steps of a load.
    bool LoadFile(CMmioFile& file, const wstring& name, ZMXFFileLoadScope scope);
    bool ReadFrom(CMmioFile& file, ZMXFFileLoadScope scope);
    bool LoadQuantities(CMmioFile& file);
    bool LoadSystems(CMmioFile& file, OMMCKINFO& form, ZMXFFileLoadScope scope);
    void LoadComments(CMmioFile& file);
    void AdoptQuantities(const CMmioFile& file);
    void NoteLostSlices(const CResultHeader& header, const CResult& result);
    void NoteMissing();

    [[nodiscard]] CMmioFile NewFile() const;
    static wstring PathText(const char16_t* path); // null names no file, like an empty path
    bool OpenForReading(CMmioFile& file, const wstring& path);
    void NoteRefusal(const CMmioFile& file);
    bool FindResult(CMmioFile& file, std::uint32_t chunkId, std::int32_t& systemNumber);

    FileHeader m_fileHeader;
    std::vector<wstring> m_messages;
    QuantityVectorExplicitOwnership m_quantities;
    PointerList<CSysteme> m_systems;
    PointerList<CComment> m_comments;
    wstring m_filename;
    bool m_ownQuantities;
    bool m_needToRemoveEverything = false;
    bool m_generateInfoFile = false;
    bool m_invert = false;
    bool m_isLXFFile;
    ProjectInfo m_projectInfo;
    CHardInfo m_hardInfo;
    bool m_normalisation = false;
    std::uint16_t m_version = 256;
    BackendFactory m_makeBackend;
    FieldObserver* m_fieldObserver = nullptr;
};

} // namespace ZelmResult
