// Slice buffers of all variants, against a plain model, and the temporary files below them.

#include "tests/waterfalls/scratch.h"
#include "zelmresult/waterfalls/temp_file.h"
#include "zelmresult/waterfalls/waterfall_buffer_array.h"
#include "zelmresult/waterfalls/waterfall_buffer_disk.h"
#include "zelmresult/waterfalls/waterfall_buffer_ram.h"

#include <array>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>

namespace ZelmResult {
namespace {

using namespace test;
using ::testing::ElementsAre;
using Slice = CWaterfallBuffer::CSliceHandler;
using Values = std::vector<float>;

std::size_t filesIn(const TempFolder& folder)
{
    const std::filesystem::directory_iterator files(folder.path());
    return static_cast<std::size_t>(std::distance(begin(files), end(files)));
}

template <class Buffer>
class SliceBuffers : public ::testing::Test {
protected:
    static std::unique_ptr<CWaterfallBuffer> Filled(std::int32_t points, std::int32_t slices)
    {
        auto buffer = std::make_unique<Buffer>();
        buffer->Allocate(points, slices);
        for (std::int32_t raw = 0; raw < slices; ++raw)
            for (std::int32_t i = 0; i < points; ++i)
                buffer->SetRawSinglePoint(raw, i, static_cast<float>(10 * raw + i));
        return buffer;
    }
};

using Variants = ::testing::Types<CWaterfallBufferRam, CWaterfallBufferRamFlat, CWaterfallBufferDisk>;
TYPED_TEST_SUITE(SliceBuffers, Variants);

Values FirstPoints(CWaterfallBuffer& buffer)
{
    Values values;
    for (std::int32_t raw = 0; raw < buffer.GetZSize(); ++raw) values.push_back(buffer.GetRawSinglePoint(raw, 0));
    return values;
}

TYPED_TEST(SliceBuffers, BeginAsZeros)
{
    for (int round = 0; round < 2; ++round) { // in memory that held something else before
        const auto buffer = this->Filled(9, 30);
        buffer->Allocate(10, 27);
        for (std::int32_t raw = 0; raw < 27; ++raw)
            for (std::int32_t i = 0; i < 10; ++i) ASSERT_EQ(buffer->GetRawSinglePoint(raw, i), 0) << raw;
    }
}

TYPED_TEST(SliceBuffers, KeepOrLoseTheirContentWithTheirSizes)
{
    const auto buffer = this->Filled(2, 3);
    buffer->Allocate(2, 3);
    EXPECT_THAT(FirstPoints(*buffer), ElementsAre(0, 10, 20));
    buffer->SetSortedIndex(1, 2);
    buffer->SetZSparseSize(2);
    EXPECT_EQ(buffer->GetZSparseSize(), 3) << "never less than the slices";
    buffer->SetZSparseSize(5);
    EXPECT_EQ(buffer->GetSortedSinglePoint(1, 0), 20);
    EXPECT_FALSE(buffer->HasMapToRawIndex(4));
    buffer->SwapSortedIndex(1, 4);
    buffer->SwapSortedIndex(0, 7); // out of range: empty
    EXPECT_EQ(buffer->MapToRawIndex(4), 2);
    EXPECT_FALSE(buffer->HasMapToRawIndex(1));
    buffer->Allocate(2, 3);
    EXPECT_EQ(buffer->GetZSparseSize(), 3);
    buffer->Allocate(0, 5);
    EXPECT_FALSE(buffer->IsAllocated());
    EXPECT_EQ(buffer->GetZSize(), 0);
    if (std::is_same_v<TypeParam, CWaterfallBufferDisk>) return;
    buffer->Allocate(INT32_MAX, INT32_MAX);
    EXPECT_FALSE(buffer->IsAllocated());
}

// Slice 0 never moves.
TYPED_TEST(SliceBuffers, SwapAndCopySlices)
{
    const auto buffer = this->Filled(2, 4), other = this->Filled(2, 5), copy = this->Filled(2, 4);
    buffer->SwapRawSlices(1, 3);
    buffer->SwapRawSlices(0, 4);
    EXPECT_THAT(FirstPoints(*buffer), ElementsAre(0, 30, 20, 10));
    EXPECT_EQ(buffer->GetRawSinglePoint(1, 1), 31);
    for (const auto& [from, to] : {std::pair{1, 2}, {0, 3}, {3, 0}}) buffer->CopySingleRawSlice(from, to);
    EXPECT_THAT(FirstPoints(*buffer), ElementsAre(0, 30, 30, 10));
    for (const auto& [from, to] : {std::pair{4, 3}, {0, 1}, {5, 1}}) buffer->CopySingleRawSliceFrom(*other, from, to);
    buffer->CopySingleRawSliceFrom(*this->Filled(3, 5), 4, 1);
    EXPECT_THAT(FirstPoints(*buffer), ElementsAre(0, 30, 30, 40));

    buffer->SetSortedIndex(2, 1);
    copy->CopyWaterfallBufferFrom(*buffer);
    EXPECT_THAT(FirstPoints(*copy), ElementsAre(0, 30, 30, 40));
    EXPECT_EQ(copy->MapToRawIndex(2), 1);
    copy->CopyWaterfallBufferFrom(*other);
    EXPECT_THAT(FirstPoints(*copy), ElementsAre(0, 0, 0, 0)) << "another shape empties";
    EXPECT_FALSE(copy->HasMapToRawIndex(2));
}

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
    map.Set(3, 1);
    map.Set(10, 1);
    map.Set(-1, 1);
    for (const std::int32_t slots : {INT32_MAX, 1048576, INT32_MAX, 5}) {
        map.Resize(slots, 2);
        EXPECT_EQ(map.size(), slots);
        EXPECT_EQ(map.Get(3), 1);
        EXPECT_EQ(map.Get(4), -1);
        EXPECT_EQ(map.Get(slots), -1);
        for (const std::int32_t raw : {0, -1}) {
            map.Set(slots - 1, raw);
            EXPECT_EQ(map.Get(slots - 1), raw);
        }
    }
    map.Empty();
    EXPECT_EQ(map.Get(3), -1);
}

TEST(SliceBuffer, OnDiskIsAFileWithoutAName)
{
    const TempFolder folder;
    const TempDirectory temporary(folder.path());
    CWaterfallBufferDisk buffer;
    buffer.Allocate(13, 40);
    EXPECT_EQ(filesIn(folder), 0U);
}

TEST(SliceBuffer, OnDiskLeavesNothingBehind)
{
    const TempFolder folder;
    const TempDirectory temporary(folder.path());
    auto buffer = std::make_unique<CWaterfallBufferDisk>();
    buffer->Allocate(13, 40);
    buffer.reset();
    EXPECT_EQ(filesIn(folder), 0U);
}

// All that a caller can do, in random order, against vectors.
TEST(SliceBuffer, DiskAgreesWithAPlainModel)
{
    const TempFolder folder;
    const TempDirectory temporary(folder.path());
    constexpr std::size_t points = 13, slices = 40;
    std::mt19937 random(11);
    CWaterfallBufferDisk buffer;
    buffer.Allocate(points, slices);
    std::vector<Values> model(slices, Values(points));
    for (std::size_t raw = 0; raw < slices; ++raw) buffer.GetRawSlice(static_cast<int>(raw)).SetZero(points);
    std::array<std::pair<Slice, std::size_t>, 8> pinned; // with their raw slices
    for (int step = 0; step < 20000; ++step) {
        auto& [handler, place] = pinned[random() % 8];
        const std::size_t a = random() % slices, b = random() % slices, point = random() % points;
        const int rawA = static_cast<int>(a), rawB = static_cast<int>(b), i = static_cast<int>(point);
        switch (random() % 4) {
        case 0:
            handler.Attach(&buffer, rawA);
            place = a;
            break;
        case 1: handler.Detach(); break;
        case 2:
            if (!handler.HasSlice()) break;
            model[place][point] = static_cast<float>(step);
            handler.SetSinglePoint(i, static_cast<float>(step));
            break;
        default:
            if (buffer.GetRawSliceCounter(rawA) != 0 || buffer.GetRawSliceCounter(rawB) != 0) break;
            buffer.SwapRawSlices(rawA, rawB);
            std::swap(model[a], model[b]);
        }
        ASSERT_EQ(buffer.GetRawSinglePoint(rawA, i), model[a][point]) << step;
    }
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
    const auto endless = [](const std::string& /*directory*/, std::uint64_t& bytes) { return bytes = INT64_MAX, true; };
    const auto unknown = [](const std::string& /*directory*/, std::uint64_t& /*bytes*/) { return false; };
    EXPECT_TRUE(allocates(none, 300));
    EXPECT_FALSE(allocates(none, 301));
    EXPECT_TRUE(allocates(endless, 1));
    EXPECT_FALSE(allocates(unknown, 1));
}

TEST(TempFile, ReservesANameForItsLife)
{
    const TempFolder folder;
    const TempDirectory temporary(folder.path());
    EXPECT_EQ(CTempFile::GetTempDirectoryW(), folder.wideFile(""));
    {
        const CTempFile first("wbd", "zelm"), second("wbd", "zelm"), third("", "prefix");
        EXPECT_EQ(first.GetPathName(), folder.file("zelm0.wbd"));
        EXPECT_EQ(second.GetPathNameW(), folder.wideFile("zelm1.wbd"));
        EXPECT_EQ(third.GetPathName(), folder.file("pre0001.tmp"));
        EXPECT_EQ(filesIn(folder), 3U);
    }
    EXPECT_EQ(filesIn(folder), 0U);
}

TEST(TempFile, IsItsUsersAloneAndFollowsNoLink)
{
    const TempFolder folder;
    const TempDirectory temporary(folder.path());
    std::filesystem::create_symlink(folder.file("elsewhere"), folder.file("zelm0.wbd"));
    const CTempFile file("wbd", "zelm");
    EXPECT_EQ(file.GetPathName(), folder.file("zelm1.wbd"));
    EXPECT_EQ(std::filesystem::status(file.GetPathName()).permissions(), std::filesystem::perms(0600));
}

} // namespace
} // namespace ZelmResult
