// Files that are damaged, or made to do harm. No operation may crash, and none may take more memory than is promised.

#include "tests/builders/counted_memory.h"
#include "tests/document/samples.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <random>
#include <string_view>

namespace ZelmResult {
namespace {

using namespace test;

constexpr std::size_t kMiB = 1048576;
const wstring kPath = u"f";

class Hostile : public ::testing::Test {
protected:
    // Runs an operation on the file and sees that it stays within the promise: what is read takes at most 16 times the
    // file plus 64 MiB. The rest is for what stands around it, such as the headers that a search remembers.
    template <class Operation>
    void Bounded(Operation operation)
    {
        const std::size_t before = g_most = g_held;
        operation();
        const std::size_t taken = g_most - before;
        EXPECT_LE(taken, 16 * disk[kPath].size() + 64 * kMiB + kAround) << "bytes for " << disk[kPath].size();
    }
    bool Loads(ZMXFFileLoadScope scope, bool isLXFFile = false)
    {
        bool loaded = false;
        Bounded([&] {
            CZMXFFile document(true, isLXFFile);
            loaded = document.Load(kPath.c_str(), scope);
            document.NeedToRemoveEverything(true);
            held = Summary(document);
        });
        return loaded;
    }
    void Fetch(CZMXFFile& reader, CResultHeader& header)
    {
        header.setFilename(kPath);
        CScalar scalar;
        std::int32_t number = 0;
        (void)reader.GetResultat(&scalar, &header, number);
        std::map<CGrandeur*, int> given;
        scalar.AddInvolvedGrandeur(given);
        for (const auto& entry : given) delete entry.first;
    }
    // Everything that can be done with a file.
    void DoAll()
    {
        (void)Loads(ZMXFFileLoadScope::all());
        (void)Loads(ZMXFFileLoadScope::all(), true);
        (void)Loads(ZMXFFileLoadScope::noconfig());
        (void)Loads(ZMXFFileLoadScope::singleResult(static_cast<std::int32_t>(CodeOf("1   "))));
        LookInto(3);
    }
    // Everything but loads. fetched bounds the results that are fetched one by one.
    void LookInto(std::size_t fetched)
    {
        CZMXFFile reader(false, false);
        Bounded([&] {
            std::vector<CResultHeader*> headers;
            (void)reader.GetResultHeaderListe(kPath.c_str(), headers);
            for (std::size_t i = 0; i < headers.size(); ++i) {
                if (i < fetched) Fetch(reader, *headers[i]);
                delete headers[i];
            }
        });
        Bounded([&] {
            CHardInfo info;
            (void)reader.GetHardInfo(kPath.c_str(), info);
        });
        (void)reader.HasRecordPreview(kPath.c_str());
    }
    // What a load gives, stored and loaded again, stays as it is.
    void ExpectStable()
    {
        std::vector<char> former = disk[kPath];
        std::vector<char> stored[2];
        for (std::vector<char>& bytes : stored) {
            CZMXFFile document(true, false);
            const bool loaded = document.Load(kPath.c_str(), ZMXFFileLoadScope::all());
            document.NeedToRemoveEverything(true);
            if (!loaded && &bytes == stored) return;
            ASSERT_TRUE(loaded);
            bytes = SavedBytes(document);
            disk[kPath] = bytes;
        }
        CZMXFFile last(true, false);
        EXPECT_TRUE(last.Load(kPath.c_str(), ZMXFFileLoadScope::all()));
        last.NeedToRemoveEverything(true);
        expectBytes(SavedBytes(last), AsBytes(stored[1]));
        disk[kPath] = former;
    }

