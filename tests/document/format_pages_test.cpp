// The pages in docs/format against the field lists of the records, and the C++ of all pages against the examples.

#include "zelmresult/recordings/track_records.h"
#include "zelmresult/storage/chunk_kinds.h"
#include "zelmresult/storage/record_io.h"
#include "zelmresult/support/text.h"
#include "zelmresult/zelmresult.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

using namespace ZelmResult;

namespace {

namespace fs = std::filesystem;

// What a record says of itself. An abstract class is asked through an object of a derived one.
template <class Record, class Object = Record>
RecordOutline OutlineOf()
{
    RecordOutline outline;
    if constexpr (requires { Record::Outline(outline); })
        Record::Outline(outline);
    else {
        const Object object;
        static_cast<const Record&>(object).Outline(outline);
    }
    return outline;
}

template <class... Records>
std::vector<RecordOutline> OutlinesOf()
{
    return {OutlineOf<Records>()...};
}

std::vector<RecordOutline> AllRecords()
{
    auto records =
        OutlinesOf<FileHeaderMmioReaderWriter, ProjectInfoMmioReaderWriter, CHardInfoMmioReaderWriter, CResultHeader,
                   CEquationDimMmioReaderWriter, CUniteMmioReaderWriter, CGrandeurMmioReaderWriter, CScalar, CVector,
                   CDoubleResult, CRegXAxis, CBroadBand, CGlobalLevel, CSuiviOrdre, CRegOrderTrack, CRefOrderTrack,
                   CCompressedVector, CCompressedScalar, CRegVector, CReferencedAxis, CRefVector, CVectorRef,
                   CWaterfall, CWtfOctave, CWaterfallRef, CRefWaterfall, CReglageInfoData, CBooleenData, CActionData,
                   CChaineData, CSelectionSignalFileData, CScalaireData, CWinTuningData, CIntegerScalarData, CListeData,
                   CReglageIdnData, CMatriceData, CMultiSourcesData, CWtfSourceData, CTableauData, CVirtualTachoData,
                   CWaterfallFRFInfo, CRecordHeader, CFileInfo, CFileBlockInfo, CLIDN, CITrack,
                   TrackRecord<TrackChunk::Info>, TrackRecord<TrackChunk::Loca>, TrackRecord<TrackChunk::Ovld>,
                   TrackRecord<TrackChunk::Xuni>, TrackRecord<TrackChunk::Yuni>, TrackRecord<TrackChunk::Vuni>,
                   TrackRecord<TrackChunk::Corr>>();
    for (const auto& abstract : {OutlineOf<CResult, CScalar>(), OutlineOf<COrderTracking, CRegOrderTrack>(),
                                 OutlineOf<CReglageData, CBooleenData>()})
        records.push_back(abstract);
    return records;
}

using Cells = std::vector<std::string>;
constexpr std::size_t kOutlineColumns = 5; // those after them are the page's own

std::string ReadText(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file) << path;
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

fs::path Source(const std::string& name) { return fs::path(ZELMRESULT_SOURCE_DIR) / name; }

std::vector<fs::path> FilesIn(const fs::path& folder, const std::string& extension)
{
    std::vector<fs::path> found;
    for (const auto& entry : fs::recursive_directory_iterator(folder))
        if (entry.path().extension() == extension) found.push_back(entry.path());
    std::sort(found.begin(), found.end());
    return found;
}

std::vector<std::string> CppBlocksOf(const std::string& page)
{
    const std::string start = "```cpp\n";
    std::vector<std::string> blocks;
    for (auto at = page.find(start); at != std::string::npos; at = page.find(start, at)) {
        at += start.size();
        blocks.push_back(page.substr(at, page.find("```", at) - at));
    }
    return blocks;
}

std::string Trimmed(const std::string& text)
{
    const auto first = text.find_first_not_of(" \r");
    return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(" \r") - first + 1);
}

Cells CellsOf(const std::string& row)
{
    Cells cells;
    std::istringstream parts(row.substr(1)); // after the first bar
    for (std::string part; std::getline(parts, part, '|');) cells.push_back(Trimmed(part));
    return cells;
}

std::vector<Cells> RowsOf(const std::string& text)
{
    std::vector<Cells> rows;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        if (line.starts_with("|")) rows.push_back(CellsOf(line));
    return rows;
}

// The first table under each heading of the third level, by heading: each such heading names a record.
struct Place {
    std::string page;
    std::vector<Cells> table;
};

std::multimap<std::string, Place> DocumentedRecords()
{
    std::multimap<std::string, Place> places;
    for (const fs::path& page : FilesIn(Source("docs/format"), ".md")) {
        Place* open = nullptr;
        std::istringstream lines(ReadText(page));
        for (std::string line; std::getline(lines, line);) {
            if (line.starts_with("### "))
                open = &places.insert({Trimmed(line.substr(4)), {page.filename().string(), {}}})->second;
            else if (open != nullptr && line.starts_with("|"))
                open->table.push_back(CellsOf(line));
            else if (open != nullptr && (line.starts_with("#") || !open->table.empty()))
                open = nullptr;
        }
    }
    return places;
}

// How the pages write the code of a kind of chunk.
std::string CodePattern(const ChunkFacts& facts)
{
    const auto code = [&facts](int number) { return Trimmed(ToUtf8(FourCCToString(ChunkCode(facts.kind, number)))); };
    if (facts.number == ChunkNumber::None) return code(0);
    if (facts.number != ChunkNumber::Hexadecimal) return code(0) + " to " + code(facts.highest);
    return code(0) + " to " + code(15) + ", then " + code(facts.highest) + " again";
}

