// The pages in docs/format against the field lists of the records, and the README against its example.

#include "zelmresult/recordings/track_records.h"
#include "zelmresult/storage/record_io.h"
#include "zelmresult/zelmresult.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
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

// Every record of the format, one line each.
std::vector<RecordOutline> AllRecords()
{
    return {
        OutlineOf<FileHeaderMmioReaderWriter>(),
        OutlineOf<ProjectInfoMmioReaderWriter>(),
        OutlineOf<CHardInfoMmioReaderWriter>(),
        OutlineOf<CResultHeader>(),
        OutlineOf<CEquationDimMmioReaderWriter>(),
        OutlineOf<CUniteMmioReaderWriter>(),
        OutlineOf<CGrandeurMmioReaderWriter>(),
        OutlineOf<CResult, CScalar>(),
        OutlineOf<CScalar>(),
        OutlineOf<CVector>(),
        OutlineOf<CDoubleResult>(),
        OutlineOf<CRegXAxis>(),
        OutlineOf<CBroadBand>(),
        OutlineOf<CGlobalLevel>(),
        OutlineOf<CSuiviOrdre>(),
        OutlineOf<COrderTracking, CRegOrderTrack>(),
        OutlineOf<CRegOrderTrack>(),
        OutlineOf<CRefOrderTrack>(),
        OutlineOf<CCompressedVector>(),
        OutlineOf<CCompressedScalar>(),
        OutlineOf<CRegVector>(),
        OutlineOf<CReferencedAxis>(),
        OutlineOf<CRefVector>(),
        OutlineOf<CVectorRef>(),
        OutlineOf<CWaterfall>(),
        OutlineOf<CWtfOctave>(),
        OutlineOf<CWaterfallRef>(),
        OutlineOf<CRefWaterfall>(),
        OutlineOf<CReglageInfoData>(),
        OutlineOf<CReglageData, CBooleenData>(),
        OutlineOf<CBooleenData>(),
        OutlineOf<CActionData>(),
        OutlineOf<CChaineData>(),
        OutlineOf<CSelectionSignalFileData>(),
        OutlineOf<CScalaireData>(),
        OutlineOf<CWinTuningData>(),
        OutlineOf<CIntegerScalarData>(),
        OutlineOf<CListeData>(),
        OutlineOf<CReglageIdnData>(),
        OutlineOf<CMatriceData>(),
        OutlineOf<CMultiSourcesData>(),
        OutlineOf<CWtfSourceData>(),
        OutlineOf<CTableauData>(),
        OutlineOf<CVirtualTachoData>(),
        OutlineOf<CWaterfallFRFInfo>(),
        OutlineOf<CRecordHeader>(),
        OutlineOf<CFileInfo>(),
        OutlineOf<CFileBlockInfo>(),
        OutlineOf<CLIDN>(),
        OutlineOf<CITrack>(),
        OutlineOf<TrackRecord<TrackChunk::Info>>(),
        OutlineOf<TrackRecord<TrackChunk::Loca>>(),
        OutlineOf<TrackRecord<TrackChunk::Ovld>>(),
        OutlineOf<TrackRecord<TrackChunk::Xuni>>(),
        OutlineOf<TrackRecord<TrackChunk::Yuni>>(),
        OutlineOf<TrackRecord<TrackChunk::Vuni>>(),
        OutlineOf<TrackRecord<TrackChunk::Corr>>(),
    };
}

using Cells = std::vector<std::string>;
constexpr std::size_t kOutlineColumns = 5; // those behind them are the page's own

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

std::string Trimmed(const std::string& text)
{
    const auto first = text.find_first_not_of(" \r");
    return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(" \r") - first + 1);
}

Cells CellsOf(const std::string& row)
{
    Cells cells;
    std::istringstream parts(row.substr(1)); // behind the first bar
    for (std::string part; std::getline(parts, part, '|');) cells.push_back(Trimmed(part));
    return cells;
}

std::string RowOf(const Cells& cells)
{
    std::string row = "|";
    for (const std::string& cell : cells) row += (cell.empty() ? std::string(" ") : " " + cell + " ") + "|";
    return row + "\n";
}

std::vector<Cells> RowsOf(const std::string& text)
{
    std::vector<Cells> rows;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        if (line.starts_with("|")) rows.push_back(CellsOf(line));
    return rows;
}

Cells FirstFive(Cells cells)
{
    cells.resize(kOutlineColumns);
    return cells;
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

// The outline's table with what the page says behind it, so that a page can be mended by pasting.
std::string TableToPaste(const std::vector<Cells>& outline, const std::vector<Cells>& page)
{
    std::string table;
    for (Cells cells : outline) {
        const auto same = std::find_if(page.begin(), page.end(), [&](const Cells& row) {
            return row.size() > kOutlineColumns && row[0] == cells[0] && row[1] == cells[1];
        });
        if (same != page.end())
            cells.insert(cells.end(), same->begin() + kOutlineColumns, same->end());
        else if (!page.empty() && page[0].size() > kOutlineColumns)
            cells.emplace_back();
        table += RowOf(cells);
    }
    return table;
}

} // namespace

TEST(FormatPages, TablesAreTheFieldListsOfTheRecords)
{
    const auto places = DocumentedRecords();
    for (const RecordOutline& record : AllRecords()) {
        const std::vector<Cells> outline = RowsOf(record.Table());
        const auto [first, last] = places.equal_range(record.name());
        if (std::distance(first, last) != 1) {
            ADD_FAILURE() << "\"### " << record.name() << "\" stands " << std::distance(first, last)
                          << " times in docs/format, and once is right. Its table:\n"
                          << TableToPaste(outline, {});
            continue;
        }
        std::vector<Cells> page;
        for (const Cells& cells : first->second.table) page.push_back(FirstFive(cells));
        EXPECT_TRUE(page == outline) << "docs/format/" << first->second.page << ", table of " << record.name()
                                     << ", should be:\n"
                                     << TableToPaste(outline, first->second.table);
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

TEST(Readme, ExampleIsTheProgramThatIsTested)
{
    const std::string program = ReadText(Source("examples/first_document.cpp"));
    const std::string start = "int main()\n{\n";
    const auto from = program.find(start);
    ASSERT_NE(from, std::string::npos);
    const auto body = program.substr(from + start.size(), program.rfind("}\n") - from - start.size());
    const std::string shown = "```cpp\n" + std::regex_replace(body, std::regex("(^|\n)    "), "$1") + "```\n";
    EXPECT_NE(ReadText(Source("README.md")).find(shown), std::string::npos) << "README.md lacks\n" << shown;
}
