#pragma once

#include "zelmresult/waterfalls/sorted_map.h"

#include <cstdint>
#include <vector>

namespace ZelmResult {

// One dimension of a waterfall: slices of realSize floats each, in memory or elsewhere. Callers access a slice through
// a handler, which pins it while it lives.
//
// Two indexes: a raw index, 0 to zSize - 1, names a slice; a slot of the sorted map, 0 to zSparseSize - 1, is the
// place at which a waterfall shows one, and holds a raw index or NO_SLICE. There may be more slots than slices.
//
// Life     made by CWaterfallBufferFactory, or by the host, and unallocated at first. Allocate and FreeMemory change
//          that; all handlers must end before these calls and before the buffer.
// Content  zeros until a slice is written.
// One thread at a time. Only IsAllocated and empty handlers report a failure.
class CWaterfallBuffer {
public:
    static constexpr std::int32_t NO_SLICE = SortedMap::kEmpty;

    // A pinned slice, or none. Copies pin it again. The operations on points need a slice: ask HasSlice first.
    class CSliceHandler {
    public:
        CSliceHandler() = default;
        CSliceHandler(const CSliceHandler& other) { Attach(other.m_owner, other.m_raw); }
        CSliceHandler& operator=(const CSliceHandler& other);
        ~CSliceHandler() { Detach(); }

        // Releases the former slice. With a null owner, or an index that it doesn't have, the handler becomes empty.
        void Attach(CWaterfallBuffer* owner, std::int32_t raw);
        void Detach();
        [[nodiscard]] bool HasSlice() const { return m_data != nullptr; }
        [[nodiscard]] float* GetSlicePointer() const { return m_data; } // lends while the slice is pinned
        [[nodiscard]] float GetSinglePoint(std::int32_t i) const { return m_data[i]; }
        void SetSinglePoint(std::int32_t i, float value) { m_data[i] = value; }
        // The first n points.
        void SetZero(std::int32_t n);
        void CopySliceFrom(const CSliceHandler& other, std::int32_t n) { CopySliceFrom(other.m_data, n); }
        void CopySliceFrom(const float* source, std::int32_t n);
        void CopySliceTo(float* target, std::int32_t n) const;
        void CopySliceTo(double* target, std::int32_t n) const;

    private:
        void LetGo();

        std::int32_t m_raw = NO_SLICE;
        CWaterfallBuffer* m_owner = nullptr;
        float* m_data = nullptr;
    };

    CWaterfallBuffer() = default;
    CWaterfallBuffer(const CWaterfallBuffer&) = delete;
    CWaterfallBuffer& operator=(const CWaterfallBuffer&) = delete;
    virtual ~CWaterfallBuffer() = default; // a variant's destructor frees its memory

    // Copies slices and map of a buffer of the same shape; for any other shape this one is emptied: its map holds
    // nothing and its slices zeros.
    virtual void CopyWaterfallBufferFrom(CWaterfallBuffer& source);
    // Copies a slice of another buffer with slices of the same length. Raw slice 0 is neither read nor written: it
    // never moves.
    virtual void CopySingleRawSliceFrom(CWaterfallBuffer& source, std::int32_t from, std::int32_t to);

    // Keeps the content when the sizes are the same and nothing was made sparse. With sizes below 1, or without memory,
    // the buffer is unallocated.
    void Allocate(std::int32_t realSize, std::int32_t zSize);
    void FreeMemory();
    [[nodiscard]] bool IsAllocated() const { return m_realSize != 0 && m_zSize != 0; }
    // Whether a slice could not be stored, or not be read back, since the last allocation.
    [[nodiscard]] virtual bool HasLostSlices() const { return false; }
    [[nodiscard]] std::int32_t GetRealSize() const { return m_realSize; }
    [[nodiscard]] std::int32_t GetZSize() const { return m_zSize; }
    [[nodiscard]] std::int32_t GetZSparseSize() const { return m_sortedIndex.size(); }
    // At least zSize slots; new ones are empty.
    void SetZSparseSize(std::int32_t slots);

    // Empty out of range.
    [[nodiscard]] CSliceHandler GetRawSlice(std::int32_t raw);
    [[nodiscard]] CSliceHandler GetSortedSlice(std::int32_t slot);
    // Lends a slice without pinning it; null out of range, and where only pinned slices are in memory.
    [[nodiscard]] const float* PeekRawSlice(std::int32_t raw)
    {
        return internalStaysInMemory() && HasRaw(raw) ? internalGetRawSlicePointer(raw) : nullptr;
    }
    [[nodiscard]] std::int32_t MapToRawIndex(std::int32_t slot) const // NO_SLICE out of range
    {
        return m_sortedIndex.Get(slot);
    }
    [[nodiscard]] bool HasMapToRawIndex(std::int32_t slot) const { return MapToRawIndex(slot) != NO_SLICE; }
    // Nothing for a slot out of range.
    void SetSortedIndex(std::int32_t slot, std::int32_t raw) { m_sortedIndex.Set(slot, raw); }
    void ClearSortedIndex(std::int32_t slot) { SetSortedIndex(slot, NO_SLICE); }
    void ClearSortedIndexes(std::int32_t from, std::int32_t count) { m_sortedIndex.Empty(from, count); }
    void ClearSortedIndexMap() { m_sortedIndex.Empty(); }
    void SwapSortedIndex(std::int32_t a, std::int32_t b);
    // Slices that aren't pinned. The map doesn't change.
    void SwapRawSlices(std::int32_t a, std::int32_t b);
    // Within this buffer, between 1 and zSize - 1.
    void CopySingleRawSlice(std::int32_t from, std::int32_t to);
    // 0.0 and nothing where there is no slice or no such point.
    [[nodiscard]] float GetRawSinglePoint(std::int32_t raw, std::int32_t i) const;
    void SetRawSinglePoint(std::int32_t raw, std::int32_t i, float value);
    [[nodiscard]] float GetSortedSinglePoint(std::int32_t slot, std::int32_t i) const;
    void SetSortedSinglePoint(std::int32_t slot, std::int32_t i, float value);
    [[nodiscard]] std::int32_t GetRawSliceCounter(std::int32_t raw) const; // handlers that pin the slice

protected:
    // Whether the machine has memory for that many points and for managing the slices.
    [[nodiscard]] bool FitsMemory(std::int64_t points) const;
    // What the variants implement. Raw indexes are valid.
    virtual bool internalAllocate() = 0;
    virtual void internalFreeMemory() = 0;
    virtual float* internalGetRawSlicePointer(std::int32_t raw) = 0;
    virtual void internalAttachRawSlice(std::int32_t raw) = 0; // the first handler came
    virtual void internalDetachRawSlice(std::int32_t raw) = 0; // the last one went
    virtual void internalSwapRawSlices(std::int32_t a, std::int32_t b) = 0;
    // False for a slice that is known to hold only zeros.
    [[nodiscard]] virtual bool internalHasContent(std::int32_t /*raw*/) const { return true; }
    // Whether a slice has its content where its pointer is, pinned or not.
    [[nodiscard]] virtual bool internalStaysInMemory() const { return false; }

private:
    [[nodiscard]] bool HasRaw(std::int32_t raw) const { return raw >= 0 && raw < m_zSize; }
    float* AttachRawSlice(std::int32_t raw);
    void DetachRawSlice(std::int32_t raw);
    void ForgetShape();

    std::int32_t m_realSize = 0;
    std::int32_t m_zSize = 0;
    SortedMap m_sortedIndex;
    std::vector<std::int32_t> m_sliceCounter;
};

} // namespace ZelmResult