// One line per kind of chunk and list that holds it: "CONF > chunk VERS, 1025".
std::set<std::string> PlacesOfChunks()
{
    std::set<std::string> places;
    for (const ChunkFacts& list : AllChunkFacts()) {
        const std::string parent = CodePattern(list) + " > ";
        if (list.content == ChunkContent::FieldsAndChunks) places.insert(parent + "bare ");
        for (const ChunkFacts& facts : AllChunkFacts()) {
            if (!facts.parents.Has(list.kind)) continue;
            const bool isVersion = facts.kind == ChunkKind::Version;
            places.insert(parent + (facts.IsList() ? "list " : "chunk ") + CodePattern(facts) +
                          (isVersion ? ", " + std::to_string(list.version) : ""));
        }
    }
    return places;
}

// The same by the tree of a page, with the rows without dots in roots.
std::multiset<std::string> DocumentedPlaces(const std::string& page, std::set<std::string>& roots)
{
    std::multiset<std::string> places;
    const std::string text = ReadText(Source("docs/format/" + page));
    const auto table = text.find("\n| node |");
    std::vector<std::string> codes; // of the lists around a row
    std::vector<Cells> rows = RowsOf(text.substr(table, text.find("\n\n", table) - table));
    rows.erase(rows.begin(), rows.begin() + 2); // the heads of the columns
    for (const Cells& row : rows) {
        const std::size_t depth = std::min(row[0].find_first_not_of('.'), row[0].size());
        const std::string& code = row[2];
        std::string place = row[1] + ' ' + code;
        if (depth == 0) roots.insert(place);
        if (code == "VERS") place += ", " + std::to_string(std::stoul(row.back(), nullptr, 0));
        codes.resize(depth);
        if (depth != 0) places.insert(codes.back() + " > " + place);
        codes.push_back(code);
    }
    return places;
}

} // namespace

TEST(FormatPages, TreesAreTheTableOfChunks)
{
    std::set<std::string> roots;
    std::multiset<std::string> documented;
    for (const char* page : {"README.md", "settings.md", "recordings.md"})
        documented.merge(DocumentedPlaces(page, roots));
    const std::set<std::string> wholeAndBranches{"RIFF ZMXF", "list CONF", "list RCRD", "list TRAN"};
    EXPECT_EQ(roots, wholeAndBranches);
    const std::set<std::string> places = PlacesOfChunks();
    for (const std::string& place : places) EXPECT_EQ(documented.count(place), 1) << "in docs/format: " << place;
    for (const std::string& place : documented) EXPECT_TRUE(places.contains(place)) << "not in the code: " << place;
}

TEST(FormatPages, TablesAreTheFieldListsOfTheRecords)
{
    const auto places = DocumentedRecords();
    for (const RecordOutline& record : AllRecords()) {
        const std::vector<Cells> outline = RowsOf(record.Table());
        const auto [first, last] = places.equal_range(record.name());
        if (std::distance(first, last) != 1) {
            ADD_FAILURE() << "\"### " << record.name() << "\" stands " << std::distance(first, last)
                          << " times in docs/format, and once is right. Its table:\n"
                          << record.Table();
            continue;
        }
        std::vector<Cells> page = first->second.table;
        for (Cells& cells : page) cells.resize(kOutlineColumns);
        EXPECT_TRUE(page == outline) << "docs/format/" << first->second.page << ", table of " << record.name()
                                     << ", should begin with these columns:\n"
                                     << record.Table();
    }
}

TEST(FormatPages, HeadingsAndListAreComplete)
{
    std::vector<std::string> known;
    for (const RecordOutline& record : AllRecords()) known.push_back(record.name());
    const auto isKnown = [&known](const std::string& name) {
        return std::count(known.begin(), known.end(), name) == 1;
    };

    for (const auto& [heading, place] : DocumentedRecords())
        EXPECT_TRUE(isKnown(heading)) << "docs/format/" << place.page << ": \"### " << heading << "\" is no record";

    const std::regex declaration("kRecordName = \"(\\w+)\"");
    for (const fs::path& header : FilesIn(Source("zelmresult"), ".h")) {
        const std::string text = ReadText(header);
        for (std::sregex_iterator match(text.begin(), text.end(), declaration), end; match != end; ++match)
            EXPECT_TRUE(isKnown((*match)[1])) << header << ": add " << (*match)[1] << " to AllRecords in " __FILE__;
    }
}

// The examples are built and run, so what a page shows compiles and works as long as it is a piece of one.
TEST(Pages, ShowPiecesOfExamples)
{
    std::string examples;
    for (const fs::path& example : FilesIn(Source("examples"), ".cpp")) examples += "\n" + ReadText(example);
    auto pages = FilesIn(Source("docs"), ".md");
    pages.push_back(Source("README.md"));
    const std::regex lineStart("(^|\n)(?=[^\n])");
    for (const fs::path& page : pages)
        for (const std::string& block : CppBlocksOf(ReadText(page))) {
            const auto isPieceAt = [&](const std::string& indentation) {
                return examples.find("\n" + std::regex_replace(block, lineStart, "$1" + indentation)) !=
                       std::string::npos;
            };
            EXPECT_TRUE(isPieceAt("") || isPieceAt("    ")) << page << ": no file in examples has\n" << block;
        }
}
