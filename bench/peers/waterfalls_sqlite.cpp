#include "bench/peers/slice_set.h"
#include "bench/peers/sqlite.h"

#include <cstring>

namespace peers {

namespace {

using namespace sqlite;

std::span<const std::byte> BytesOf(const float* values) { return std::as_bytes(std::span(values, kPoints)); }

class Store : public PlainSliceStore {
public:
    void Fill(int n, Room room, const Path& path) override
    {
        m_database = std::make_unique<Database>(room == Room::Memory ? ":memory:" : path);
        CreateTable(*m_database);
        Begin(*m_database);
        Statement insert(*m_database, "INSERT INTO slices VALUES (?, ?)");
        SliceSource source;
        for (int slice = 0; slice < n; ++slice)
            insert.Bind(std::int64_t{slice}).Bind(BytesOf(source.Next(slice))).Run();
        Commit(*m_database);
        m_look = std::make_unique<Statement>(*m_database, "SELECT slice FROM slices WHERE block = ?");
    }

    void Look(int slice, float* values) override
    {
        Require(m_look->Bind(std::int64_t{slice}).Next(), "looking up a slice");
        std::memcpy(values, m_look->Bytes().data(), kSliceBytes);
        m_look->Restart();
    }

    void Save(const Path& path) override
    {
        const Database database(path);
        CreateTable(database);
        Begin(database);
        Statement insert(database, "INSERT INTO slices VALUES (?, ?)");
        for (std::size_t slice = 0; slice < m_blocks.size(); ++slice)
            insert.Bind(std::int64_t{m_blocks[slice]}).Bind(BytesOf(m_values.get() + slice * kPoints)).Run();
        Commit(database);
    }

    void Load(const Path& path) override
    {
        const Database database(path);
        Statement count(database, "SELECT count(*) FROM slices");
        Require(count.Next(), "counting slices");
        MakeRoom(static_cast<std::size_t>(count.Integer()));
        Statement rows(database, "SELECT block, slice FROM slices");
        for (std::size_t slice = 0; rows.Next(); ++slice) {
            m_blocks[slice] = static_cast<std::int32_t>(rows.Integer());
            std::memcpy(m_values.get() + slice * kPoints, rows.Bytes().data(), kSliceBytes);
        }
    }

private:
    static void CreateTable(const Database& database)
    {
        database.Execute("CREATE TABLE slices (block INTEGER PRIMARY KEY, slice)");
    }

    std::unique_ptr<Database> m_database;
    std::unique_ptr<Statement> m_look; // ends before the data base
};

} // namespace

std::unique_ptr<SliceStore> SqliteSlices() { return std::make_unique<Store>(); }

} // namespace peers
