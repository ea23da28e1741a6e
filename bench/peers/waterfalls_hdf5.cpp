#include "bench/peers/hdf5.h"
#include "bench/peers/slice_set.h"

#include <algorithm>
#include <optional>

namespace peers {

namespace {

using namespace hdf5;

constexpr hsize_t kTogether = 64; // slices in a chunk, or in one write to the array

// Slices in rows of one data set. A host that knows how many there will be makes an array of that size, and writes
// kTogether slices at once; else it lets the data set grow by chunks, and writes slice by slice.
class Store : public PlainSliceStore {
public:
    explicit Store(bool grows) : m_grows(grows) {}

    void Fill(int n, Room room, const Path& path) override
    {
        const auto count = static_cast<hsize_t>(n);
        m_file = CreateFile(path, room == Room::Memory ? Where::Memory : Where::Disk);
        m_data = CreateSlices(*m_file, count);
        m_rows.emplace(*m_data, H5T_NATIVE_FLOAT);
        SliceSource source;
        std::vector<float> block;
        for (hsize_t slice = 0; slice < count; ++slice) {
            const float* values = source.Next(static_cast<int>(slice));
            if (m_grows) {
                m_rows->Write(slice, 1, values);
                continue;
            }
            block.insert(block.end(), values, values + kPoints);
            const hsize_t collected = block.size() / kPoints;
            if (collected < kTogether && slice + 1 < count) continue;
            m_rows->Write(slice + 1 - collected, collected, block.data());
            block.clear();
        }
    }

    void Look(int slice, float* values) override { m_rows->Read(static_cast<hsize_t>(slice), 1, values); }

    void Save(const Path& path) override
    {
        const Handle file = CreateFile(path);
        const Handle blocks = CreateData(file, "blocks", H5T_NATIVE_INT32, {m_blocks.size()});
        Do(::H5Dwrite(blocks, H5T_NATIVE_INT32, H5S_ALL, H5S_ALL, H5P_DEFAULT, m_blocks.data()));
        const Handle slices = CreateSlices(file, m_blocks.size());
        Do(::H5Dwrite(slices, H5T_NATIVE_FLOAT, H5S_ALL, H5S_ALL, H5P_DEFAULT, m_values.get()));
    }

    void Load(const Path& path) override
    {
        const Handle file = OpenFile(path);
        const Handle blocks = OpenData(file, "blocks");
        MakeRoom(Rows(blocks, H5T_NATIVE_INT32).count());
        Do(::H5Dread(blocks, H5T_NATIVE_INT32, H5S_ALL, H5S_ALL, H5P_DEFAULT, m_blocks.data()));
        const Handle slices = OpenData(file, "slices");
        Do(::H5Dread(slices, H5T_NATIVE_FLOAT, H5S_ALL, H5S_ALL, H5P_DEFAULT, m_values.get()));
    }

private:
    [[nodiscard]] Handle CreateSlices(hid_t file, hsize_t n) const
    {
        const std::vector<hsize_t> extent{n, kPoints};
        if (m_grows)
            return CreateChunkedData(file, "slices", H5T_NATIVE_FLOAT, extent, {std::min(n, kTogether), kPoints});
        return CreateData(file, "slices", H5T_NATIVE_FLOAT, extent);
    }

    bool m_grows;
    std::optional<Handle> m_file;
    std::optional<Handle> m_data;
    std::optional<Rows> m_rows; // ends before the data and the file
};

} // namespace

std::unique_ptr<SliceStore> Hdf5SliceArray() { return std::make_unique<Store>(false); }
std::unique_ptr<SliceStore> Hdf5SliceChunks() { return std::make_unique<Store>(true); }

} // namespace peers
