#include "bench/peers/fixed_text.h"
#include "bench/peers/hdf5.h"
#include "bench/peers/result_set.h"

#include <algorithm>

// The fastest layout: all headers in one table, with room for the longest text, and all values in another.

namespace peers {

namespace {

using namespace hdf5;

struct Row {
    std::int64_t date = 0;
    std::array<std::int32_t, kNumbers.size()> numbers{};
    std::array<Place, kPlaces.size()> places{};
    std::array<std::uint8_t, kFlags.size()> flags{};
    std::array<FixedText, kTexts.size()> texts{};
};

Handle RowType()
{
    const Handle place = Array(H5T_NATIVE_UINT32, std::tuple_size_v<Place>);
    const Handle text = Text(kTextSize);
    std::vector<Member> members{{"date", offsetof(Row, date), H5T_NATIVE_INT64}};
    for (std::size_t i = 0; i < kNumbers.size(); ++i)
        members.push_back({kNumbers[i], offsetof(Row, numbers) + i * sizeof(std::int32_t), H5T_NATIVE_INT32});
    for (std::size_t i = 0; i < kPlaces.size(); ++i)
        members.push_back({kPlaces[i], offsetof(Row, places) + i * sizeof(Place), place});
    for (std::size_t i = 0; i < kFlags.size(); ++i)
        members.push_back({kFlags[i], offsetof(Row, flags) + i, H5T_NATIVE_UINT8});
    for (std::size_t i = 0; i < kTexts.size(); ++i)
        members.push_back({kTexts[i], offsetof(Row, texts) + i * sizeof(FixedText), text});
    return Compound(sizeof(Row), members);
}

Row ToRow(const Header& header)
{
    Row row{header.date, header.numbers, header.places, header.flags, {}};
    for (std::size_t i = 0; i < kTexts.size(); ++i) SetText(row.texts[i], header.texts[i]);
    return row;
}

Header ToHeader(const Row& row)
{
    Header header{row.date, row.numbers, row.places, row.flags, {}};
    for (std::size_t i = 0; i < kTexts.size(); ++i) header.texts[i] = row.texts[i].data();
    return header;
}

class Store : public PlainResultStore {
public:
    void Save(const Path& path) override
    {
        const Handle file = CreateFile(path);
        const hsize_t n = m_results.size();
        const Handle headerData = CreateData(file, "headers", m_rowType, {n});
        const Handle valueData = CreateData(file, "values", H5T_NATIVE_FLOAT, {n, kPoints, 2});
        Rows headers(headerData, m_rowType);
        Rows values(valueData, H5T_NATIVE_FLOAT);
        std::vector<Row> rows;
        Spectrum block;
        for (hsize_t first = 0; first < n; first += kBlock) {
            rows.clear();
            block.clear();
            for (hsize_t i = first; i < std::min(n, first + kBlock); ++i) {
                rows.push_back(ToRow(m_results[i].header));
                block.insert(block.end(), m_results[i].values.begin(), m_results[i].values.end());
            }
            headers.Write(first, rows.size(), rows.data());
            values.Write(first, rows.size(), block.data());
        }
    }

    void Load(const Path& path) override
    {
        const Handle file = OpenFile(path);
        m_results.reserve(RowCount(file));
        ForEachRow(file, [this](const Row& row) { m_results.push_back({ToHeader(row), {}}); });
        const Handle data = OpenData(file, "values");
        Rows values(data, H5T_NATIVE_FLOAT);
        Spectrum block(kBlock * kPoints);
        for (hsize_t first = 0; first < m_results.size(); first += kBlock) {
            const hsize_t n = std::min<hsize_t>(kBlock, m_results.size() - first);
            values.Read(first, n, block.data());
            auto value = block.begin();
            for (hsize_t i = first; i < first + n; ++i, value += kPoints)
                m_results[i].values.assign(value, value + kPoints);
        }
    }

    void List(const Path& path) override
    {
        const Handle file = OpenFile(path);
        m_listed.reserve(RowCount(file));
        ForEachRow(file, [this](const Row& row) { m_listed.push_back(ToHeader(row)); });
    }

    void Fetch(const Path& path, int number) override
    {
        const Handle file = OpenFile(path);
        const Handle headerData = OpenData(file, "headers");
        Row row;
        Rows(headerData, m_rowType).Read(static_cast<hsize_t>(number), 1, &row);
        m_results.assign(1, {ToHeader(row), Spectrum(kPoints)});
        const Handle valueData = OpenData(file, "values");
        Rows(valueData, H5T_NATIVE_FLOAT).Read(static_cast<hsize_t>(number), 1, m_results.front().values.data());
    }

private:
    static constexpr hsize_t kBlock = 64; // results that are written or read at once: they stay in the cache

    [[nodiscard]] std::size_t RowCount(const Handle& file) const
    {
        const Handle data = OpenData(file, "headers");
        return Rows(data, m_rowType).count();
    }

    template <class Action>
    void ForEachRow(const Handle& file, const Action& action) const
    {
        const Handle data = OpenData(file, "headers");
        Rows headers(data, m_rowType);
        std::vector<Row> rows(kBlock);
        for (hsize_t first = 0; first < headers.count(); first += kBlock) {
            const hsize_t n = std::min<hsize_t>(kBlock, headers.count() - first);
            headers.Read(first, n, rows.data());
            std::for_each_n(rows.begin(), n, action);
        }
    }

    Handle m_rowType = RowType();
};

} // namespace

std::unique_ptr<ResultStore> Hdf5ResultTables() { return std::make_unique<Store>(); }

} // namespace peers
