#pragma once

#include "zelmresult/storage/file_handle.h"
#include "zelmresult/waterfalls/temp_file.h"
#include "zelmresult/waterfalls/waterfall_buffer.h"

#include <memory>
#include <string>
#include <vector>

namespace ZelmResult {

// Slices in a temporary file that has no name any more and ends with the buffer, also after a crash. In memory are
// those that are pinned, and a few spare ones.
//
// Allocating fails when the directory for temporary files can't be used or has too little room. What fails later, such
// as a write to a full disk, is told to nobody: the slice then reads back as the file gives it.
class CWaterfallBufferDisk : public CWaterfallBuffer {
public:
    // Tells how many bytes may still be written to a directory; false when that isn't known.
    using FreeSpace = bool (*)(const std::string& directory, std::uint64_t& bytes);

    CWaterfallBufferDisk() = default;
    ~CWaterfallBufferDisk() override { FreeMemory(); }

    // Replaces the function that all such buffers ask when they allocate, and gives the former one. Class-wide and
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

private:
    [[nodiscard]] bool HasSpace() const;
    [[nodiscard]] std::size_t SliceBytes() const { return static_cast<std::size_t>(GetRealSize()) * sizeof(float); }
    float* AllocateSlice();
    void FreeSlice(float* memory);

    std::vector<float*> m_attachedSlices;     // by raw index; null for a slice that isn't in memory
    std::vector<std::int64_t> m_fileOffsets;  // by raw index
    std::unique_ptr<FileHandle> m_fileHandle; // null while no file is open
    std::unique_ptr<CTempFile> m_tempFile;
    std::int64_t m_nextFileOffset = 0; // where the next slice goes that isn't in the file yet
    std::vector<float*> m_freeSlices;  // a stack of spare memory
    bool m_hasLostSlices = false;
};

} // namespace ZelmResult
