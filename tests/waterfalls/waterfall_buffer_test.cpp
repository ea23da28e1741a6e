// Slice buffers of all variants, against a plain model, and the temporary files behind them.

#include "tests/builders/memory_file.h"
#include "zelmresult/waterfalls/temp_file.h"
#include "zelmresult/waterfalls/waterfall_buffer_array.h"
#include "zelmresult/waterfalls/waterfall_buffer_disk.h"
#include "zelmresult/waterfalls/waterfall_buffer_ram.h"

#include <array>
#include <cstdlib>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <numeric>
#include <random>

namespace ZelmResult {
namespace {

using namespace test;
using ::testing::ElementsAre;
using Slice = CWaterfallBuffer::CSliceHandler;
using Values = std::vector<float>;

// The place for temporary files as long as it lives.
class TempDirectory {
public:
    explicit TempDirectory(const std::string& path)
        : m_former(std::getenv("TMPDIR") != nullptr ? std::getenv("TMPDIR") : "")
    {
        (void)setenv("TMPDIR", path.c_str(), 1);
    }
    TempDirectory(const TempDirectory&) = delete;
    TempDirectory& operator=(const TempDirectory&) = delete;
    ~TempDirectory() { (void)(m_former.empty() ? unsetenv("TMPDIR") : setenv("TMPDIR", m_former.c_str(), 1)); }

private:
    std::string m_former;
};

std::size_t filesIn(const TempFolder& folder)
{
    const std::filesystem::directory_iterator files(folder.path());
    return static_cast<std::size_t>(std::distance(begin(files), end(files)));
}

struct Variant {
    const char* name;
    std::unique_ptr<CWaterfallBuffer> (*make)();
};

template <class Buffer>
std::unique_ptr<CWaterfallBuffer> Make()
{
    return std::make_unique<Buffer>();
}

class SliceBuffers : public ::testing::TestWithParam<Variant> {
protected:
    std::unique_ptr<CWaterfallBuffer> Filled(std::int32_t points, std::int32_t slices)
    {
        auto buffer = GetParam().make();
        buffer->Allocate(points, slices);
        for (std::int32_t raw = 0; raw < slices; ++raw)
            for (std::int32_t i = 0; i < points; ++i)
                buffer->SetRawSinglePoint(raw, i, static_cast<float>(10 * raw + i));
        return buffer;
    }
};

Values FirstPoints(CWaterfallBuffer& buffer)
{
    Values values;
    for (std::int32_t raw = 0; raw < buffer.GetZSize(); ++raw) values.push_back(buffer.GetRawSinglePoint(raw, 0));
    return values;
}

} // namespace

TEST_P(SliceBuffers, HandlersPinSlices)
{
    const auto buffer = Filled(3, 4);
    {
        Slice first = buffer->GetRawSlice(2);
        Slice second = first;
        EXPECT_TRUE(first.HasSlice() && first.GetSlicePointer() == second.GetSlicePointer());
        EXPECT_EQ(buffer->GetRawSliceCounter(2), 2);
        second.SetSinglePoint(1, 99);
        EXPECT_EQ(first.GetSinglePoint(1), 99);
        second = *&second; // itself
        second = buffer->GetRawSlice(3);
        EXPECT_TRUE(buffer->GetRawSliceCounter(2) == 1 && buffer->GetRawSliceCounter(3) == 1);
        first.Detach();
        first.Detach();
        EXPECT_FALSE(first.HasSlice());
    }
    EXPECT_TRUE(buffer->GetRawSliceCounter(2) == 0 && buffer->GetRawSliceCounter(3) == 0);
    EXPECT_EQ(buffer->GetRawSinglePoint(2, 1), 99);
    double wide[3] = {};
    float narrow[3] = {};
    Slice slice = buffer->GetRawSlice(1);
    slice.CopySliceTo(wide, 3);
    EXPECT_THAT(wide, ElementsAre(10, 11, 12));
    slice.SetZero(2);
    slice.CopySliceTo(narrow, 3);
    EXPECT_THAT(narrow, ElementsAre(0, 0, 12));

    for (const std::int32_t outside : {-1, 4, INT32_MAX, INT32_MIN}) {
        EXPECT_FALSE(buffer->GetRawSlice(outside).HasSlice() || buffer->GetSortedSlice(outside).HasSlice());
        EXPECT_TRUE(buffer->GetRawSinglePoint(outside, 0) == 0 && buffer->GetRawSinglePoint(0, outside) == 0);
        buffer->SetRawSinglePoint(outside, 0, 1);
        buffer->SetSortedIndex(outside, 1);
        EXPECT_TRUE(buffer->GetRawSliceCounter(outside) == 0 && buffer->MapToRawIndex(outside) == -1);
    }
    Slice none;
    none.Attach(nullptr, 1);
    none.Attach(buffer.get(), -1);
    EXPECT_FALSE(none.HasSlice());
    const auto unallocated = GetParam().make();
    EXPECT_FALSE(unallocated->GetRawSlice(0).HasSlice());
    unallocated->ClearSortedIndexMap(), unallocated->FreeMemory(), unallocated->CopySingleRawSlice(1, 2);
}

TEST_P(SliceBuffers, KeepOrLoseTheirContentWithTheirSizes)
{
    const auto buffer = Filled(2, 3);
    buffer->Allocate(2, 3);
    EXPECT_THAT(FirstPoints(*buffer), ElementsAre(0, 10, 20));
    buffer->SetSortedIndex(1, 2);
    buffer->SetZSparseSize(2);
    EXPECT_EQ(buffer->GetZSparseSize(), 3) << "never less than the slices";
    buffer->SetZSparseSize(5);
    EXPECT_TRUE(buffer->MapToRawIndex(1) == 2 && !buffer->HasMapToRawIndex(4) &&
                buffer->GetSortedSinglePoint(1, 0) == 20);
    buffer->SwapSortedIndex(1, 4);
    buffer->SwapSortedIndex(0, 7); // out of range: empty
    EXPECT_TRUE(buffer->MapToRawIndex(4) == 2 && !buffer->HasMapToRawIndex(1));
    buffer->Allocate(2, 3);
    EXPECT_TRUE(buffer->GetZSparseSize() == 3 && !buffer->HasMapToRawIndex(1));
    buffer->Allocate(0, 5);
    EXPECT_TRUE(!buffer->IsAllocated() && buffer->GetZSize() == 0 && buffer->GetRealSize() == 0);
    if (GetParam().name == std::string("Disk")) return;
    buffer->Allocate(INT32_MAX, INT32_MAX);
    EXPECT_FALSE(buffer->IsAllocated());
}

// Slice 0 never moves.
TEST_P(SliceBuffers, SwapAndCopySlices)
{
    const auto buffer = Filled(2, 4);
    buffer->SwapRawSlices(1, 3);
    buffer->SwapRawSlices(2, 2);
    buffer->SwapRawSlices(0, 4);
    EXPECT_THAT(FirstPoints(*buffer), ElementsAre(0, 30, 20, 10));
    buffer->CopySingleRawSlice(1, 2);
    buffer->CopySingleRawSlice(0, 3);
    buffer->CopySingleRawSlice(3, 0);
    buffer->CopySingleRawSlice(3, 3);
    EXPECT_THAT(FirstPoints(*buffer), ElementsAre(0, 30, 30, 10));

    const auto other = Filled(2, 5);
    buffer->CopySingleRawSliceFrom(*other, 4, 3);
    buffer->CopySingleRawSliceFrom(*other, 0, 1);
    buffer->CopySingleRawSliceFrom(*other, 5, 1);
    buffer->CopySingleRawSliceFrom(*Filled(3, 5), 4, 1);
    EXPECT_THAT(FirstPoints(*buffer), ElementsAre(0, 30, 30, 40));

    const auto copy = Filled(2, 4);
    buffer->SetSortedIndex(2, 1);
    copy->CopyWaterfallBufferFrom(*buffer);
    copy->CopyWaterfallBufferFrom(*copy);
    EXPECT_THAT(FirstPoints(*copy), ElementsAre(0, 30, 30, 40));
    EXPECT_EQ(copy->MapToRawIndex(2), 1);
    copy->CopyWaterfallBufferFrom(*other);
    EXPECT_THAT(FirstPoints(*copy), ElementsAre(0, 0, 0, 0)) << "another shape empties";
    EXPECT_TRUE(!copy->HasMapToRawIndex(2) && copy->GetZSize() == 4);
}

INSTANTIATE_TEST_SUITE_P(Variants, SliceBuffers,
                         ::testing::Values(Variant{"Ram", Make<CWaterfallBufferRam>},
                                           Variant{"RamFlat", Make<CWaterfallBufferRamFlat>},
                                           Variant{"Disk", Make<CWaterfallBufferDisk>}),
                         [](const auto& variant) { return std::string(variant.param.name); });

TEST(SliceBuffer, ZeroesAnswerEverythingWithOneBlock)
{
    CWaterfallBufferAllZeroes buffer;
    buffer.Allocate(2, 1000000);
    Slice slice = buffer.GetRawSlice(999999);
    slice.SetSinglePoint(1, 5);
    EXPECT_EQ(buffer.GetRawSinglePoint(7, 1), 0);
    EXPECT_EQ(slice.GetSinglePoint(1), 0) << "wiped by the other";
}

TEST(SliceBuffer, SlotsMayBeFarApart)
{
    SortedMap map;
    map.Resize(10, 2);
    map.Set(3, 1), map.Set(10, 1), map.Set(-1, 1);
    for (const std::int32_t slots : {INT32_MAX, 1048576, INT32_MAX, 5}) {
        map.Resize(slots, 2);
        EXPECT_TRUE(map.size() == slots && map.Get(3) == 1 && map.Get(4) == -1 && map.Get(slots) == -1);
        map.Set(slots - 1, 0);
        EXPECT_EQ(map.Get(slots - 1), 0);
        map.Set(slots - 1, -1);
        EXPECT_EQ(map.Get(slots - 1), -1);
    }
    map.Empty();
    EXPECT_EQ(map.Get(3), -1);
}

TEST(SliceBuffer, TheStrategyChoosesTheVariant)
{
    const auto made = [](std::int32_t strategy, std::int32_t points) {
        const EStrategy former = CWaterfallBufferFactory::SetStrategy(static_cast<EStrategy>(strategy));
        auto buffer = CWaterfallBufferFactory::CreateAndAllocate(points, 2);
        EXPECT_EQ(CWaterfallBufferFactory::SetStrategy(former), static_cast<EStrategy>(strategy));
        return buffer;
    };
    for (const std::int32_t strategy : {0, 7, -1}) {
        EXPECT_NE(dynamic_cast<CWaterfallBufferRamFlat*>(made(strategy, 9).get()), nullptr);
        EXPECT_NE(dynamic_cast<CWaterfallBufferRam*>(made(strategy, 10).get()), nullptr);
    }
    EXPECT_NE(dynamic_cast<CWaterfallBufferDisk*>(made(1, 10).get()), nullptr);
    EXPECT_NE(dynamic_cast<CWaterfallBufferAllZeroes*>(made(2, 10).get()), nullptr);
    EXPECT_FALSE(made(0, 0)->IsAllocated());
    EXPECT_EQ(CWaterfallBufferRamFlat::GetAllocSize(65536, 65537), 65536);

    CWaterfallBufferArray array;
    CWaterfallBufferFactory::FillAndAllocateArray(array, 0, 2, 3);
    EXPECT_TRUE(array.IsEmpty() && array.GetRealSize() == 0 && !array.HasMapToRawIndex(0));
    CWaterfallBufferFactory::FillAndAllocateArray(array, 2, 2, 3);
    array.SetZSparseSize(4);
    array.SetSortedIndex(3, 1);
    array.SwapSortedIndex(3, 2);
    array[1]->SetRawSinglePoint(1, 0, 5);
    array.CopySingleRawSlice(1, 2);
    EXPECT_TRUE(array.GetCount() == 2 && array.HasMapToRawIndex(2) && array[1]->MapToRawIndex(2) == 1);
    EXPECT_EQ(array[1]->GetRawSinglePoint(2, 0), 5);
    array.ClearSortedIndex(2);
    array.Allocate(3, 3);
    EXPECT_EQ(array.GetRealSize(), 3);
}

// All that a caller can do, in random order, against vectors.
TEST(SliceBuffer, DiskAgreesWithAPlainModel)
{
    const TempFolder folder;
    const TempDirectory temporary(folder.path());
    constexpr std::int32_t points = 13;
    constexpr std::int32_t slices = 40;
    std::mt19937 random(11);
    const auto below = [&](int n) { return static_cast<std::int32_t>(random() % static_cast<unsigned>(n)); };
    CWaterfallBufferDisk buffer;
    buffer.Allocate(points, slices);
    ASSERT_TRUE(buffer.IsAllocated());
    EXPECT_EQ(filesIn(folder), 0U) << "the file has no name";
    std::vector<Values> model(slices, Values(points));
    for (std::int32_t raw = 0; raw < slices; ++raw) buffer.GetRawSlice(raw).SetZero(points);
    std::array<Slice, 8> pinned;
    std::array<std::int32_t, 8> places{};
    places.fill(-1);
    for (int step = 0; step < 20000; ++step) {
        const auto handler = static_cast<std::size_t>(below(8));
        const std::int32_t a = below(slices);
        const std::int32_t b = below(slices);
        switch (below(4)) {
        case 0: pinned[handler].Attach(&buffer, places[handler] = a); break;
        case 1: pinned[handler].Detach(), places[handler] = -1; break;
        case 2:
            if (places[handler] < 0) break;
            pinned[handler].SetSinglePoint(a % points, static_cast<float>(step));
            model[static_cast<std::size_t>(places[handler])][static_cast<std::size_t>(a % points)] =
                static_cast<float>(step);
            break;
        default:
            if (buffer.GetRawSliceCounter(a) != 0 || buffer.GetRawSliceCounter(b) != 0) break;
            buffer.SwapRawSlices(a, b);
            std::swap(model[static_cast<std::size_t>(a)], model[static_cast<std::size_t>(b)]);
        }
        const std::int32_t i = below(points);
        ASSERT_EQ(buffer.GetRawSinglePoint(a, i), model[static_cast<std::size_t>(a)][static_cast<std::size_t>(i)])
            << step;
    }
    EXPECT_EQ(filesIn(folder), 0U);
}

TEST(SliceBuffer, DiskAsksForSpace)
{
    const auto allocates = [](CWaterfallBufferDisk::FreeSpace space, std::int32_t mebibytes) {
        const auto former = CWaterfallBufferDisk::SetFreeSpace(space);
        CWaterfallBufferDisk buffer;
        buffer.Allocate(262144, mebibytes);
        CWaterfallBufferDisk::SetFreeSpace(former);
        return buffer.IsAllocated();
    };
    const auto none = [](const std::string& /*directory*/, std::uint64_t& bytes) { return bytes = 0, true; };
    const auto hundred = [](const std::string& /*directory*/, std::uint64_t& bytes) { return bytes = 100, true; };
    const auto endless = [](const std::string& /*directory*/, std::uint64_t& bytes) { return bytes = INT64_MAX, true; };
    const auto unknown = [](const std::string& /*directory*/, std::uint64_t& /*bytes*/) { return false; };
    EXPECT_TRUE(allocates(hundred, 200));
    EXPECT_TRUE(allocates(none, 300));
    EXPECT_FALSE(allocates(none, 301));
    EXPECT_TRUE(allocates(endless, 8000));
    EXPECT_FALSE(allocates(unknown, 1));
}

TEST(TempFile, ReservesANameForItsLife)
{
    const TempFolder folder;
    const TempDirectory temporary(folder.path());
    EXPECT_EQ(CTempFile::GetTempDirectoryW(), folder.wideFile(""));
    {
        const CTempFile first("wbd", "zelm");
        const CTempFile second("wbd", "zelm");
        const CTempFile third("", "prefix");
        EXPECT_EQ(first.GetPathName(), folder.file("zelm0.wbd"));
        EXPECT_EQ(second.GetPathNameW(), folder.wideFile("zelm1.wbd"));
        EXPECT_EQ(third.GetPathName(), folder.file("pre0001.tmp"));
        EXPECT_EQ(filesIn(folder), 3U);
        EXPECT_EQ(std::filesystem::status(first.GetPathName()).permissions(), std::filesystem::perms(0600));
    }
    EXPECT_EQ(filesIn(folder), 0U);
    std::filesystem::create_symlink(folder.file("elsewhere"), folder.file("zelm0.wbd"));
    EXPECT_EQ(CTempFile("wbd", "zelm").GetPathName(), folder.file("zelm1.wbd")) << "no link is followed";
}

TEST(TempFile, FailuresHaveNamesThatNothingOpens)
{
    const TempFolder folder;
    const auto there = std::filesystem::current_path();
    std::filesystem::current_path(folder.path()); // where such names would be files
    const auto nameIn = [](const std::string& directory, const char* extension) {
        const TempDirectory temporary(directory);
        CWaterfallBufferDisk buffer;
        buffer.Allocate(2, 2);
        EXPECT_FALSE(buffer.IsAllocated() || buffer.GetRawSlice(0).HasSlice());
        const CTempFile file(extension, "zelm");
        EXPECT_FALSE(file.IsReserved());
        return file.GetPathName();
    };
    const std::string missing = folder.file("no");
    EXPECT_EQ(nameIn(missing, "wbd"), "Z:\\_invalid\\_path\\_GetTempFileName_ZELM_failed.wbd");
    EXPECT_EQ(nameIn(missing, ""), "Z:\\_invalid\\_path\\_GetTempFileNameA_failed.tmp");
    EXPECT_EQ(nameIn(std::string(1039, 'x'), "wbd"), "Z:\\_invalid\\_path\\_GetTempPathA_failed.tmp");
    EXPECT_EQ(filesIn(folder), 0U);
    std::filesystem::current_path(there);
}

} // namespace ZelmResult
