#include "bench/peers/plain_file.h"
#include "bench/peers/slice_set.h"

#include <cstring>
#include <numeric>
#include <random>

namespace peers {

namespace {

constexpr const char* kFamily = "waterfalls";

// Slices one by one: each in memory of its own, or in its place in a file.
class Limits : public SliceStore {
public:
    explicit Limits(Path stored) : m_stored(std::move(stored)) {}

    void Fill(int n, Room room, const Path& path) override
    {
        if (room == Room::Disk) m_file = std::make_unique<PlainFile>(path, PlainFile::Access::Create);
        SliceSource source;
        m_slices.resize(room == Room::Memory ? static_cast<std::size_t>(n) : 0);
        for (int slice = 0; slice < n; ++slice) {
            const float* values = source.Next(slice);
            if (m_file != nullptr) {
                m_file->WriteAt(Position(slice), values, kSliceBytes);
                continue;
            }
            auto& target = m_slices[static_cast<std::size_t>(slice)];
            target = std::make_unique_for_overwrite<float[]>(kPoints);
            std::memcpy(target.get(), values, kSliceBytes);
        }
    }

    void Look(int slice, float* values) override
    {
        if (m_file != nullptr)
            (void)m_file->ReadAt(Position(slice), values, kSliceBytes);
        else
            std::memcpy(values, m_slices[static_cast<std::size_t>(slice)].get(), kSliceBytes);
    }

    void Make(int) override { m_bytes.assign(std::filesystem::file_size(m_stored), 'x'); }
    void Save(const Path& path) override { WritePlainly(path, m_bytes); }
    void Load(const Path&) override { m_memory = ReadPlainly(m_stored); }
    [[nodiscard]] float FirstOf(int slice) override { return static_cast<float>(slice); }

private:
    static std::size_t Position(int slice) { return static_cast<std::size_t>(slice) * kSliceBytes; }

    Path m_stored;
    std::unique_ptr<PlainFile> m_file;
    std::vector<std::unique_ptr<float[]>> m_slices;
    std::vector<char> m_bytes;
    FreshMemory m_memory;
};

std::unique_ptr<SliceStore> MakeStore(const Files& files, const std::string& contender, int n)
{
    if (contender == kLimit) return std::make_unique<Limits>(files.Stored(kFamily, kOurs, n));
    if (contender == kOurs) return OurSlices();
    if (contender == "hdf5-array") return Hdf5SliceArray();
    if (contender == "hdf5-chunks") return Hdf5SliceChunks();
    Require(contender == "sqlite", "finding the contender");
    return SqliteSlices();
}

Case FillCase(const std::shared_ptr<SliceStore>& store, Room room, const Path& fresh, int n)
{
    const auto check = [store, fresh, n] {
        std::vector<float> values(kPoints);
        store->Look(n - 1, values.data());
        Require(values.front() == static_cast<float>(n - 1), "filling a waterfall");
        std::filesystem::remove(fresh);
    };
    return {[] {}, [store, room, fresh, n] { store->Fill(n, room, fresh); }, check};
}

Case LookCase(const std::shared_ptr<SliceStore>& store, Room room, const Path& fresh, int n)
{
    std::mt19937 random(1);
    const auto slices = std::make_shared<std::vector<int>>(static_cast<std::size_t>(n));
    for (int& slice : *slices) slice = static_cast<int>(random() % static_cast<unsigned>(n));
    const auto values = std::make_shared<std::vector<float>>(kPoints);
    const auto run = [store, slices, values] {
        for (const int slice : *slices) store->Look(slice, values->data());
    };
    const auto check = [slices, values, fresh] {
        Require(values->front() == static_cast<float>(slices->back()), "looking up a slice");
        std::filesystem::remove(fresh);
    };
    return {[store, room, fresh, n] { store->Fill(n, room, fresh); }, run, check};
}

Case MakeCase(const Files& files, const std::string& job, const std::string& contender, int n)
{
    const std::shared_ptr<SliceStore> store = MakeStore(files, contender, n);
    const Path fresh = files.Fresh();
    if (job == "fill-memory") return FillCase(store, Room::Memory, fresh, n);
    if (job == "fill-disk") return FillCase(store, Room::Disk, fresh, n);
    if (job == "slice-memory") return LookCase(store, Room::Memory, fresh, n);
    if (job == "slice-disk") return LookCase(store, Room::Disk, fresh, n);
    if (job == "save")
        return {[store, n] { store->Make(n); }, [store, fresh] { store->Save(fresh); },
                [fresh] { Require(std::filesystem::remove(fresh), "a save"); }};
    Require(job == "load", "finding the job");
    const Path stored = files.Stored(kFamily, contender, n);
    const auto check = [store, n] {
        Require(store->FirstOf(n - 1) == static_cast<float>(n - 1), "reading what was stored");
    };
    return {[] {}, [store, stored] { store->Load(stored); }, check};
}

void Store(const Files& files, const std::string& contender, int n)
{
    if (contender == kLimit) return; // it reads ours
    const auto store = MakeStore(files, contender, n);
    store->Make(n);
    store->Save(files.Stored(kFamily, contender, n));
}

} // namespace

void PlainSliceStore::MakeRoom(std::size_t n)
{
    m_values = std::make_unique_for_overwrite<float[]>(n * kPoints);
    m_blocks.resize(n);
}

void PlainSliceStore::Make(int n)
{
    MakeRoom(static_cast<std::size_t>(n));
    std::iota(m_blocks.begin(), m_blocks.end(), 0);
    SliceSource source;
    for (int slice = 0; slice < n; ++slice)
        std::memcpy(m_values.get() + static_cast<std::size_t>(slice) * kPoints, source.Next(slice), kSliceBytes);
}

Family WaterfallFamily()
{
    return {kFamily,
            {{"fill-memory", "fill in memory", "memory for each slice, and a copy into it", 0.6},
             {"fill-disk", "fill on disk", "a plain write per slice", 1.2},
             {"slice-memory", "any slice, in memory", "a copy of the slice", 1.4},
             {"slice-disk", "any slice, on disk", "a plain read of the slice", 2.0},
             {"load", "load a stored one", "plain reads of 1 MiB into fresh memory", 0.8},
             {"save", "save a stored one", "plain writes of 1 MiB", 2.6}},
            {{kLimit, "limit"},
             {kOurs, "ours"},
             {"hdf5-array", "HDF5, one array"},
             {"hdf5-chunks", "HDF5, growing by chunks"},
             {"sqlite", "SQLite, row per slice"}},
            {20000},
            Store,
            MakeCase};
}

} // namespace peers
