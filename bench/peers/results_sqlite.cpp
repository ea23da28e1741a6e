#include "bench/peers/result_set.h"
#include "bench/peers/sqlite.h"

#include <cstring>

// Both layouts have one table with a row per result, and the values of a spectrum as one blob.

namespace peers {

namespace {

using namespace sqlite;

template <class T>
std::span<const std::byte> BytesOf(const T& value)
{
    return std::as_bytes(std::span(&value, 1));
}

template <class T>
void CopyTo(T& target, std::span<const std::byte> bytes)
{
    Require(bytes.size() == sizeof target, "a blob of that size");
    std::memcpy(&target, bytes.data(), sizeof target);
}

Spectrum ToSpectrum(std::span<const std::byte> bytes)
{
    Spectrum values(bytes.size() / sizeof(Spectrum::value_type));
    std::memcpy(values.data(), bytes.data(), bytes.size());
    return values;
}

// A column per field of the header.
struct Columns {
    static std::string Names()
    {
        std::string names = "date";
        const auto add = [&names](const auto& group) {
            for (const char* name : group) names += std::string(", ") + name;
        };
        add(kNumbers);
        add(kPlaces);
        add(kFlags);
        add(kTexts);
        return names;
    }
    static std::size_t Count() { return 1 + kNumbers.size() + kPlaces.size() + kFlags.size() + kTexts.size(); }

    void Bind(Statement& insert, const Header& header)
    {
        insert.Bind(header.date);
        for (const std::int32_t number : header.numbers) insert.Bind(std::int64_t{number});
        for (const Place& place : header.places) insert.Bind(BytesOf(place));
        for (const std::uint8_t flag : header.flags) insert.Bind(std::int64_t{flag});
        for (const std::string& text : header.texts) insert.Bind(text);
    }

    static Header Read(Statement& row)
    {
        Header header;
        header.date = row.Integer();
        for (std::int32_t& number : header.numbers) number = static_cast<std::int32_t>(row.Integer());
        for (Place& place : header.places) CopyTo(place, row.Bytes());
        for (std::uint8_t& flag : header.flags) flag = static_cast<std::uint8_t>(row.Integer());
        for (std::string& text : header.texts) text = row.Text();
        return header;
    }
};

// The header as one blob: its numbers, and each text after a byte with its length.
class Blob {
public:
    static std::string Names() { return "header"; }
    static std::size_t Count() { return 1; }

    void Bind(Statement& insert, const Header& header)
    {
        m_bytes.clear();
        Append(BytesOf(header.date));
        Append(BytesOf(header.numbers));
        Append(BytesOf(header.places));
        Append(BytesOf(header.flags));
        for (const std::string& text : header.texts) {
            Append(BytesOf(static_cast<std::uint8_t>(text.size())));
            Append(std::as_bytes(std::span(text)));
        }
        insert.Bind(std::span<const std::byte>(m_bytes));
    }

    static Header Read(Statement& row)
    {
        Header header;
        std::span<const std::byte> rest = row.Bytes();
        const auto take = [&rest](auto& target) {
            CopyTo(target, rest.first(sizeof target));
            rest = rest.subspan(sizeof target);
        };
        take(header.date);
        take(header.numbers);
        take(header.places);
        take(header.flags);
        for (std::string& text : header.texts) {
            std::uint8_t length = 0;
            take(length);
            text.assign(reinterpret_cast<const char*>(rest.data()), length);
            rest = rest.subspan(length);
        }
        return header;
    }

private:
    void Append(std::span<const std::byte> bytes) { m_bytes.insert(m_bytes.end(), bytes.begin(), bytes.end()); }

    std::vector<std::byte> m_bytes;
};

template <class HeaderForm>
class Store : public PlainResultStore {
public:
    void Save(const Path& path) override
    {
        const Database database(path);
        database.Execute("CREATE TABLE results (number INTEGER PRIMARY KEY, " + HeaderForm::Names() + ", spectrum)");
        Begin(database);
        std::string marks = "?, ?";
        for (std::size_t i = 0; i < HeaderForm::Count(); ++i) marks += ", ?";
        Statement insert(database, "INSERT INTO results VALUES (" + marks + ")");
        HeaderForm form;
        for (std::size_t i = 0; i < m_results.size(); ++i) {
            insert.Bind(static_cast<std::int64_t>(i));
            form.Bind(insert, m_results[i].header);
            insert.Bind(std::as_bytes(std::span(m_results[i].values))).Run();
        }
        Commit(database);
    }

    void Load(const Path& path) override
    {
        const Database database(path);
        Statement rows(database, "SELECT " + HeaderForm::Names() + ", spectrum FROM results");
        while (rows.Next()) m_results.push_back(ReadResult(rows));
    }

    void List(const Path& path) override
    {
        const Database database(path);
        Statement rows(database, "SELECT " + HeaderForm::Names() + " FROM results");
        while (rows.Next()) m_listed.push_back(HeaderForm::Read(rows));
    }

    void Fetch(const Path& path, int number) override
    {
        const Database database(path);
        Statement row(database, "SELECT " + HeaderForm::Names() + ", spectrum FROM results WHERE number = ?");
        Require(row.Bind(std::int64_t{number}).Next(), "a fetch");
        m_results.assign(1, ReadResult(row));
    }

private:
    static Result ReadResult(Statement& row)
    {
        Header header = HeaderForm::Read(row);
        return {std::move(header), ToSpectrum(row.Bytes())};
    }
};

} // namespace

std::unique_ptr<ResultStore> SqliteResultColumns() { return std::make_unique<Store<Columns>>(); }
std::unique_ptr<ResultStore> SqliteResultBlobs() { return std::make_unique<Store<Blob>>(); }

} // namespace peers
