#pragma once

#include "zelmresult/support/large_memory.h"
#include "zelmresult/waterfalls/waterfall_buffer.h"

#include <vector>

namespace ZelmResult {

// The variants in memory. They fail to allocate more than the machine has.

// Slices in one block of memory, with a pointer to each.
class CWaterfallBufferRam : public CWaterfallBuffer {
public:
    ~CWaterfallBufferRam() override { FreeMemory(); }

protected:
    bool internalAllocate() override;
    void internalFreeMemory() override;
    float* internalGetRawSlicePointer(std::int32_t raw) override { return m_slices[static_cast<std::size_t>(raw)]; }
    void internalAttachRawSlice(std::int32_t /*raw*/) override {}
    void internalDetachRawSlice(std::int32_t /*raw*/) override {}
    void internalSwapRawSlices(std::int32_t a, std::int32_t b) override;
    [[nodiscard]] bool internalStaysInMemory() const override { return true; }

private:
    LargeMemory m_block;
    std::vector<float*> m_slices;
};

// Slices one after the other, without pointers, for short ones.
class CWaterfallBufferRamFlat : public CWaterfallBuffer {
public:
    ~CWaterfallBufferRamFlat() override { FreeMemory(); }

    // The points of all slices, in 32 bits: a larger number wraps, and fails to allocate.
    [[nodiscard]] std::int32_t GetAllocSize() const { return GetAllocSize(GetRealSize(), GetZSize()); }
    static std::int32_t GetAllocSize(std::int32_t realSize, std::int32_t zSize);

protected:
    bool internalAllocate() override;
    void internalFreeMemory() override;
    float* internalGetRawSlicePointer(std::int32_t raw) override;
    void internalAttachRawSlice(std::int32_t /*raw*/) override {}
    void internalDetachRawSlice(std::int32_t /*raw*/) override {}
    void internalSwapRawSlices(std::int32_t a, std::int32_t b) override;
    [[nodiscard]] bool internalStaysInMemory() const override { return true; }

private:
    LargeMemory m_block;
};

// One block of zeros for all slices, for waterfalls whose data isn't needed.
class CWaterfallBufferAllZeroes : public CWaterfallBuffer {
public:
    ~CWaterfallBufferAllZeroes() override { FreeMemory(); }

protected:
    bool internalAllocate() override;
    void internalFreeMemory() override;
    float* internalGetRawSlicePointer(std::int32_t /*raw*/) override { return m_block; }
    // Zeros for the handlers of other slices too.
    void internalAttachRawSlice(std::int32_t raw) override;
    void internalDetachRawSlice(std::int32_t /*raw*/) override {}
    void internalSwapRawSlices(std::int32_t /*a*/, std::int32_t /*b*/) override {}

private:
    float* m_block = nullptr;
};

} // namespace ZelmResult
