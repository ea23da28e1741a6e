// Damaged documents: what verify says of them, and what salvage brings back.

#include "tests/builders/memory_file.h"
#include "tests/tools/run_zmxf.h"
#include "tools/zmxf/damage/chunk_tree.h"
#include "tools/zmxf/damage/load_outcome.h"
#include "tools/zmxf/damage/record_probe.h"
#include "tools/zmxf/damage/salvage.h"
#include "tools/zmxf/damage/verification.h"

#include <cstring>
#include <fstream>
#include <functional>
#include <gmock/gmock.h>
#include <random>
#include <sstream>

namespace zmxf::test {

namespace {

using ::testing::HasSubstr;
using ZelmResult::test::readDiskFile;
using ZelmResult::test::TempFolder;
using Bytes = std::string;

void write(const std::string& path, const Bytes& bytes) { std::ofstream(path, std::ios::binary) << bytes; }

// Three systems with quantities, a recording of two tracks, three results, settings and transducers.
Bytes golden() { return readDiskFile(std::string(ZELMRESULT_TEST_DATA_DIR) + "/whole_branches.zmxf"); }

// Where the n-th chunk of a code, or list of a type, begins.
std::size_t chunkAt(const Bytes& bytes, const std::string& code, int n = 0)
{
    std::size_t found = Bytes::npos;
    const std::function<void(const Chunk&)> look = [&](const Chunk& chunk) {
        if (!chunk.IsBareBytes() && CodeText(chunk.Name()) == code && n-- == 0)
            found = static_cast<std::size_t>(chunk.offset);
        for (const Chunk& child : chunk.children) look(child);
    };
    look(ReadChunkTree(bytes).root);
    return found;
}

std::uint32_t sizeAt(const Bytes& bytes, std::size_t chunk)
{
    std::uint32_t size = 0;
    std::memcpy(&size, bytes.data() + chunk + 4, sizeof size);
    return size;
}

void setSize(Bytes& bytes, std::size_t chunk, std::uint32_t size)
{
    std::memcpy(bytes.data() + chunk + 4, &size, sizeof size);
}

void remove(Bytes& bytes, std::size_t chunk) { bytes.erase(chunk, (8 + sizeAt(bytes, chunk) + 1) / 2 * 2); }

// What of the golden document salvage brings back.
struct Kept {
    int results = 3;
    int quantities = 3;
    int settings = 16;
    int tracks = 2;
    int transducers = 2;

