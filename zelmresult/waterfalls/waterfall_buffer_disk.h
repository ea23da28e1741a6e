#pragma once

#include "zelmresult/waterfalls/waterfall_buffer.h"

#include <memory>
#include <string>
#include <vector>

namespace ZelmResult {

class ScratchSpace;

// Slices in the temporary file that all such buffers share. In memory are those that are pinned, each beside a copy of
// what the file holds, so that only changes are written, and a few spare ones.
//
// Allocating fails when the directory for temporary files can't be used or has too little room. Only HasLostSlices
// reports a later failure, such as a write to a full disk: the slice is then what the file holds, or zeros.
class CWaterfallBufferDisk : public CWaterfallBuffer {
public:
    // Says how many bytes may still be written to a directory; false when that isn't known.
    using FreeSpace = bool (*)(const std::string& directory, std::uint64_t& bytes);

    CWaterfallBufferDisk() = default;
    ~CWaterfallBufferDisk() override { FreeMemory(); }

    // Replaces the function that all such buffers ask when they allocate, and returns the former one. Class-wide and
    // unguarded.
    static FreeSpace SetFreeSpace(FreeSpace query);
    [[nodiscard]] bool HasLostSlices() const override { return m_hasLostSlices; }

protected:
    bool internalAllocate() override;
    void internalFreeMemory() override;
    float* internalGetRawSlicePointer(std::int32_t raw) override;
    void internalAttachRawSlice(std::int32_t raw) override;
    void internalDetachRawSlice(std::int32_t raw) override;
    void internalSwapRawSlices(std::int32_t a, std::int32_t b) override;
    [[nodiscard]] bool internalHasContent(std::int32_t raw) const override;

private:
    // Slices are in few large pieces of the file.
    struct Piece {
        std::int64_t position;
        std::int64_t bytes;
    };

    [[nodiscard]] bool HasSpace() const;
    [[nodiscard]] std::size_t SlicePoints() const { return static_cast<std::size_t>(GetRealSize()); }
    [[nodiscard]] std::int64_t SliceBytes() const
    {
        return std::int64_t{GetRealSize()} * static_cast<std::int64_t>(sizeof(float));
    }
    [[nodiscard]] std::int64_t PlaceForSlice();
    [[nodiscard]] bool TakePiece();
    float* AllocateSlice(); // for a slice and its copy
    void FreeSlice(float* memory);

    std::vector<float*> m_attachedSlices;      // by raw index; null for a slice that isn't in memory
    std::vector<std::int32_t> m_swappedSlices; // while they were pinned: the copies beside them are of other places
    std::vector<std::int64_t> m_fileOffsets;   // by raw index
    std::shared_ptr<ScratchSpace> m_space;     // null while there is nothing to keep
    std::vector<Piece> m_pieces;
    std::int64_t m_usedOfPiece = 0;   // bytes of the last one
    std::int32_t m_storedSlices = 0;  // slices that have a place in the file
    std::vector<float*> m_freeSlices; // a stack of spare memory
    bool m_hasLostSlices = false;
};

} // namespace ZelmResult
