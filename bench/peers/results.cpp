#include "bench/peers/plain_file.h"
#include "bench/peers/result_set.h"

#include <random>

namespace peers {

namespace {

constexpr const char* kFamily = "results";
constexpr int kFetches = 25;

// A host fetches what it has listed.
Case FetchCase(const std::shared_ptr<ResultStore>& store, const Path& stored, int n)
{
    std::mt19937 random(1);
    std::vector<int> numbers(kFetches);
    for (int& number : numbers) number = static_cast<int>(random() % static_cast<unsigned>(n));
    const auto run = [store, stored, numbers] {
        for (const int number : numbers) store->Fetch(stored, number);
    };
    const auto check = [store, numbers] {
        const double last = ValueAt(numbers.back(), kPoints - 1).real();
        Require(store->Found().values == last, "a fetch");
    };
    return {[store, stored] { store->List(stored); }, run, check};
}

// Finds nothing. A walk over all headers is the limit of a list, and of the fetches.
class Limits : public ResultStore {
public:
    explicit Limits(Path stored) : m_stored(std::move(stored)) {}

    void Make(int) override { m_bytes.assign(std::filesystem::file_size(m_stored), 'x'); }
    void Save(const Path& path) override { WritePlainly(path, m_bytes); }
    void Load(const Path& path) override { m_memory = ReadPlainly(path); }
    void List(const Path& path) override { m_headers = WalkHeaders(path); }
    void Fetch(const Path&, int) override {}
    [[nodiscard]] Seen Found() const override { return {m_headers.size(), 0, 0}; }

private:
    Path m_stored;
    std::vector<char> m_bytes;
    FreshMemory m_memory;
    std::vector<std::vector<char>> m_headers;
};

std::unique_ptr<ResultStore> MakeStore(const Files& files, const std::string& contender, int n)
{
    if (contender == kLimit) return std::make_unique<Limits>(files.Stored(kFamily, kOurs, n));
    if (contender == kOurs) return OurResults();
    if (contender == "hdf5-groups") return Hdf5ResultGroups();
    if (contender == "hdf5-tables") return Hdf5ResultTables();
    if (contender == "sqlite-columns") return SqliteResultColumns();
    Require(contender == "sqlite-blobs", "finding the contender");
    return SqliteResultBlobs();
}

void CheckFound(const Seen& found, int n, bool withValues)
{
    Seen expected;
    for (int i = 0; i < n; ++i) {
        ++expected.count;
        expected.channels += i;
        if (withValues) expected.values += ValueAt(i, kPoints - 1).real();
    }
    Require(found == expected, "reading what was stored");
}

Case LimitCase(const std::shared_ptr<ResultStore>& store, const std::string& job, const Path& stored, int n)
{
    if (job == "load") return {[] {}, [store, stored] { store->Load(stored); }, [] {}};
    return {[] {}, [store, stored] { store->List(stored); },
            [store, n] { Require(store->Found().count == static_cast<std::size_t>(n), "the walk over headers"); }};
}

Case MakeCase(const Files& files, const std::string& job, const std::string& contender, int n)
{
    const std::shared_ptr<ResultStore> store = MakeStore(files, contender, n);
    if (job == "save") {
        const Path fresh = files.Fresh();
        return {[store, n] { store->Make(n); }, [store, fresh] { store->Save(fresh); },
                [fresh] { Require(std::filesystem::remove(fresh), "a save"); }};
    }
    const Path stored = files.Stored(kFamily, contender == kLimit ? kOurs : contender, n);
    if (contender == kLimit) return LimitCase(store, job, stored, n);
    if (job == "fetch") return FetchCase(store, stored, n);
    if (job == "load")
        return {[] {}, [store, stored] { store->Load(stored); }, [store, n] { CheckFound(store->Found(), n, true); }};
    Require(job == "list", "finding the job");
    return {[] {}, [store, stored] { store->List(stored); }, [store, n] { CheckFound(store->Found(), n, false); }};
}

void Store(const Files& files, const std::string& contender, int n)
{
    if (contender == kLimit) return; // it reads ours
    const auto store = MakeStore(files, contender, n);
    store->Make(n);
    store->Save(files.Stored(kFamily, contender, n));
}

} // namespace

Header MakeHeader(int number)
{
    Header header;
    header.date = 1790000000 + number;
    header.numbers[0] = 2;
    header.numbers[kResponseChannel] = number;
    header.places.fill({0, 3, 1, 7, 1, 0});
    header.texts = {"Run-up of the machine, second day",
                    "Bearing, drive end, horizontal",
                    "Tacho",
                    "/measurements/2026/november/run_17.zmxf",
                    "Averaged autospectrum",
                    "Autospectrum",
                    "Analyzer 1",
                    "Identification",
                    "Cut",
                    "Speed"};
    return header;
}

std::complex<float> ValueAt(int number, std::size_t point)
{
    return {static_cast<float>(number % 1000) + static_cast<float>(point), -static_cast<float>(point)};
}

Spectrum MakeSpectrum(int number)
{
    Spectrum values(kPoints);
    for (std::size_t point = 0; point < kPoints; ++point) values[point] = ValueAt(number, point);
    return values;
}

void PlainResultStore::Make(int n)
{
    m_results.resize(static_cast<std::size_t>(n));
    for (int i = 0; i < n; ++i) m_results[static_cast<std::size_t>(i)] = {MakeHeader(i), MakeSpectrum(i)};
}

Seen PlainResultStore::Found() const
{
    Seen found{m_results.size() + m_listed.size(), 0, 0};
    for (const Header& header : m_listed) found.channels += header.numbers[kResponseChannel];
    for (const Result& result : m_results) {
        found.channels += result.header.numbers[kResponseChannel];
        found.values += result.values.back().real();
    }
    return found;
}

Family ResultFamily()
{
    return {kFamily,
            {{"save", "save", "plain writes of 1 MiB", 2.6},
             {"load", "load all", "plain reads of 1 MiB into fresh memory", 2.0},
             {"list", "list headers", "a walk that copies the bytes of headers", 1.4},
             {"fetch", "fetch 25, file opened again for each", "the same walk, once", 0.2}},
            {{kLimit, "limit"},
             {kOurs, "ours"},
             {"hdf5-tables", "HDF5, two tables"},
             {"hdf5-groups", "HDF5, group per result"},
             {"sqlite-blobs", "SQLite, blobs"},
             {"sqlite-columns", "SQLite, column per field"}},
            {1000, 5000, 9999},
            Store,
            MakeCase};
}

} // namespace peers