    bool operator==(const Kept&) const = default;
    friend void PrintTo(const Kept& kept, std::ostream* out)
    {
        *out << kept.results << " results, " << kept.quantities << " quantities, " << kept.settings << " settings, "
             << kept.tracks << " tracks, " << kept.transducers << " transducers";
    }
};

struct Damaged {
    const char* name;
    std::function<void(Bytes&)> damage;
    int status;           // of verify
    const char* reported; // in what verify prints
    Kept kept = {};
};

// The number before " of N things" in what salvage prints.
int keptOf(const std::string& out, const std::string& things)
{
    std::istringstream lines(out);
    for (std::string line; std::getline(lines, line);)
        if (line.starts_with("Kept ") && line.ends_with(' ' + things)) return std::stoi(line.substr(5));
    return 0;
}

std::vector<Damaged> damagedFrames()
{
    return {
        {"nothing is wrong", [](Bytes&) {}, 0, "whole, 3 results"},
        {"cut in a header", [](Bytes& b) { b.resize(chunkAt(b, "INFO", 3) + 30); }, 3, "INFO claims", {1, 3, 0, 2, 0}},
        {"the root is open", [](Bytes& b) { setSize(b, 0, 0); }, 3, "ZMXF is open"},
        {"the first bytes are lost", [](Bytes& b) { b.replace(0, 12, 12, '\0'); }, 3, "head of the form ZMXF"},
        {"the head of a system is lost", [](Bytes& b) { b.replace(chunkAt(b, "SYS0"), 12, 12, '\xEE'); }, 3,
         "the head of ZMXF/SYS0 is damaged"},
    };
}

std::vector<Damaged> damagedResults()
{
    return {
        {"a result without data", [](Bytes& b) { remove(b, chunkAt(b, "1")); }, 3, "result 1 has no data 1", {2}},
        {"data without a header", [](Bytes& b) { remove(b, chunkAt(b, "INFO", 2)); }, 3, "has no header", {2}},
        {"data that is there twice", [](Bytes& b) { b[chunkAt(b, "1")] = '0'; }, 3, "is there twice", {3}},
        {"data whose record is cut",
         [](Bytes& b) {
             b.erase(chunkAt(b, "0") + 100, 60);
             setSize(b, chunkAt(b, "0"), 236 - 60);
         },
         3,
         "can't be read",
         {2}},
        {"a quantity is missing", [](Bytes& b) { remove(b, chunkAt(b, "0001")); }, 3, "quantity 1 is missing", {3, 2}},
        {"a quantity of a size that leads astray",
         [](Bytes& b) { setSize(b, chunkAt(b, "0001"), 60); },
         3,
         "after ZMXF/UNIT/0001 are no chunk",
         {3, 2}},
        {"zeros in a quantity",
         [](Bytes& b) { b.replace(chunkAt(b, "0000") + 8, 60, 60, '\0'); },
         3,
         "CGrandeur of version 0",
         {3, 2}},
    };
}

std::vector<Damaged> damagedRest()
{
    return {
        {"HEAD is lost", [](Bytes& b) { remove(b, chunkAt(b, "HEAD")); }, 3, "ZMXF has no HEAD"},
        {"a track without its identity",
         [](Bytes& b) { b[chunkAt(b, "INFO", 1)] = 'x'; },
         3,
         "has no INFO",
         {3, 3, 16, 1}},
        {"a setting without a value",
         [](Bytes& b) { remove(b, chunkAt(b, "R2")); },
         3,
         "a setting without a value",
         {3, 3, 15}},
        {"noise between two chunks", [](Bytes& b) { b.insert(chunkAt(b, "CONF"), "noise that nobody wrote"); }, 3,
         "are no chunk"},
        {"an empty chunk of a later version",
         [](Bytes& b) {
             b.insert(chunkAt(b, "HRDI"), Bytes("NEWS\0\0\0\0", 8));
             setSize(b, 0, sizeAt(b, 0) + 8);
         },
         0, "NEWS is no chunk that this version knows"},
        {"a track with an empty chunk of which nothing is read",
         [](Bytes& b) {
             const Bytes hard("HARD\0\0\0\0", 8);
             b.insert(chunkAt(b, "OVLD"), hard);
             for (const char* list : {"T000", "RCRD", "SYS0", "ZMXF"})
                 setSize(b, chunkAt(b, list), sizeAt(b, chunkAt(b, list)) + 8);
         },
         0, "whole, 3 results"},
        {"a result of a later kind",
         [](Bytes& b) {
             b[chunkAt(b, "INFO", 2) + 10] = '\x7F';
             b[chunkAt(b, "INFO", 2) + 11] = '\x7F';
         },
         0, "loads skip"},
    };
}

std::vector<Damaged> spoiledBytes()
{
    return {
        {"a recording that ends between two tracks",
         [](Bytes& b) {
             const auto list = chunkAt(b, "RCRD");
             setSize(b, list, static_cast<std::uint32_t>(chunkAt(b, "T001") - list - 8));
         },
         3, "RCRD continues after its end"},
        {"a byte is lost in the data of a result",
         [](Bytes& b) { b.erase(chunkAt(b, "1") + 100, 1); },
         3,
         "size",
         {3, 3, 16, 2, 2}},
        {"a header that names the data of another", [](Bytes& b) { b[b.find("1   ", chunkAt(b, "INFO", 3))] = '0'; }, 3,
         "names the data of another"},
        {"a quantity that another one is made of",
         [](Bytes& b) { b.replace(chunkAt(b, "0000") + 12, 40, 40, '\xFF'); },
         3,
         "0000 in UNIT can't be read",
         {3, 2}},
        {"a setting of no known kind",
         [](Bytes& b) { b[chunkAt(b, "SETT", 3) + 16] = '\x7D'; },
         3,
         "of an unknown kind",
         {3, 3, 15}},
        {"an identifier of settings is lost", [](Bytes& b) { remove(b, chunkAt(b, "IDNU", 1)); }, 3,
         "isn't what the identifier"},
        {"the version of a module is lost", [](Bytes& b) { remove(b, chunkAt(b, "M3") + 12); }, 3, "M3 has a size"},
        {"hardware full of noise", [](Bytes& b) { b.replace(chunkAt(b, "HRDI") + 10, 4, 4, '\x7F'); }, 3,
         "HRDI in ZMXF can't be read: a count asks for more than the file still holds (in HRDI, at 0x"},
        {"a quantity that is made of itself",
         [](Bytes& b) { b[b.find("0000", chunkAt(b, "0002") + 8) + 3] = '2'; },
         3,
         "a load as a whole ends here: quantity 0002 can't be read, things lie inside each other too deep, or in "
         "themselves (in 0002, at 0x",
         {3, 2}},
        {"a sound", [](Bytes& b) { b.replace(8, 8, "WAVEfmt "); }, 4, "no result document"},
    };
}

// The file as it is when a save has written that many bytes: chunks that aren't left yet have size 0.
Bytes interrupted(const Bytes& whole, const Chunk& chunk, std::size_t written)
{
    Bytes bytes = whole.substr(0, written);
    const std::function<void(const Chunk&)> open = [&](const Chunk& c) {
        if (!c.IsBareBytes() && c.offset + 8 <= static_cast<std::int64_t>(written) &&
            c.end > static_cast<std::int64_t>(written))
            setSize(bytes, static_cast<std::size_t>(c.offset), 0);
        for (const Chunk& child : c.children) open(child);
    };
    open(chunk);
    return bytes;
}

} // namespace

TEST(Damage, IsToldAndTheRestSalvaged)
{
    const TempFolder folder;
    const std::string bad = folder.file("bad.zmxf");
    const std::string good = folder.file("good.zmxf");
    std::vector<Damaged> documents;
    for (const auto& some : {damagedFrames(), damagedResults(), damagedRest(), spoiledBytes()})
        documents.insert(documents.end(), some.begin(), some.end());
    for (const Damaged& document : documents) {
        SCOPED_TRACE(document.name);
        Bytes bytes = golden();
        document.damage(bytes);
        write(bad, bytes);
        const Outcome verified = zmxf({"verify", bad});
        EXPECT_EQ(verified.status, document.status) << verified.out << verified.err;
        EXPECT_THAT(verified.out, HasSubstr(document.reported));
        const Outcome salvaged = zmxf({"salvage", bad, good});
        EXPECT_EQ(readDiskFile(bad), bytes) << "never in place";
        EXPECT_EQ(zmxf({"dump", bad, "--fields"}).status, document.status == 4 ? 1 : 0);
        if (document.status == 4) {
            EXPECT_EQ(salvaged.status, 1);
            continue;
        }
        ASSERT_EQ(salvaged.status, 0) << salvaged.err;
        const auto mended = zmxf({"verify", good, "--json"}).json();
        EXPECT_EQ(mended["verdict"], "whole") << mended.dump(1);
        const std::string& out = salvaged.out;
        const Kept kept{keptOf(out, "results"), keptOf(out, "quantities"), keptOf(out, "settings"),
                        keptOf(out, "tracks"), keptOf(out, "transducers")};
        EXPECT_EQ(kept, document.kept) << out;
        EXPECT_EQ(mended["results"], kept.results);
        const Bytes once = readDiskFile(good);
        ASSERT_EQ(zmxf({"salvage", good, bad}).status, 0);
        EXPECT_EQ(readDiskFile(bad), once) << "what was salvaged is whole";
    }
    write(bad, golden());
    ASSERT_EQ(zmxf({"salvage", bad, good}).status, 0);
    EXPECT_EQ(readDiskFile(good), golden()) << "what is whole stays as it is, byte for byte";
    expectFailure(zmxf({"salvage", bad, bad}), 1, "it is the input");
}

// Bytes and sizes changed, cut out, put in and swapped at random places.
void damageAtRandom(Bytes& bytes, std::mt19937& random)
{
    const auto below = [&random](std::size_t n) { return n == 0 ? 0 : random() % n; };
    const std::size_t at = below(bytes.size());
    switch (below(6)) {
    case 0: bytes[at] = static_cast<char>(bytes[at] ^ 1 << below(8)); break;
    case 1: bytes.replace(at, std::min<std::size_t>(below(600), bytes.size() - at), below(64), '\0'); break;
    case 2: bytes.erase(at, below(20)); break;
    case 3: bytes.insert(at, bytes.substr(below(bytes.size()), below(200))); break;
    case 4: bytes.resize(std::max<std::size_t>(at, 300)); break;
    default:
        if (at + 8 < bytes.size()) setSize(bytes, at - at % 2, static_cast<std::uint32_t>(below(100)));
    }
}

TEST(Damage, WhatIsSalvagedIsWholeAndStays)
{
    constexpr unsigned trials = 150;
    const TempFolder folder;
    const std::string bad = folder.file("bad.zmxf");
    const std::string good = folder.file("good.zmxf");
    const std::string again = folder.file("again.zmxf");
    for (unsigned seed = 0; seed < trials; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        Bytes bytes = golden();
        for (std::size_t n = 1 + random() % 4; n > 0; --n) damageAtRandom(bytes, random);
        write(bad, bytes);
        const Verification found = Verify(bad);
        if (found.verdict == Verification::Verdict::NoDocument) continue;
        const auto explains = [](const Damage& d) { return d.text.starts_with("a load as a whole "); };
        EXPECT_EQ(std::any_of(found.damages.begin(), found.damages.end(), explains), !found.isLoaded);
        const Salvaged salvaged = Salvage(bad, good);
        const Verification mended = Verify(good);
        EXPECT_EQ(mended.verdict, Verification::Verdict::Whole)
            << (mended.damages.empty() ? "" : mended.damages.front().text);
        (void)Salvage(good, again);
        EXPECT_EQ(readDiskFile(again), readDiskFile(good)) << "what was salvaged is salvaged as it is";
        EXPECT_GE(mended.readable, found.readable) << "results that could be read";
        if (found.verdict == Verification::Verdict::Whole) {
            EXPECT_EQ(salvaged.lost, std::vector<std::string>());
        }
    }
}

TEST(Damage, InterruptedSavesGiveBackWhatWasWritten)
{
    const TempFolder folder;
    const std::string bad = folder.file("bad.zmxf");
    const std::string good = folder.file("good.zmxf");
    const Bytes whole = readDiskFile(std::string(ZELMRESULT_TEST_DATA_DIR) + "/whole.zmxf");
    const ChunkTree tree = ReadChunkTree(whole);
    for (std::size_t written = 24; written <= whole.size(); ++written) {
        SCOPED_TRACE(written);
        std::size_t results = 0;
        for (const char* data : {"0", "1", "2"}) {
            const std::size_t at = chunkAt(whole, data);
            if (at + 8 + sizeAt(whole, at) <= written) ++results;
        }
        write(bad, interrupted(whole, tree.root, written));
        const Salvaged salvaged = Salvage(bad, good);
        std::size_t kept = 0;
        for (const Salvaged::Count& count : salvaged.counts)
            if (count.what == "results") kept = count.kept;
        ASSERT_EQ(kept, results);
        ASSERT_TRUE(TryToLoad(good, nullptr).isLoaded);
    }
}

TEST(Damage, DumpShowsChunksAndFields)
{
    const std::string document = std::string(ZELMRESULT_TEST_DATA_DIR) + "/whole_branches.zmxf";
    const std::string chunks = zmxf({"dump", document}).out;
    EXPECT_THAT(chunks, HasSubstr("       0x0  RIFF ZMXF  4574\n       0xC    VERS  2  version 512\n"));
    EXPECT_THAT(chunks, HasSubstr("0000  154  version 256\n"));
    EXPECT_EQ(chunks.find('='), std::string::npos);
    const std::string fields = zmxf({"dump", document, "--fields"}).out;
    EXPECT_THAT(fields, HasSubstr("quantityKey = \"key of pressure\"  (text)\n"));
    EXPECT_THAT(fields, HasSubstr("CUnite, version 256\n"));
    EXPECT_THAT(fields, HasSubstr("lastValue = 1  (f32)\n"));
    EXPECT_THAT(fields, HasSubstr("GrandeurLeft = 0000  (quantity)\n"));
}

} // namespace zmxf::test
