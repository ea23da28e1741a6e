#include "tests/waterfalls/scratch.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace ZelmResult {
namespace {

using namespace test;

std::unique_ptr<CWaterfallBuffer> Filled(std::int32_t points, std::int32_t slices, float value)
{
    auto buffer = CWaterfallBufferFactory::CreateAndAllocate(points, slices);
    for (std::int32_t raw = 0; raw < slices; ++raw) buffer->SetRawSinglePoint(raw, points - 1, value);
    return buffer;
}

bool Has(CWaterfallBuffer& buffer, float value)
{
    for (std::int32_t raw = 0; raw < buffer.GetZSize(); ++raw)
        if (buffer.GetRawSinglePoint(raw, buffer.GetRealSize() - 1) != value) return false;
    return !buffer.HasLostSlices();
}

// A process that forks shares its open files with the new one.
TEST(SlicesAfterAFork, AreThoseOfEachProcess)
{
    const SlicesOnDisk disk;
    const auto before = Filled(100, 10, 3);
    const pid_t child = ::fork();
    bool isGood = true;
    for (int i = 0; i < 200 && isGood; ++i) {
        const float value = child == 0 ? 500 : 1000;
        isGood = Has(*Filled(300 + i, 20, value), value);
    }
    if (child == 0) ::_exit(isGood ? 0 : 1);
    int status = -1;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(isGood);
    EXPECT_TRUE(Has(*before, 3));
}

} // namespace
} // namespace ZelmResult
