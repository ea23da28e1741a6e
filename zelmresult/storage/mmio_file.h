#pragma once

#include "zelmresult/storage/field_stream.h"
#include "zelmresult/storage/mmio.h"
#include "zelmresult/storage/read_bounds.h"
#include "zelmresult/storage/read_stop.h"
#include "zelmresult/support/idn.h"
#include "zelmresult/support/time.h"

#include <cstddef>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

namespace ZelmResult {

class CGrandeur;
class CGrandeurFichier;
class DebugDump;
class FieldObserver;
class FileQuantities;
class StoredVersions;
enum class ChunkKind : std::uint8_t;
struct ChunkFacts;

// One open result file: the single object through which readers and writers reach it. It names the chunks, reads and
// writes fields of a fixed form, and holds what all readers of one file share: messages, quantities, bounds on memory.
//
// Life: construct, Open, work, Close; then Open again if wanted, which begins with an empty list of quantities. Before
// Open and after Close every operation fails with false. The destructor closes. Copies share the open file and its
// dump; the file closes with the last of them or with the first Close, after which the others fail. Close a file
// before assigning another to it. One thread at a time.
//
// Operations return false on failure, add no message of their own and, where an output is named, leave it unspecified.
// A read that reaches the end of the file is no failure: it doesn't change a number, and sets a time to 0, a flag to
// false, a text to empty and an identifier to null.
//
// With the debug dump on, chunks and labelled values are noted as lines of text while a file is written, and Close
// writes them, as UTF-8, to a file on disk: the file's name with the letter "d" appended, whatever the backend.
class CMmioFile {
public:
    using BackendFactory = ZelmResult::BackendFactory;

    // debug turns the dump on. makeBackend must make a closed backend; it is called at once, and again at the first
    // Open after each Close.
    explicit CMmioFile(bool debug, BackendFactory makeBackend = DefaultBackend());
    CMmioFile(const CMmioFile&) = default;
    CMmioFile& operator=(const CMmioFile&) = default;
    virtual ~CMmioFile();

    // The backend of every file and document that isn't given one of its own: CMmioRiff at start. Class-wide and
    // unguarded.
    static const BackendFactory& DefaultBackend();
    static void SetDefaultBackend(BackendFactory makeBackend);
    // The observer of each field of the records that are read from this file; null, as at start, for none. Keeps the
    // pointer.
    [[nodiscard]] FieldObserver* fieldObserver() const { return m_fieldObserver; }
    void SetFieldObserver(FieldObserver* observer) { m_fieldObserver = observer; }

    // info may be null. On failure the name doesn't change.
    bool Open(const wstring& name, OMMIOINFO* info, std::uint32_t flags);
    // Gives an open file another name, for one that is first written under a temporary name.
    void SetFileName(const wstring& name) { m_fileName = name; }
    bool Close();
    // Whether any create, write or end of a chunk has failed since the file was opened: some writers continue
    // nevertheless.
    [[nodiscard]] bool HasFailed() const { return m_fields.HasFailed(); }
    // Whether a writer has noted, since the last call, that no read restores what it wrote, although the device did not
    // fail: some writers continue nevertheless, and some forms can hold what their readers refuse.
    void NoteUnreadable() { m_hasUnreadable = true; }
    bool TakeUnreadable() { return std::exchange(m_hasUnreadable, false) && !HasFailed(); }
    // lends the backend, closed until Open; null after Close.
    [[nodiscard]] CMmio* hFile() const { return m_fields.backend().get(); }
    [[nodiscard]] const wstring& FileName() const { return m_fileName; }
    [[nodiscard]] bool GenerateInfoFile() const { return m_debug; }

    // The list that nested readers take as parent, and the position of the system being read.
    [[nodiscard]] const OMMCKINFO& CurrentMmckinfo() const { return m_currentChunk; }
    void CurrentMmckinfo(const OMMCKINFO& chunk) { m_currentChunk = chunk; }
    [[nodiscard]] const OMMIOINFO& CurrentSystemMmmioInfo() const { return m_systemPosition; }
    void CurrentSystemMmmioInfo(const OMMIOINFO& info) { m_systemPosition = info; }

