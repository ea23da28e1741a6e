#pragma once

#include "bench/peers/result_set.h"

// The slices of a long run-up: real spectra, added one by one, looked up in any order, and stored as a whole.

namespace peers {

// A spectrum whose first value says which slice it is.
class SliceSource {
public:
    const float* Next(int slice)
    {
        m_values.front() = static_cast<float>(slice);
        return m_values.data();
    }

private:
    std::vector<float> m_values = std::vector<float>(kPoints, 1.0F);
};

inline constexpr std::size_t kSliceBytes = kPoints * sizeof(float);

enum class Room { Memory, Disk };

class SliceStore {
public:
    SliceStore() = default;
    SliceStore(const SliceStore&) = delete;
    SliceStore& operator=(const SliceStore&) = delete;
    virtual ~SliceStore() = default;

    virtual void Fill(int n, Room room, const Path& path) = 0; // the path is for room on disk
    virtual void Look(int slice, float* values) = 0;           // after Fill
    virtual void Make(int n) = 0;                              // in memory, to be saved
    virtual void Save(const Path& path) = 0;
    virtual void Load(const Path& path) = 0;
    [[nodiscard]] virtual float FirstOf(int slice) = 0; // after Load
};

// Has all values in one block when they are saved and loaded.
class PlainSliceStore : public SliceStore {
public:
    void Make(int n) override;
    [[nodiscard]] float FirstOf(int slice) override { return m_values[static_cast<std::size_t>(slice) * kPoints]; }

protected:
    void MakeRoom(std::size_t n);

    std::unique_ptr<float[]> m_values;
    std::vector<std::int32_t> m_blocks; // the number of each slice in the acquisition
};

std::unique_ptr<SliceStore> OurSlices();
std::unique_ptr<SliceStore> Hdf5SliceArray();
std::unique_ptr<SliceStore> Hdf5SliceChunks();
std::unique_ptr<SliceStore> SqliteSlices();

} // namespace peers
