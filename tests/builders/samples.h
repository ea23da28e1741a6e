#pragma once

#include "tests/builders/bytes.h"
#include "tests/builders/memory_file.h"
#include "zelmresult/document/zmxf_file.h"
#include "zelmresult/results/scalar.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// Stored documents written out byte by byte, and the documents in memory that are stored as such.

namespace ZelmResult::test {

using ShortIdn = std::array<std::uint16_t, 3>;
inline constexpr ShortIdn kNoIdn{65535, 65535, 65535};
inline constexpr char kNoQuantity[] = "9999";

// What a stored result header holds, in stored order; the values here are those of a new object.
struct HeaderFields {
    std::uint32_t processType = 0;
    ShortIdn generator = kNoIdn, response = kNoIdn, reference = kNoIdn;
    wstring comment = {}, responseName = {}, referenceName = {};
    std::int32_t numReponse = 0, numReference = 0;
    wstring filename = {};
    std::uint32_t chunkId = 0, opere = 0, typeResultatOpere = 0, ponderation = 0, temporel = 0;
    std::int32_t opUniteAffichage = 0;
    std::int64_t date = 0;
    bool external = false, toBeDisplayed = false;
    wstring caption = {}, processCaption = {}, analyzerCaption = {};
    std::uint32_t waterfallDimension = 0;
    std::int32_t indexListe = 0;
    wstring chosenReference = {};
    std::int32_t numWindow = -1;
    wstring identificationName = {};
    bool flagV7 = false;
    wstring coupeCaption = {};
    std::uint32_t ponderationTemporelle = 0, formerInput = 0, formerTrack = 0, flagV18 = 0;
    std::array<std::int32_t, 3> tripleV19{};
    ShortIdn frontEnd = kNoIdn, track = kNoIdn, input = kNoIdn;
};

// Each field with a value of its own.
HeaderFields FullHeader();
// The data of a header chunk as the given version stores it.
Bytes headerBytes(const HeaderFields& fields, unsigned version = 23);
// The header that is read from the newest version.
CResultHeader HeaderOf(const HeaderFields& fields);

// The data of a scalar's chunk, and the same scalar. The quantity is named by its code.
Bytes scalarBytes(std::uint32_t process, float level, std::string_view quantity = kNoQuantity);
CScalar* NewScalar(std::uint32_t process, float level, CGrandeur* quantity = nullptr);
CResultHeader* NewHeader(std::uint32_t process, const wstring& caption = {});

// The data of a quantity's chunk, and the same quantity. Its unit is "u" followed by the name.
Bytes quantityBytes(const wstring& name, const std::vector<std::string>& operands = {});
CGrandeurFichier* NewQuantity(const wstring& name, const std::vector<CGrandeur*>& operands = {});

// The parts of a file, each a whole chunk.
Bytes fileOf(const Bytes& children, std::uint16_t version = 0x200);
Bytes head(std::uint16_t systems, std::uint32_t type);
Bytes units(const std::vector<Bytes>& quantities); // the data of each
Bytes system(std::string_view number, const Bytes& children);
Bytes results(const Bytes& children);
Bytes resultHeader(int number, std::uint32_t process, const HeaderFields& others = {});
Bytes resultData(int number, const Bytes& data);
// A header and its data: a scalar whose level is the number.
Bytes result(int number, std::uint32_t process, std::string_view quantity = kNoQuantity);
Bytes hardware(const std::vector<wstring>& names = {}); // the four texts of entry after entry
std::string CodeText(int number);
std::uint32_t CodeOf(std::string_view fourCharacters);

// A document of all that a file can hold, owned by it.
void FillWhole(CZMXFFile& document);

// What a document holds, on one line: the results of each system as kind=level@quantity, quantities, comments, the
// number of hardware entries and the version of the file.
std::string Summary(const CZMXFFile& document);
std::vector<std::string> Messages(CZMXFFile& document); // and clears them

// The scalar that a header of a file describes, as system:level/quantities/users of its own one; empty when it isn't
// fetched.
std::string Fetched(CZMXFFile& reader, CResultHeader& header, const wstring& path);

// The bytes that a document saves to a disk of its own, with these messages.
std::vector<char> SavedBytes(CZMXFFile& document, const std::vector<std::string>& messages = {});
// The same, whatever the document says of what a load won't restore.
std::vector<char> SavedAnyway(CZMXFFile& document);
// A file of tests/data.
std::vector<char> DataFile(const std::string& name);
Bytes AsBytes(const std::vector<char>& data);

} // namespace ZelmResult::test