    // Whether the file holds the form "ZMXF" or "WAVE" at its top level. True leaves the position at the top.
    bool IsResultFile();
    bool IsWaveFile();

    // ---- Creating chunks. chunk is filled with zeros first and kept by the caller, untouched, until ExitChunk. ----
    // A number that the kind of the chunk doesn't have (see ChunkFacts) writes nothing. System 16 shares its code with
    // system 1: every search from the top of the file finds system 1.
    bool CreateChunkRIFF(OMMCKINFO& chunk);
    bool CreateChunkWAVE(OMMCKINFO& chunk);
    bool CreateChunkSysteme(OMMCKINFO& chunk, std::int16_t number);
    bool CreateChunkResultat(OMMCKINFO& chunk);
    bool CreateChunkUnite(OMMCKINFO& chunk);
    bool CreateChunkEnregistrement(OMMCKINFO& chunk);
    bool CreateChunkRecordInfo(OMMCKINFO& chunk, std::int16_t number);
    bool CreateChunkTrack(OMMCKINFO& chunk, std::int16_t number);
    bool CreateChunkITRACK(OMMCKINFO& chunk);
    bool CreateChunkLink(OMMCKINFO& chunk);
    bool CreateChunkConfig(OMMCKINFO& chunk);
    // Modules and submodules with a short number take it as their code and refuse one of 1000 or more; the others take
    // their raw number.
    bool CreateChunkModule(OMMCKINFO& chunk, const idn::Idn& idn);
    bool CreateChunkSousModule(OMMCKINFO& chunk, const idn::Idn& idn);
    // Whether the code of such a chunk can be written.
    static bool HasModuleCode(const idn::Idn& idn);
    static bool HasSubmoduleCode(const idn::Idn& idn);
    bool CreateChunkReglage(OMMCKINFO& chunk, const idn::Idn& idn);
    bool CreateChunkResultHeader(OMMCKINFO& chunk);
    bool CreateChunkHeader(OMMCKINFO& chunk);
    bool CreateChunkVersionConfig(OMMCKINFO& chunk);
    bool CreateChunkReglageInfo(OMMCKINFO& chunk);
    bool CreateChunkWaterfallFRF(OMMCKINFO& chunk);
    bool CreateChunkFileBlockInfo(OMMCKINFO& chunk, std::int16_t number);
    bool CreateChunkVectorRef(OMMCKINFO& chunk, int number);
    bool CreateChunk(OMMCKINFO& chunk, std::uint32_t id);
    bool CreateChunk(OMMCKINFO& chunk, const wstring& text);
    // A chunk of any kind that has no identifier, with its version and its label in the dump.
    bool Create(ChunkKind kind, OMMCKINFO& chunk, int number = 0);

