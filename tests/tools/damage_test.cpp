// Damaged documents: what verify says of them, and what salvage brings back.

#include "tests/builders/memory_file.h"
#include "tests/tools/run_zmxf.h"
#include "tools/zmxf/chunks/chunk_tree.h"
#include "tools/zmxf/chunks/read_trial.h"
#include "tools/zmxf/chunks/salvage.h"
#include "tools/zmxf/chunks/verification.h"

#include <cstring>
#include <fstream>
#include <functional>
#include <gmock/gmock.h>

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
        if (chunk.role != Role::Bare && CodeText(chunk.Name()) == code && n-- == 0)
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

struct Damaged {
    const char* name;
    std::function<void(Bytes&)> damage;
    int status;           // of verify
    const char* told;     // in what verify prints
    std::size_t kept = 3; // results behind salvage
    std::size_t quantities = 3;
};

const std::vector<Damaged>& damagedDocuments()
{
    static const std::vector<Damaged> documents{
        {"nothing is wrong", [](Bytes&) {}, 0, "whole, 3 results"},
        {"cut in the data of the last result", [](Bytes& b) { b.resize(chunkAt(b, "2") + 50); }, 3,
         "the file ends after", 2},
        {"cut in a header", [](Bytes& b) { b.resize(chunkAt(b, "INFO", 3) + 30); }, 3, "INFO tells", 1},
        {"cut in the quantities", [](Bytes& b) { b.resize(chunkAt(b, "0002") + 20); }, 3, "0 of 0 results", 0, 2},
        {"bytes behind the end", [](Bytes& b) { b += "some more bytes"; }, 3, "behind the document"},
        {"the root is open", [](Bytes& b) { setSize(b, 0, 0); }, 3, "ZMXF is open"},
        {"the root is too small", [](Bytes& b) { setSize(b, 0, 100); }, 3, "goes on behind"},
        {"the root is too large", [](Bytes& b) { setSize(b, 0, 100000); }, 3, "the file ends after"},
        {"the first bytes are lost", [](Bytes& b) { b.replace(0, 12, 12, '\0'); }, 3, "head of the form ZMXF"},
        {"a system is open", [](Bytes& b) { setSize(b, chunkAt(b, "SYS0"), 0); }, 3, "SYS0 is open"},
        {"the head of a system is lost", [](Bytes& b) { b.replace(chunkAt(b, "SYS0"), 12, 12, '\xEE'); }, 3,
         "no chunk"},
        {"a list of results is too large", [](Bytes& b) { setSize(b, chunkAt(b, "RESU"), 2000); }, 3,
         "RESU tells a size"},
        {"a list of results is too small", [](Bytes& b) { setSize(b, chunkAt(b, "RESU"), 100); }, 3, "RESU"},
        {"the head of a list of results is lost", [](Bytes& b) { b.replace(chunkAt(b, "RESU"), 12, 12, '\x7F'); }, 3,
         "RESU is damaged or missing"},
        {"a result without data", [](Bytes& b) { remove(b, chunkAt(b, "1")); }, 3, "result 1 has no data 1", 2},
        {"data without a header", [](Bytes& b) { remove(b, chunkAt(b, "INFO", 2)); }, 3, "has no header", 2},
        {"data that is there twice", [](Bytes& b) { b[chunkAt(b, "1")] = '0'; }, 3, "is there twice", 2},
        {"data of size 0", [](Bytes& b) { setSize(b, chunkAt(b, "0"), 0); }, 3, "0 is open", 2},
        {"data whose record is cut",
         [](Bytes& b) {
             b.erase(chunkAt(b, "0") + 100, 60);
             setSize(b, chunkAt(b, "0"), 236 - 60);
         },
         3, "can't be read", 2},
        {"a quantity is missing", [](Bytes& b) { remove(b, chunkAt(b, "0001")); }, 3, "quantity 1 is missing", 3, 2},
        {"the last quantity is missing", [](Bytes& b) { remove(b, chunkAt(b, "0002")); }, 3, "names the quantity 0002",
         3, 2},
        {"a quantity of a size that leads astray", [](Bytes& b) { setSize(b, chunkAt(b, "0001"), 60); }, 3,
         "behind ZMXF/UNIT/0001 are no chunk"},
        {"zeros in a quantity", [](Bytes& b) { b.replace(chunkAt(b, "0000") + 8, 60, 60, '\0'); }, 3,
         "CGrandeur of version 0", 3, 2},
        {"all quantities are lost",
         [](Bytes& b) {
             const auto at = chunkAt(b, "UNIT");
             b.replace(at, 8 + sizeAt(b, at), 8 + sizeAt(b, at), '\0');
         },
         3, "has no UNIT", 3, 0},
        {"systems that are not counted on", [](Bytes& b) { b[b.find("SYS1") + 3] = '5'; }, 3, "system 1 is missing"},
        {"HEAD is lost", [](Bytes& b) { remove(b, chunkAt(b, "HEAD")); }, 3, "ZMXF has no HEAD"},
        {"HEAD names no results", [](Bytes& b) { b[chunkAt(b, "HEAD") + 12] = 0; }, 3, "doesn't name"},
        {"the hardware record is lost", [](Bytes& b) { remove(b, chunkAt(b, "HRDI")); }, 3, "has no HRDI"},
        {"a track without its identity", [](Bytes& b) { b[chunkAt(b, "INFO", 1)] = 'x'; }, 3, "has no INFO"},
        {"a track is missing", [](Bytes& b) { remove(b, chunkAt(b, "T000")); }, 3, "track 0 is missing"},
        {"a setting without a value", [](Bytes& b) { remove(b, chunkAt(b, "R2")); }, 3, "a setting without a value"},
        {"noise between two chunks", [](Bytes& b) { b.insert(chunkAt(b, "CONF"), "noise that nobody wrote"); }, 3,
         "are no chunk"},
        {"a chunk of a later version",
         [](Bytes& b) {
             b.insert(chunkAt(b, "HRDI"), Bytes("NEWS\x04\0\0\0news", 12));
             setSize(b, 0, sizeAt(b, 0) + 12);
         },
         0, "NEWS is no chunk that this version knows"},
        {"a result of a later kind",
         [](Bytes& b) {
             b[chunkAt(b, "INFO", 2) + 10] = '\x7F';
             b[chunkAt(b, "INFO", 2) + 11] = '\x7F';
         },
         0, "a load passes over"},
        {"a sound", [](Bytes& b) { b.replace(8, 4, "WAVE"); }, 4, "no result document"},
        {"an empty file", [](Bytes& b) { b.clear(); }, 4, "no result document"},
    };
    return documents;
}

