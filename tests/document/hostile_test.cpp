// Files that are damaged, or made to do harm. No operation may crash, and none may take more memory than is promised.

#include "tests/builders/counted_memory.h"
#include "tests/builders/samples.h"
#include "zelmresult/results/reg_vector.h"

#include <gtest/gtest.h>
#include <memory>

namespace ZelmResult {
namespace {

using namespace test;

constexpr std::size_t kMiB = 1048576;
constexpr std::size_t kAround = 4 * kMiB;
const wstring kPath = u"f";

class Hostile : public ::testing::Test {
protected:
    // Runs an operation on the file and sees that it stays within the promise: what is read takes at most 16 times the
    // file plus 64 MiB. The rest is for what is around it, such as the headers that a search remembers.
    template <class Operation>
    void Bounded(Operation operation)
    {
        const std::size_t before = g_most = g_held;
        operation();
        const std::size_t taken = g_most - before;
        EXPECT_LE(taken, 16 * disk[kPath].size() + 64 * kMiB + kAround) << "bytes for " << disk[kPath].size();
    }
    bool Loads(ZMXFFileLoadScope scope = ZMXFFileLoadScope::all(), bool isLXFFile = false)
    {
        bool loaded = false;
        Bounded([&] {
            CZMXFFile document(true, isLXFFile);
            loaded = document.Load(kPath.c_str(), scope);
            document.NeedToRemoveEverything(true);
        });
        return loaded;
    }
    // Everything but loads. fetched bounds the results that are fetched one by one.
    void LookInto(std::size_t fetched)
    {
        Bounded([&] {
            CZMXFFile reader(false, false);
            std::vector<CResultHeader*> headers;
            (void)reader.GetResultHeaderListe(kPath.c_str(), headers);
            for (std::size_t i = 0; i < headers.size(); ++i) {
                const std::unique_ptr<CResultHeader> header(headers[i]);
                if (i < fetched) (void)Fetched(reader, *header, kPath);
            }
            CHardInfo info;
            (void)reader.GetHardInfo(kPath.c_str(), info);
            (void)reader.HasRecordPreview(kPath.c_str());
        });
    }
    MemoryDisk disk;
    UseBackend use{disk};
};

Bytes Repeated(const Bytes& bytes, std::size_t count)
{
    std::string all;
    for (std::size_t i = 0; i < count; ++i) all.append(bytes.data().data(), bytes.size());
    return Bytes{}.raw(all);
}
Bytes OneSystem(const Bytes& inResults)
{
    return fileOf(head(1, 4).append(system("0", results(inResults))).append(hardware()));
}
// The data of a spectrum; of its blocks after the values, version 0 ends each.
Bytes spectrumBytes(std::uint32_t process, std::int32_t size)
{
    Bytes base = Bytes{}.u16(5).code(kNoQuantity).u32(2).u32(0).u32(2).i32(size).zeros(6 * 4 + 4);
    base.u32(process).u32(0).u32(1).f32(-1).zeros(8 + 32 * 4);
    return Bytes{}.u16(3).u16(1).append(base).zeros(4 * static_cast<std::size_t>(size)).zeros(64);
}

// A document of spectra that owns them.
std::unique_ptr<CZMXFFile> Spectra(int count)
{
    auto document = std::make_unique<CZMXFFile>(true, false);
    for (int i = 0; i < count; ++i)
        document->AjouteResultat(NewHeader(2), new CRegVector(2, 401, 0, SignalType::Real, 0, true), 0, false);
    document->NeedToRemoveEverything(true);
    return document;
}

TEST(Memory, ASaveAllocatesNothingPerResult)
{
    const TempFolder folder;
    const auto allocations = [&](int results) {
        const auto document = Spectra(results);
        EXPECT_TRUE(document->Save(folder.wideFile("f").c_str())); // codes and books are made once
        const std::size_t before = g_allocations;
        EXPECT_TRUE(document->Save(folder.wideFile("f").c_str()));
        return g_allocations - before;
    };
    EXPECT_LE(allocations(2000), allocations(1000) + 10);
}

TEST(Memory, ALoadHoldsLittleMoreThanItsObjects)
{
    constexpr std::size_t windows = kMiB;
    const TempFolder folder;
    ASSERT_TRUE(Spectra(3000)->Save(folder.wideFile("f").c_str()));
    const std::size_t before = g_most = g_held;
    CZMXFFile document(true, false);
    ASSERT_TRUE(document.Load(folder.wideFile("f").c_str(), ZMXFFileLoadScope::all()));
    document.NeedToRemoveEverything(true);
    const std::size_t objects = g_held - before;
    EXPECT_GT(objects, 3000U * 401 * sizeof(float));
    EXPECT_LE(g_most - before, objects + objects / 10 + windows);
}

TEST_F(Hostile, FewBytesThatAskForMany)
{
    const struct {
        const char* name;
        Bytes file;
        bool loads;
    } rows[] = {
        {"headers that name one large data chunk",
         OneSystem(Repeated(resultHeader(0, 2), 2000).append(resultData(0, spectrumBytes(2, 65536)))), false},
        {"headers that name an empty data chunk", // the results would keep the size that their kind begins with
         fileOf(head(1, 4).append(system("0", results(Repeated(resultHeader(0, 3), 60000).append(resultData(0, {}))))),
                0x100),
         false},
        {"headers without data that overlap", OneSystem(Repeated(Bytes{}.chunk("INFO", {}), 100000)), false},
        {"hardware entries of four bytes",
         fileOf(head(0, 0).chunk("HRDI", Bytes{}.u16(0x200).i32(INT32_MAX).zeros(4 * kMiB))), false},
        {"comments that overlap",
         fileOf(head(0, 0).append(Repeated(Bytes{}.chunk("cmts", {}), 200000)).append(hardware())), true},
        {"a text of any length",
         fileOf(head(0, 0)
                    .chunk("cmts", Bytes{}.u8(0xFF).u16(0xFFFE).u8(0xFF).u16(0xFFFF).u32(0x7FFFFFFF))
                    .append(hardware())),
         true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        disk.Put(kPath, row.file);
        EXPECT_EQ(Loads(), row.loads);
        LookInto(1);
    }
}

} // namespace
} // namespace ZelmResult
