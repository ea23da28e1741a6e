#pragma once

#include "zelmresult/waterfalls/waterfall_buffer.h"

#include <memory>
#include <vector>

namespace ZelmResult {

// A vector of pointers that deletes its elements.
template <class T>
class COwnedPointerVector {
public:
    COwnedPointerVector() = default;
    COwnedPointerVector(const COwnedPointerVector&) = delete;
    COwnedPointerVector& operator=(const COwnedPointerVector&) = delete;
    virtual ~COwnedPointerVector() { Clear(); }

    void Append(T* element) // takes
    {
        std::unique_ptr<T> taken(element); // freed when there is no room
        m_elements.push_back(element);
        (void)taken.release();
    }
    [[nodiscard]] T* operator[](std::int32_t i) const { return m_elements[static_cast<std::size_t>(i)]; } // lends
    [[nodiscard]] std::int32_t GetCount() const { return static_cast<std::int32_t>(m_elements.size()); }
    [[nodiscard]] bool IsEmpty() const { return m_elements.empty(); }
    // From the last to the first.
    void Clear()
    {
        for (; !m_elements.empty(); m_elements.pop_back()) delete m_elements.back();
    }

private:
    std::vector<T*> m_elements;
};

// The dimensions of a waterfall: buffers of the same sizes, one for each part of its values. Its operations apply to
// all of them.
class CWaterfallBufferArray : public COwnedPointerVector<CWaterfallBuffer> {
public:
    [[nodiscard]] std::int32_t GetRealSize() const { return IsEmpty() ? 0 : (*this)[0]->GetRealSize(); }
    // Of the first one.
    [[nodiscard]] bool HasMapToRawIndex(std::int32_t slot) const
    {
        return !IsEmpty() && (*this)[0]->HasMapToRawIndex(slot);
    }
    void Allocate(std::int32_t realSize, std::int32_t zSize) { ForEach(&CWaterfallBuffer::Allocate, realSize, zSize); }
    void SetZSparseSize(std::int32_t slots) { ForEach(&CWaterfallBuffer::SetZSparseSize, slots); }
    void SwapSortedIndex(std::int32_t a, std::int32_t b) { ForEach(&CWaterfallBuffer::SwapSortedIndex, a, b); }
    void SetSortedIndex(std::int32_t slot, std::int32_t raw) { ForEach(&CWaterfallBuffer::SetSortedIndex, slot, raw); }
    void ClearSortedIndex(std::int32_t slot) { ForEach(&CWaterfallBuffer::ClearSortedIndex, slot); }
    void ClearSortedIndexes(std::int32_t from, std::int32_t count)
    {
        ForEach(&CWaterfallBuffer::ClearSortedIndexes, from, count);
    }
    void ClearSortedIndexMap() { ForEach(&CWaterfallBuffer::ClearSortedIndexMap); }
    void CopySingleRawSlice(std::int32_t from, std::int32_t to)
    {
        ForEach(&CWaterfallBuffer::CopySingleRawSlice, from, to);
    }

private:
    template <class... Arguments>
    void ForEach(void (CWaterfallBuffer::*operation)(Arguments...), Arguments... arguments)
    {
        for (std::int32_t i = 0; i < GetCount(); ++i) ((*this)[i]->*operation)(arguments...);
    }
};

// Where new buffers keep their slices; any other number acts as StrategyAuto.
enum class EStrategy : std::int32_t {
    StrategyAuto = 0,     // in memory
    StrategyDisk = 1,     // in a temporary file
    StrategyAllZeroes = 2 // not at all
};

class CWaterfallBufferFactory {
public:
    // Returns the former strategy. Class-wide and unguarded; the library never calls it.
    static EStrategy SetStrategy(EStrategy strategy);
    // Never null, but unallocated when there is no room: ask IsAllocated.
    static std::unique_ptr<CWaterfallBuffer> CreateAndAllocate(std::int32_t realSize, std::int32_t zSize);
    // Appends that many; none for a count below 1.
    static void FillAndAllocateArray(CWaterfallBufferArray& array, std::int32_t count, std::int32_t realSize,
                                     std::int32_t zSize);
};

} // namespace ZelmResult
