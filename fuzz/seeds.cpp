// Writes the inputs that the targets begin with into a folder per target below the given one: documents that hold every
// kind of result, records at every version, and the records of each document by themselves.

#include "fuzz/documents.h"
#include "fuzz/older_versions.h"
#include "tests/builders/record_check.h"
#include "tests/builders/samples.h"
#include "zelmresult/results/kinds.h"
#include "zelmresult/storage/chunk_codes.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <set>

using namespace ZelmResult;
using fuzz::Chunk;
using fuzz::Data;

namespace {

// The records that have had more than one version, with all of them but the newest.
const std::vector<std::pair<std::string, std::vector<std::uint16_t>>> kOlderVersions = {
    {"CResultHeader", {1, 2, 3, 4, 5, 6, 7, 8, 9, 15, 16, 17, 18, 19, 20, 21, 22}},
    {"CResult", {0, 1, 2, 3, 4}},
    {"CScalar", {0, 1}},
    {"CVector", {0}},
    {"CRegVector", {0, 1, 2}},
    {"CRefVector", {0, 1, 2, 3}},
    {"CBroadBand", {0, 1}},
    {"CGlobalLevel", {0, 1}},
    {"CSuiviOrdre", {0, 1}},
    {"CWtfOctave", {0, 1}},
    {"CWaterfall", {0}},
    {"CRefWaterfall", {0}},
    {"CHardInfo", {0x100}},
    {"CRecordHeader", {0x100, 0x200, 0x300, 0x301, 0x400}},
    {"CFileInfo", {0x100}},
    {"TrackInfo", {0x100}},
    {"TrackLocation", {0x100, 0x101}},
    {"CReglageData", {256}},
    {"CSelectionSignalFileData", {256}},
    {"CWtfSourceData", {256}},
    {"CScalaireData", {256}},
    {"CWinTuningData", {256}},
    {"CIntegerScalarData", {256}},
    {"CTableauData", {256}},
    {"CWaterfallFRFInfo", {256}},
};

class Seeds {
public:
    explicit Seeds(std::filesystem::path folder) : m_folder(std::move(folder)) {}

    void Add(const std::string& target, const std::string& head, const Data& record)
    {
        Data bytes(head.begin(), head.end());
        bytes.insert(bytes.end(), record.begin(), record.end());
        std::set<Data>& known = m_known[target];
        if (!known.insert(bytes).second) return;
        const auto folder = m_folder / target;
        std::filesystem::create_directories(folder);
        std::ofstream file(folder / std::to_string(known.size()), std::ios::binary);
        file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        m_good = m_good && file.good();
    }
    void AddDocument(const std::vector<Chunk>& chunks)
    {
        Add("document", "", fuzz::BytesOf(chunks));
        AddRecords(chunks);
    }
    void AddDocument(const Data& document) { AddDocument(fuzz::ChunksOf(document)); }
    [[nodiscard]] bool isGood() const { return m_good; }

private:
    // The records that targets read by themselves.
    void AddRecords(const std::vector<Chunk>& chunks)
    {
        CResultHeader header;
        Data type; // of the setting whose value follows
        for (const Chunk& chunk : chunks) {
            const Data whole = fuzz::BytesOf({chunk});
            const std::string name = NameOf(chunk);
            AddRecords(chunk.children);
            if (!type.empty()) Add("settings", {type.begin(), type.end()}, chunk.data);
            type.clear();
            if (name == "SETT") type.assign(chunk.data.end() - 4, chunk.data.end());
            if (name == "CONF") Add("settings", std::string(4, '\0'), whole);
            if (name == "INFO") (void)test::readFrom(chunk.data, test::reading(header));
            if (!chunk.isList() && chunk.code == header.GetChunkId()) AddResultData(header, chunk.data);
            if (name == "V000") Add("waterfalls", std::string("F\1\2\3\4", 5), chunk.data);
            if (name == "V000") Add("waterfalls", std::string("L\0\0\0\0", 5), whole);
            if (name == "RCRD") Add("recordings", "R", fuzz::BytesOf(chunk.children));
            if (name == "RCRD") Add("recordings", "S", fuzz::BytesOf(chunk.children));
            if (name == "ITRA") Add("recordings", "I", whole);
            if (name == "UNIT") Add("quantities", "L", fuzz::BytesOf(chunk.children));
            if (name == "0002") Add("quantities", "Q", fuzz::BytesOf({Chunk{0, 0, chunk.data, {}}}));
        }
    }
    void AddResultData(const CResultHeader& header, const Data& data)
    {
        const auto kind = static_cast<std::uint16_t>(header.GetProcessType());
        const auto dimension = static_cast<char>(header.GetWaterfallDimension());
        Add("results", {static_cast<char>(kind & 0xFFU), static_cast<char>(kind >> 8U), dimension}, data);
        if (kind == 2 && dimension == 2) Add("waterfalls", {'W', 1, 2, 0, -1}, data);
        if ((kind == 18 || kind == 131) && dimension == 2) Add("waterfalls", {'O', 1, 2, 0, -1}, data);
        if (kind == 42 && dimension == 1) Add("waterfalls", {'D', 0, 1, 2, 3}, data);
        if (kind == 42 && dimension == 5) Add("waterfalls", {'S', 0, 1, 2, 3}, data);
    }
    static std::string NameOf(const Chunk& chunk)
    {
        const std::uint32_t code = chunk.isList() ? chunk.type : chunk.code;
        return {reinterpret_cast<const char*>(&code), sizeof code};
    }