    // ---- Entering chunks. With a parent the search stays within it; without one it runs from the current position
    // to the end of the file. True leaves the position at the chunk's data. ----
    bool EnterChunkRIFF(OMMCKINFO& chunk);
    bool EnterChunkWAVE(OMMCKINFO& chunk);
    bool EnterChunkSysteme(OMMCKINFO& chunk, OMMCKINFO& parent, std::int16_t number);
    bool EnterChunkResultat(OMMCKINFO& chunk, OMMCKINFO& parent);
    bool EnterChunkUnite(OMMCKINFO& chunk, OMMCKINFO& parent);
    bool EnterChunkConfig(OMMCKINFO& chunk, OMMCKINFO& parent);
    bool EnterChunkITrack(OMMCKINFO& chunk, OMMCKINFO& parent);
    bool EnterChunkModule(OMMCKINFO& chunk, OMMCKINFO& parent, const idn::Idn& idn);
    bool EnterChunkSousModule(OMMCKINFO& chunk, OMMCKINFO& parent, const idn::Idn& idn);
    bool EnterChunkRecInfo(OMMCKINFO& chunk, std::int16_t number);
    bool EnterChunkTrackDesc(OMMCKINFO& chunk, std::int16_t number);
    bool EnterChunkListSansParent(OMMCKINFO& chunk, std::uint32_t id);
    bool EnterChunkResultHeader(OMMCKINFO& chunk, OMMCKINFO& parent);
    bool EnterChunkHeader(OMMCKINFO& chunk, OMMCKINFO& parent);
    bool EnterChunkProjectInfo(OMMCKINFO& chunk, OMMCKINFO& parent);
    bool EnterChunkHardInfo(OMMCKINFO& chunk, OMMCKINFO& parent);
    bool EnterChunkVersionConfig(OMMCKINFO& chunk, OMMCKINFO& parent);
    bool EnterChunkReglage(OMMCKINFO& chunk, OMMCKINFO& parent, const idn::Idn& idn);
    bool EnterChunkReglageInfo(OMMCKINFO& chunk, OMMCKINFO& parent);
    bool EnterChunkWaterfallFRF(OMMCKINFO& chunk, OMMCKINFO& parent);
    bool EnterChunk(OMMCKINFO& chunk, OMMCKINFO& parent, std::uint32_t id);
    bool EnterNextChunk(OMMCKINFO& chunk, OMMCKINFO& parent); // of any code
    bool EnterChunkSansParent(OMMCKINFO& chunk, std::uint32_t id);
    bool EnterChunkFileBlockInfo(OMMCKINFO& chunk, std::int16_t number);
    bool EnterChunkComments(OMMCKINFO& chunk);
    bool EnterChunkLIDN(OMMCKINFO& chunk);
    // The parent is ignored: the references of a list follow each other, and the search continues from the last.
    bool EnterChunkVectorRef(OMMCKINFO& chunk, OMMCKINFO& parent, int number);
    // A chunk of any kind that has no identifier; parent may be null.
    bool Enter(ChunkKind kind, OMMCKINFO& chunk, OMMCKINFO* parent = nullptr, int number = 0);

    // ---- Leaving and positioning ----
    bool ExitChunk(OMMCKINFO& chunk);
    bool TopOfFile();
    // From the top of the file into the list of a system, of the quantities, of the results of a system.
    bool TopOfChunkSystem(OMMCKINFO& chunk, std::int16_t number);
    bool TopOfChunkUnite(OMMCKINFO& chunk);
    bool TopOfChunkResultat(OMMCKINFO& chunk, std::int16_t number);
    // The position, to return to later. -1 when closed.
    [[nodiscard]] std::int32_t Position() const;
    bool mmioSeek(std::int32_t offset, OMMIO_SEEK_FLAG origin);

    // ---- Chunks with one field: "VERS" holds the version of a list, "IDNU" an identifier. A missing one is false.
    // ----
    bool WriteChunkVersion(std::uint16_t version);
    bool ReadChunkVersion(OMMCKINFO& parent, std::uint16_t& version);
    bool ReadChunkVersionSansParent(std::uint16_t& version);
    // Reads a version that nothing depends on, from the position on: false when it is there and can't be read. A
    // missing one doesn't move the position.
    bool PassVersionIfThere();
    bool WriteChunkIDN(const idn::Idn& idn);
    bool ReadChunkIDN(OMMCKINFO& parent, idn::Idn& idn);

    // ---- Typed fields at the current position, little-endian, without any framing ----
    bool mmioWrite_byte(std::uint8_t value) { return m_fields.Write(value); }
    bool mmioWrite_ushort(std::uint16_t value) { return m_fields.Write(value); }
    bool mmioWrite_int(std::int32_t value) { return m_fields.Write(value); }
    bool mmioWrite_uint(std::uint32_t value) { return m_fields.Write(value); }
    bool mmioWrite_ulong(std::uint32_t value) { return m_fields.Write(value); }
    bool mmioWrite_float(float value) { return m_fields.Write(value); }
    bool mmioWrite_int64(std::int64_t value) { return m_fields.Write(value); }
    bool mmioWrite_OTime(const OTime& value) { return m_fields.WriteTime(value); }
    bool mmioWriteBool(bool value) { return m_fields.WriteFlag(value); }
    bool WriteChunk(std::uint32_t code) { return m_fields.Write(code); }