// The file as it stands when a save has written that many bytes: chunks that aren't left yet tell 0.
Bytes interrupted(const Bytes& whole, const Chunk& chunk, std::size_t written)
{
    Bytes bytes = whole.substr(0, written);
    const std::function<void(const Chunk&)> open = [&](const Chunk& c) {
        if (c.role != Role::Bare && c.offset + 8 <= static_cast<std::int64_t>(written) &&
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
    for (const Damaged& document : damagedDocuments()) {
        SCOPED_TRACE(document.name);
        Bytes bytes = golden();
        document.damage(bytes);
        write(bad, bytes);
        const Outcome verified = zmxf({"verify", bad});
        EXPECT_EQ(verified.status, document.status) << verified.out << verified.err;
        EXPECT_THAT(verified.out, HasSubstr(document.told));
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
        EXPECT_EQ(mended["results"], document.kept) << salvaged.out;
        const std::string quantities = "Kept " + std::to_string(document.quantities) + " of ";
        EXPECT_THAT(salvaged.out, HasSubstr(document.quantities != 0 ? quantities : std::string("Kept ")));
    }
    write(bad, golden());
    ASSERT_EQ(zmxf({"salvage", bad, good}).status, 0);
    EXPECT_EQ(readDiskFile(good), golden()) << "what is whole stays as it is, byte for byte";
    expectFailure(zmxf({"salvage", bad, bad}), 1, "it is the input");
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
        ASSERT_TRUE(CanBeLoaded(good));
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