    static constexpr std::size_t kAround = 4 * kMiB;
    MemoryDisk disk;
    UseBackend use{disk};
    std::string held; // by the document that was loaded last
};

TEST_F(Hostile, FilesCutAnywhere)
{
    const auto whole = DataFile("whole_references.zmxf");
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        disk[kPath].assign(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        DoAll();
        if (HasFailure()) FAIL() << "cut to " << length;
    }
}

TEST_F(Hostile, FilesSpoiledAtRandom)
{
    constexpr std::uint32_t kWords[] = {0,          1,          2,          7,          0xFF,       0xFFFF,
                                        0x10000,    0x7FFFFFFE, 0x7FFFFFFF, 0x80000000, 0xFFFFFFF7, 0xFFFFFFF8,
                                        0xFFFFFFFE, 0xFFFFFFFF, 0x20202030, 0x30303030, 0x39393939, 0x5453494C};
    const std::vector<char> wholes[] = {DataFile("whole.zmxf"), DataFile("whole_lxf.zmxf"),
                                        DataFile("whole_references.zmxf")};
    std::mt19937 random(20240229);
    const auto below = [&random](std::size_t limit) { return static_cast<std::size_t>(random()) % limit; };
    for (int round = 0; round < 3000; ++round) {
        std::vector<char> bytes = wholes[below(3)];
        for (std::size_t edits = 1 + below(3); edits > 0; --edits) {
            const auto place = bytes.begin() + static_cast<std::ptrdiff_t>(below(bytes.size() - 4));
            const auto length = static_cast<std::ptrdiff_t>(below(static_cast<std::size_t>(bytes.end() - place)) % 64);
            switch (below(5)) {
            case 0: *place = static_cast<char>(random()); break;
            case 1: *place = static_cast<char>(*place ^ (1 << below(8))); break;
            case 2: std::copy_n(reinterpret_cast<const char*>(&kWords[below(std::size(kWords))]), 4, place); break;
            case 3: bytes.erase(place, place + length); break;
            default: {
                const std::vector<char> copied(place, place + length);
                bytes.insert(bytes.begin() + static_cast<std::ptrdiff_t>(below(bytes.size())), copied.begin(),
                             copied.end());
            }
            }
        }
        disk[kPath] = bytes;
        DoAll();
        ExpectStable();
        if (HasFailure()) FAIL() << "round " << round;
    }
}

TEST_F(Hostile, FilesOfOneByte)
{
    for (const char byte : {'\0', '\x01', 'I', '\xFF'})
        for (const Bytes& start :
             {Bytes{}, fileOf(head(17, 0xFFFFFFFF), 0x200), fileOf(head(17, 4).list("UNIT", {}))}) {
            disk.Put(kPath, start);
            disk[kPath].resize(kMiB, byte);
            constexpr std::uint32_t size = kMiB - 8;
            if (start.size() > 0) std::copy_n(reinterpret_cast<const char*>(&size), 4, disk[kPath].begin() + 4);
            DoAll();
            EXPECT_FALSE(Loads(ZMXFFileLoadScope::all()));
        }
}

Bytes Repeated(std::string_view bytes, std::size_t count)
{
    std::string all;
    for (std::size_t i = 0; i < count; ++i) all += bytes;
    return Bytes{}.raw(all);
}
Bytes Repeated(const Bytes& bytes, std::size_t count)
{
    return Repeated(std::string_view(bytes.data().data(), bytes.size()), count);
}
Bytes OneSystem(const Bytes& inResults)
{
    return fileOf(head(1, 4).append(system("0", results(inResults))).append(hardware()));
}
// The data of a spectrum; of its blocks behind the values, version 0 ends each.
Bytes spectrumBytes(std::uint32_t process, std::int32_t size)
{
    Bytes base = Bytes{}.u16(5).code(kNoQuantity).u32(2).u32(0).u32(2).i32(size).zeros(6 * 4 + 4);
    base.u32(process).u32(0).u32(1).f32(-1).zeros(8 + 32 * 4);
    return Bytes{}.u16(3).u16(1).append(base).zeros(4 * static_cast<std::size_t>(size)).zeros(64);
}

TEST_F(Hostile, FewBytesThatAskForMany)
{
    struct Row {
        const char* name;
        Bytes file;
        bool loads;
    };
    const Row rows[] = {
        {"headers that name one large data chunk",
         OneSystem(Repeated(resultHeader(0, 2), 2000).append(resultData(0, spectrumBytes(2, 65536)))), false},
        {"headers that name an empty data chunk", // the results would keep the size that their kind begins with
         fileOf(head(1, 4).append(system("0", results(Repeated(resultHeader(0, 3), 60000).append(resultData(0, {}))))),
                0x100),
         false},
        {"headers without data that overlap", OneSystem(Repeated({"INFO\0\0\0\0", 8}, 100000)), false},
        {"hardware entries of four bytes",
         fileOf(head(0, 0).chunk("HRDI", Bytes{}.u16(0x200).i32(INT32_MAX).zeros(4 * kMiB))), false},
        {"comments that overlap", fileOf(head(0, 0).append(Repeated({"cmts\0\0\0\0", 8}, 200000)).append(hardware())),
         true},
        {"a text of any length",
         fileOf(head(0, 0)
                    .chunk("cmts", Bytes{}.u8(0xFF).u16(0xFFFE).u8(0xFF).u16(0xFFFF).u32(0x7FFFFFFF))
                    .append(hardware())),
         true},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        disk.Put(kPath, row.file);
        EXPECT_EQ(Loads(ZMXFFileLoadScope::all()), row.loads);
        LookInto(1);
    }
}

TEST_F(Hostile, ManyChunksAreReadOnce)
{
    const Bytes tiny = Repeated({"JUNK\0\0\0\0", 8}, 12500);
    const Bytes inUnits = Bytes{tiny}.versionChunk(0x100).append(tiny).chunk("0000", quantityBytes(u"q")).append(tiny);
    const Bytes inResults = Bytes{tiny}.append(result(0, 9, "0000")).append(tiny).append(result(1, 9, "0000"));
    disk.Put(kPath, fileOf(Bytes{tiny}
                               .append(head(1, 4))
                               .append(tiny)
                               .list("UNIT", inUnits)
                               .append(system("0", Bytes{tiny}.append(results(inResults))))
                               .append(hardware())));
    const auto size = static_cast<std::int64_t>(disk[kPath].size());
    ASSERT_GT(size, 8 * 100000);
    EXPECT_TRUE(Loads(ZMXFFileLoadScope::all()));
    EXPECT_EQ(held, "[9=0@q 9=1@q] q q, c, h 0, v 200");
    EXPECT_LT(disk.counts().bytesRead, 2 * size) << "by a load";

    disk.counts() = {};
    CZMXFFile reader(false, false);
    std::vector<CResultHeader*> headers;
    EXPECT_TRUE(reader.GetResultHeaderListe(kPath.c_str(), headers));
    EXPECT_LT(disk.counts().bytesRead, 2 * size) << "by a listing";
    disk.counts() = {};
    Fetch(reader, *headers.at(1));
    EXPECT_LT(disk.counts().bytesRead, 2 * size) << "by a fetch";
    for (CResultHeader* header : headers) delete header;

    // Data that lies the other way round costs no more than a few reads for each result.
    constexpr int kResults = 5000;
    Bytes data;
    for (int i = 0; i < kResults; ++i) data.append(resultData(i, scalarBytes(9, 0)));
    for (int i = kResults; i-- > 0;) data.append(resultHeader(i, 9));
    disk.Put(kPath, OneSystem(data));
    disk.counts() = {};
    EXPECT_TRUE(Loads(ZMXFFileLoadScope::all()));
    EXPECT_EQ(std::count(held.begin(), held.end(), '='), kResults);
    EXPECT_LT(disk.counts().reads, 3U * kResults);
}

} // namespace
} // namespace ZelmResult