    std::filesystem::path m_folder;
    std::map<std::string, std::set<Data>> m_known;
    bool m_good = true;
};

// One document for each kind of result, in all its dimensions.
void AddKinds(Seeds& seeds)
{
    const auto last = static_cast<int>(ResultKind::All().back().numbers.last);
    for (int kind = 1; kind <= last; ++kind) {
        CZMXFFile document(true, false);
        for (const int dimension : {0, 1, 2, 5}) fuzz::AddResult(document, kind, dimension);
        seeds.AddDocument(fuzz::Saved(document));
    }
}

void AddVersions(Seeds& seeds, const Data& whole)
{
    const wstring path = u"whole";
    fuzz::Disk()[path] = whole;
    CZMXFFile document(true, false);
    fuzz::Require(document.Load(path.c_str(), ZMXFFileLoadScope::all()), "a sample loads");
    document.NeedToRemoveEverything(true);
    for (const auto& [record, versions] : kOlderVersions)
        for (const std::uint16_t version : versions) seeds.AddDocument(fuzz::Saved(document, {{record, version}}));
    const std::vector<Chunk> chunks = fuzz::ChunksOf(whole);
    for (std::uint16_t version = 0; version < 6; ++version) seeds.AddDocument(fuzz::WithAxesOfVersion(chunks, version));
    for (const auto version : std::initializer_list<std::uint16_t>{256, 512, 768, 1024})
        seeds.AddDocument(fuzz::WithSettingsOfVersion(chunks, version));
}

// What a host does is a byte or a few each: random ones, the same on every machine.
Data Chosen(std::minstd_rand& random, int bytes)
{
    Data data;
    for (int i = 0; i < bytes; ++i) data.push_back(static_cast<char>(random() & 0xFFU));
    return data;
}

void AddHosts(Seeds& seeds)
{
    constexpr int hosts = 60;
    constexpr int rooms = 9;
    std::minstd_rand random;
    for (int host = 1; host <= hosts; ++host) seeds.Add("built", "", Chosen(random, 8 * host));
    for (int host = 1; host <= hosts; ++host)
        for (char room = 0; room < rooms; ++room) seeds.Add("misuse", std::string(1, room), Chosen(random, 16 * host));
}

// What else the targets distinguish.
void AddOthers(Seeds& seeds)
{
    seeds.Add("quantities", "U", test::Bytes{}.u16(256).f32s({1, 0, 1, 20}).text(u"pascal").narrow("Pa").data());
    for (char which = 0; which < 3; ++which)
        for (char kind = 0; kind < 12; ++kind) {
            test::Bytes changes;
            for (std::uint16_t place = 1; place < 20; place += 6)
                changes.u8(static_cast<std::uint8_t>(kind)).u8(2).u16(place).u32(place * 5U);
            seeds.Add("structure", {which, 0, 0}, changes.data());
        }
    for (const float value : {0.0F, 1.25F, -3e-7F, 1e30F})
        for (const char flags : {'\x10', '\x2F', '\xFF'})
            seeds.Add("text", {2, 2, 0, flags},
                      test::Bytes{}.f32s({1000, 2, 3, 20}).zeros(6).f32(value).f32(0.001F).f32(0.001F).data());
}

// A recording in columns, after the choices of the target.
void AddCsv(Seeds& seeds)
{
    const auto add = [&seeds](const std::string& choices, const std::string& text) {
        seeds.Add("csv", choices, {text.begin(), text.end()});
    };
    add(std::string("\0\0\0\0", 4), "x [g],\"y, z (EU)\"\n1,-2.5e3\n\n3,+4D-1,\n5,6\n");
    add(std::string("\0\0\0\0", 4), "1;2,5\r\n3;4,5\r\n");
    add(std::string("\1\1\0\0\0", 5), "t [ms]\tx\n0\t1\n0.5\t2\n1\t3\n1.5\t4\n");
    add(std::string("\4\1\0\0\0", 5), "Time [ms]\tx\n0\t1\n0.5\t2\n1\t3\n1.5\t4\n");
    add(std::string("\1\1\2\2\1", 5), "made by\n0;1\n0,1;2\n0,21;3\n");
    add(std::string("\2\1\0\0\0", 5), "  1.5  0\n 2.5  1\n x 2\n");
}

// A function of a Universal File, with a few values as text or as bytes.
std::string UffFunction(const std::string& kind, const std::string& form, const std::string& values)
{
    return "    -1\n" + kind +
           "\nCasing\nrun \xFC\n18-Apr-16 13:49:58\nNONE\nNONE\n"
           "    1         0    0         0 Top                 1   3 NONE               0   0\n" +
           form +
           "\n        17    0    0    0 Time                 s\n"
           "        12    0    0    0 Acceleration         m/s2\n"
           "         0    0    0    0 NONE                 NONE\n"
           "         0    0    0    0 NONE                 NONE\n" +
           values + "\n    -1\n";
}

void AddUff(Seeds& seeds)
{
    const auto add = [&seeds](const std::string& text) { seeds.Add("uff", "", {text.begin(), text.end()}); };
    const std::string even = "         3         1  0.00000E+00  5.00000E-03  0.00000E+00";
    const std::string uneven = "         3         0  0.00000E+00  0.00000E+00  0.00000E+00";
    const std::string text = UffFunction("    58", "         2" + even, "  1.00000E+00 -2.50000D-01  3.00000+100");
    add(text);
    add("    -1\n   164\n         1  SI\n    -1\n" + text + text);
    add(UffFunction("    58", "         4" + uneven, " 0.0 1.0\n 0.1 2.0 0.2 3.0"));
    const std::string bytes = "\x01\x02\x03\x3F\x3F\x80\x01\x01\x05\x06\x07\x40";
    for (const char* order : {"1", "2"}) {
        const std::string kind = std::string("    58b     ") + order + "     2          11          12";
        add(UffFunction(kind, "         2" + even, bytes));
        add(UffFunction(kind, "         5" + even, bytes + bytes));
        add(UffFunction(kind, "         4" + uneven, bytes + bytes + bytes));
    }
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fputs("usage: fuzz_seeds FOLDER\n", stderr);
        return 1;
    }
    Seeds seeds(argv[1]);
    AddKinds(seeds);
    for (const char* name : {"whole.zmxf", "whole_lxf.zmxf", "whole_branches.zmxf"})
        seeds.AddDocument(test::DataFile(name));
    for (const Data& whole : fuzz::WholeDocuments()) {
        seeds.AddDocument(whole);
        AddVersions(seeds, whole);
    }
    AddHosts(seeds);
    AddOthers(seeds);
    AddCsv(seeds);
    AddUff(seeds);
    return seeds.isGood() ? 0 : 1;
}
