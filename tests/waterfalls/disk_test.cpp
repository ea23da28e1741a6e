// Slices on disk: one file for all of them, what a copy costs, and what happens without room.

#include "tests/builders/record_check.h"
#include "tests/waterfalls/scratch.h"
#include "zelmresult/waterfalls/wtf_octave.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <thread>

namespace ZelmResult {
namespace {

using namespace test;
using Buffer = std::unique_ptr<CWaterfallBuffer>;

// Slices that say their buffer and their place.
Buffer Filled(std::int32_t points, std::int32_t slices, float name)
{
    Buffer buffer = CWaterfallBufferFactory::CreateAndAllocate(points, slices);
    for (std::int32_t raw = 0; raw < slices; ++raw) {
        auto slice = buffer->GetRawSlice(raw);
        slice.SetSinglePoint(0, name);
        slice.SetSinglePoint(points - 1, name + static_cast<float>(raw));
    }
    return buffer;
}

bool IsWhole(CWaterfallBuffer& buffer, float name)
{
    for (std::int32_t raw = 0; raw < buffer.GetZSize(); ++raw) {
        const float last = buffer.GetRawSinglePoint(raw, buffer.GetRealSize() - 1);
        if (last != name + static_cast<float>(raw)) return false;
        if (buffer.GetRealSize() > 1 && buffer.GetRawSinglePoint(raw, 0) != name) return false;
    }
    return !buffer.HasLostSlices();
}

TEST(SlicesOnDisk, OnlyWhatChangedIsWritten)
{
    SlicesOnDisk disk;
    const Buffer buffer = Filled(100, 5, 1);
    const int before = disk.counts.writes;
    EXPECT_TRUE(IsWhole(*buffer, 1));
    EXPECT_EQ(disk.counts.writes, before);
    buffer->SetRawSinglePoint(2, 50, 7);
    EXPECT_EQ(disk.counts.writes, before + 1);
    {
        const auto pinned = buffer->GetRawSlice(1);
        buffer->SwapRawSlices(1, 3);
    }
    EXPECT_EQ(buffer->GetRawSinglePoint(1, 99), 2.0F)
        << "a pinned slice goes to the place that it has when it is let go";
}

TEST(SlicesOnDisk, ShareOneFileWhosePartsAreUsedAgain)
{
    SlicesOnDisk disk;
    std::mt19937 random(7);
    std::vector<Buffer> buffers(40);
    std::int64_t most = 0; // bytes of all slices at a time
    for (int step = 0; step < 2000; ++step) {
        const std::size_t i = random() % buffers.size();
        if (buffers[i] != nullptr) {
            ASSERT_TRUE(IsWhole(*buffers[i], static_cast<float>(i))) << "buffer " << i << ", step " << step;
        }
        buffers[i].reset();
        if (i == 0) continue; // not all at once
        const auto points = static_cast<std::int32_t>(1 + random() % (step % 10 == 0 ? 300000 : 900));
        buffers[i] = Filled(points, static_cast<std::int32_t>(1 + random() % 9), static_cast<float>(i));
        std::int64_t held = 0;
        for (const Buffer& buffer : buffers)
            if (buffer != nullptr) held += std::int64_t{4} * buffer->GetRealSize() * buffer->GetZSize();
        most = std::max(most, held);
    }
    EXPECT_EQ(disk.counts.opens, 1);
    EXPECT_LT(disk.counts.size, most * 3 / 2) << "what was given back";
}

bool WorksAlone(float name)
{
    for (int i = 0; i < 200; ++i)
        if (!IsWhole(*Filled(300 + i, 20, name), name)) return false;
    return true;
}

TEST(SlicesOnDisk, ThreadsKeepTheirOwn)
{
    const SlicesOnDisk disk;
    const Buffer buffer = Filled(100, 10, 3);
    bool isOneWhole = false;
    std::thread one([&] { isOneWhole = WorksAlone(1000); });
    const bool isOtherWhole = WorksAlone(2000);
    one.join();
    EXPECT_TRUE(isOneWhole);
    EXPECT_TRUE(isOtherWhole);
    EXPECT_TRUE(IsWhole(*buffer, 3));
}

// Slices of one point with these block numbers, as a document loads them.
std::unique_ptr<CWaterfall> Loaded(const std::vector<std::int32_t>& blocks)
{
    const auto slices = static_cast<std::int32_t>(blocks.size());
    CWaterfall ring(2, 20, 1, slices, nullptr, SignalType::Real, true);
    (void)ring.AllocateTabBlockNumber(slices);
    for (std::int32_t i = 0; i < slices; ++i) {
        ring.GetTabData(0, ring.AddBlock(i, -1)).SetSinglePoint(0, static_cast<float>(i + 1));
        ring.SetBlocNumber(i, blocks[static_cast<std::size_t>(i)]);
    }
    ring.SetFilled(slices);
    auto loaded = std::make_unique<CWaterfall>(true);
    readInto(*loaded, written(ring));
    return loaded;
}

// Whatever is between the slices.
TEST(SlicesOnDisk, CopiesCostWhatTheSlicesCost)
{
    SlicesOnDisk disk;
    const auto waterfall = Loaded({0, 60000, 16777215});
    disk.counts.writes = 0;
    const std::unique_ptr<CResult> copy(waterfall->GetCopy());
    const std::unique_ptr<CWaterfall> whole(waterfall->GetWholeCopy());
    EXPECT_LT(disk.counts.writes, 20);
    EXPECT_EQ(whole->GetTabPoint(0, 60000, 0), 2);
    const auto few = std::make_unique<CWaterfall>(2, 20, 50, 100000, nullptr, SignalType::Real, true);
    few->GetTabData(0, few->AddBlock(0, -1)).SetZero(50);
    disk.counts.writes = 0;
    const std::unique_ptr<CResult> copyOfFew(few->GetCopy());
    EXPECT_LT(disk.counts.writes, 20) << "most slices were never touched";
}

} // namespace
} // namespace ZelmResult