    bool mmioRead_byte(std::uint8_t& value) { return m_fields.Read(value); }
    bool mmioRead_ushort(std::uint16_t& value) { return m_fields.Read(value); }
    bool mmioRead_int(std::int32_t& value) { return m_fields.Read(value); }
    bool mmioRead_uint(std::uint32_t& value) { return m_fields.Read(value); }
    bool mmioRead_ulong(std::uint32_t& value) { return m_fields.Read(value); }
    bool mmioRead_float(float& value) { return m_fields.Read(value); }
    bool mmioRead_int64(std::int64_t& value) { return m_fields.Read(value); }
    // 0 when the file ends before it.
    bool mmioRead_OTime(OTime& value) { return m_fields.ReadTime(value); }
    // Any nonzero value is true; false on failure and at the end of the file.
    bool mmioReadBool(bool& value) { return m_fields.ReadFlag(value); }
    bool ReadChunk(std::uint32_t& code) { return m_fields.Read(code); }

    // count elements as one block of at most 2^31-1 bytes.
    bool mmioWrite_byte(const std::uint8_t* data, std::size_t count) { return m_fields.WriteBlock(data, count); }
    bool mmioWrite_ushort(const std::uint16_t* data, std::size_t count) { return m_fields.WriteBlock(data, count); }
    bool mmioWrite_ulong(const std::uint32_t* data, std::size_t count) { return m_fields.WriteBlock(data, count); }
    bool mmioWrite_float(const float* data, std::size_t count) { return m_fields.WriteBlock(data, count); }
    bool mmioRead_byte(std::uint8_t* data, std::size_t count) { return m_fields.ReadBlock(data, count); }
    bool mmioRead_ushort(std::uint16_t* data, std::size_t count) { return m_fields.ReadBlock(data, count); }
    bool mmioRead_ulong(std::uint32_t* data, std::size_t count) { return m_fields.ReadBlock(data, count); }
    bool mmioRead_float(float* data, std::size_t count) { return m_fields.ReadBlock(data, count); }

    // Text is written as UTF-16 after a marker; the narrow form of older files is read too (see FromCodePage).
    bool WriteCString(wstring_view text) { return m_fields.WriteText(text); }
    bool ReadCString(wstring& text) { return m_fields.ReadText(text, m_bounds); }
    // Three short numbers, or a marker and the text form for an identifier without short numbers.
    bool mmioWriteIDN(const idn::Idn& idn);
    bool mmioReadIDN(idn::Idn& idn) { return m_fields.ReadIdentifier(idn, m_bounds); }

    // Ask before reading count elements of that size, with the file where they begin. False when they exceed both 256
    // KiB and the bytes left in the file, or when all that was charged would exceed 16 times the file plus 64 MiB. Only
    // a file that was opened just for reading has that limit: a host may read what it has just written.
    bool RoomFor(std::uint64_t count, std::size_t elementSize)
    {
        return hFile() != nullptr && m_bounds.RoomFor(*hFile(), count, elementSize);
    }
    // Only the second of these conditions, for memory that the file doesn't fill. A writer charges what a load of the
    // same thing would.
    bool Charge(std::uint64_t bytes) { return hFile() != nullptr && m_bounds.Charge(*hFile(), bytes); }
    // Notes why the read is refused here, unless an earlier reason is noted. Always false.
    bool Refuse(Refusal::Bound bound) { return hFile() != nullptr && m_bounds.Refuse(*hFile(), bound); }
    [[nodiscard]] const ReadBounds& bounds() const { return m_bounds; }
    // Bounds the work of searches by the size of the file; see CMmio. For loaders.
    void LimitSearches();
    // Begins another operation on a file that stays open for reading: from the top, with the bounds of a file that was
    // just opened. The quantities are kept.
    bool BeginOperation();
    // Forgets the messages, the first refusal and the first field that failed, so that they are those of the next read.
    void ForgetFailures();
    // Notes the field at which a record ends too early, unless an earlier one is noted.
    void NoteFailedField(std::string_view field) { m_stops.NoteFailedField(field, m_bounds.LastEntered(), Position()); }
    // After a failed read: the place of the first such field, else the position of the file.
    [[nodiscard]] ReadStop WhereReadStopped() const { return m_stops.First(m_bounds.LastEntered(), Position()); }

