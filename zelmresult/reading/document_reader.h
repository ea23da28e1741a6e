#pragma once

#include "zelmresult/document/file_header.h"
#include "zelmresult/document/hard_info.h"
#include "zelmresult/reading/labelled_result.h"
#include "zelmresult/reading/listed_result.h"
#include "zelmresult/reading/read_error.h"
#include "zelmresult/reading/stored_branches.h"
#include "zelmresult/reading/stored_result.h"
#include "zelmresult/storage/mmio.h"
#include "zelmresult/support/wstring.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace ZelmResult {

// A result document that stays open, from which one thing after another is read. Programs that look at documents use
// it; those that fill and save them use CZMXFFile.
//
//     auto reader = DocumentReader::Open(u"pump.zmxf");
//     if (!reader) return Say(reader.error().Text());
//     for (const ListedResult& listed : reader->Results().items) Show(*listed.header);
//     auto result = reader->ReadResult(3);
//     if (result) Show(result->header(), result->result());
//
// Opening   reads only the head. Results lists all headers at its first call, in one walk that notes where each header
//           and each data chunk is. From then on ReadResult goes straight to the data, and to the references of a
//           result along a waterfall. Everything else is read on demand, in any order.
// Gives     objects that own what they hold. They outlive the reader, which frees only what it keeps for itself: the
//           open file, what it knows of its chunks, and its part in the quantities. What it lends lives until the
//           reader ends or is moved from.
// Damage    ends nothing but what it hits. A listing holds what could be read, with the reason why the first thing is
//           missing; a single thing is there or the reason is. Of a file that was cut off, what is there can be read:
//           ask CutOff first, since numbers past the end are 0.
// Answers   are those of CZMXFFile::Load, and don't depend on what was read before. Where a series along a waterfall
//           and the stored reference of its name differ, a load takes the values of the reference, and a reader those
//           of the series. Results of operated style 2 are left out, as in every listing.
// Bounds    on hostile files are for each call by itself. The headers and the quantities that the reader keeps have
//           them once.
// Failures  are values; only a failed allocation throws. A file that changes while it is open gives errors or wrong
//           values, and nothing worse.
// Threads   one at a time, for the reader and for everything that it gave, since they share quantities.
class DocumentReader {
public:
    // Opens a file with the default backend; see CMmioFile::SetDefaultBackend.
    static Outcome<DocumentReader> Open(const wstring& path);
    // Opens that name with a backend of the caller. One backend is made.
    static Outcome<DocumentReader> Open(const wstring& name, BackendFactory makeBackend);
    // Keeps a pointer to the bytes, which must live as long as the reader. The name is the one that errors use.
    static Outcome<DocumentReader> OpenBytes(std::span<const char> bytes, const wstring& name = {});

    DocumentReader(DocumentReader&&) noexcept;
    DocumentReader& operator=(DocumentReader&&) noexcept;
    DocumentReader(const DocumentReader&) = delete;
    DocumentReader& operator=(const DocumentReader&) = delete;
    ~DocumentReader(); // closes the file

    // ---- What opening read ----
    [[nodiscard]] const wstring& name() const;
    [[nodiscard]] const FileHeader& head() const;                 // the type word says which branches systems hold
    [[nodiscard]] std::optional<std::uint16_t> version() const;   // none when it can't be read: no load takes the file
    [[nodiscard]] const std::optional<ReadError>& CutOff() const; // when the file ends before its form does

    // ---- Results ----
    // The index of an item is the number of the result.
    const Listing<ListedResult>& Results();
    Outcome<StoredResult> ReadResult(std::size_t number);

    // The same as labelled arrays: all of a result, whatever its class.
    Outcome<LabelledResult> ReadLabelled(std::size_t number);
    // Of a waterfall, the coordinates of all slices without their data; then one slice, in which the dimension slice is
    // a coordinate of one number. Both take the memory of one slice and of the references, and read no more than that.
    // NoSuchResult for a result that is no waterfall, and for a slice that it doesn't hold.
    Outcome<LabelledResult> ReadSlices(std::size_t number);
    Outcome<LabelledResult> ReadSlice(std::size_t number, SliceChoice choice);

    // ---- The rest ----
    // The stored quantities in the order of their codes.
    const Listing<StoredQuantity>& Quantities();
    // Of the systems that hold some. None when the type word names no settings.
    std::vector<StoredSettings> ReadSettings();
    // Of all systems, also of those without a recording.
    std::vector<StoredRecording> ReadRecordings();
    // Older documents hold none.
    Listing<strHardInfo> ReadHardware();
    Listing<wstring> ReadComments();

private:
    struct State;

    explicit DocumentReader(std::unique_ptr<State> state);
    std::unique_ptr<State> m_state;
};

} // namespace ZelmResult
