#include "zelmresult/waterfalls/waterfall_buffer_array.h"

#include "zelmresult/waterfalls/waterfall_buffer_disk.h"
#include "zelmresult/waterfalls/waterfall_buffer_ram.h"

#include <utility>

namespace ZelmResult {

namespace {

constexpr std::int32_t kLongestFlatSlice = 9; // for longer ones, a pointer to each costs little

EStrategy g_strategy = EStrategy::StrategyAuto;

std::unique_ptr<CWaterfallBuffer> Create(std::int32_t realSize)
{
    if (g_strategy == EStrategy::StrategyDisk) return std::make_unique<CWaterfallBufferDisk>();
    if (g_strategy == EStrategy::StrategyAllZeroes) return std::make_unique<CWaterfallBufferAllZeroes>();
    if (realSize <= kLongestFlatSlice) return std::make_unique<CWaterfallBufferRamFlat>();
    return std::make_unique<CWaterfallBufferRam>();
}

} // namespace

EStrategy CWaterfallBufferFactory::SetStrategy(EStrategy strategy) { return std::exchange(g_strategy, strategy); }

std::unique_ptr<CWaterfallBuffer> CWaterfallBufferFactory::CreateAndAllocate(std::int32_t realSize, std::int32_t zSize)
{
    auto buffer = Create(realSize);
    buffer->Allocate(realSize, zSize);
    return buffer;
}

void CWaterfallBufferFactory::FillAndAllocateArray(CWaterfallBufferArray& array, std::int32_t count,
                                                   std::int32_t realSize, std::int32_t zSize)
{
    for (std::int32_t i = 0; i < count; ++i) array.Append(CreateAndAllocate(realSize, zSize).release());
}

} // namespace ZelmResult