    // ---- Messages ----
    void AddErrorMessage(const wstring& text) { m_messages.push_back(text); }
    // Appends the messages to out, and empties the list when clear is true.
    void fetchErrors(std::vector<wstring>& out, bool clear);

    // ---- Quantities of this file. The list owns nothing: the code that makes the file takes them over. ----
    [[nodiscard]] const std::vector<CGrandeurFichier*>& ListeGrandeur() const;
    // The listed quantity with that identifier from that file, with one more user; null if there is none.
    CGrandeurFichier* GetGrandeur(const wstring& fileName, std::uint32_t id);
    // The first listed quantity that compares equal, null if there is none.
    CGrandeurFichier* GetSameGrandeurInList(const CGrandeur& quantity);
    // Adds a quantity unless an equal one is listed. Gives the one in the list, with one more user; when that is
    // another one, the caller still owns what it passed. A quantity in the list must keep what Compare looks at.
    CGrandeurFichier* AddGrandeurFichier(CGrandeurFichier* quantity);
    // A reference to a quantity is the code of its chunk; null is the code "9999".
    bool WriteGrandeur(const CGrandeur* quantity);
    // Finds the quantity in the list, or reads its chunk and returns to the position. The list holds the result.
    bool ReadGrandeur(CGrandeur*& quantity);

    // More operations, for readers and writers of whole lists.
    FileQuantities& quantities() { return *m_quantities; }

    // ---- Debug dump. Callers ask GenerateInfoFile first. ----
    void OuvertureChunck(const wstring& label, std::uint32_t id);
    void FermetureChunck(std::int32_t size);
    void AddStringToDebugFile(const wstring& text);
    void AddStringToDebugFile(const char16_t* text) { AddStringToDebugFile(wstring(text)); }

protected:
    // The length field of a string, 0xFFFFFFFF for the marker of the wide form, 0 when the file ends within it or the
    // read fails.
    std::uint32_t ReadStringLength();

private:
    // A list of its own for each copy of a file. The class of the list belongs to a folder above.
    class Quantities {
    public:
        Quantities();
        Quantities(const Quantities& other);
        Quantities& operator=(const Quantities& other);
        ~Quantities();

        FileQuantities& operator*() const { return *m_quantities; }
        FileQuantities* operator->() const { return m_quantities.get(); }

    private:
        std::unique_ptr<FileQuantities> m_quantities;
    };

    bool CreateForm(OMMCKINFO& chunk, OMMIO_CREATE_CHUNK_FLAG form, std::uint32_t code);
    bool CreatePlain(OMMCKINFO& chunk, std::uint32_t code, const wstring& label);
    bool CreateIdentified(ChunkKind kind, OMMCKINFO& chunk, const idn::Idn& idn);
    bool EnterCode(OMMCKINFO& chunk, OMMCKINFO* parent, OMMIO_DESCEND_FLAG flag, std::uint32_t code);
    bool EnterIdentified(ChunkKind kind, OMMCKINFO& chunk, OMMCKINFO& parent, const idn::Idn& idn);
    [[nodiscard]] std::uint32_t CodeOf(const ChunkFacts& facts, int number) const;
    [[nodiscard]] std::uint32_t Code(const wstring& text) const;
    bool BeginsWithForm(bool (CMmioFile::*enter)(OMMCKINFO&));
    bool ReadVersionField(OMMCKINFO& chunk, std::uint16_t& version);

    friend class NestedValue;
    friend class StoredVersions;

    std::vector<wstring> m_messages;
    wstring m_fileName;
    BackendFactory m_makeBackend;
    FieldStream m_fields;
    ReadBounds m_bounds;
    ReadStops m_stops;
    OMMCKINFO m_currentChunk;
    OMMIOINFO m_systemPosition;
    int m_nestedValues = 0; // being read or written inside each other
    bool m_hasUnreadable = false;
    bool m_debug;
    std::shared_ptr<DebugDump> m_dump;                // belongs to the open file, so to all copies
    std::shared_ptr<StoredVersions> m_storedVersions; // null when all records are written at their newest
    Quantities m_quantities;
    FieldObserver* m_fieldObserver = nullptr;
};

} // namespace ZelmResult
