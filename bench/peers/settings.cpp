#include "bench/peers/plain_file.h"
#include "bench/peers/setting_set.h"

namespace peers {

namespace {

constexpr const char* kFamily = "settings";
constexpr unsigned kPerSubmodule = 50;
constexpr unsigned kPerModule = 500;

std::unique_ptr<SettingStore> MakeStore(const std::string& contender)
{
    if (contender == kOurs) return OurSettings();
    if (contender == "hdf5-table") return Hdf5SettingTable();
    if (contender == "hdf5-groups") return Hdf5SettingGroups();
    Require(contender == "sqlite", "finding the contender");
    return SqliteSettings();
}

// The least that a load does: reads the bytes, and makes an object per setting with its texts.
Case LoadLimit(const Path& stored, int n)
{
    struct Work {
        std::vector<Setting> settings;
        FreshMemory memory;
        std::vector<std::unique_ptr<Setting>> objects;
    };
    const auto work = std::make_shared<Work>();
    const auto prepare = [work, n] {
        for (int i = 0; i < n; ++i) work->settings.push_back(MakeSetting(i));
    };
    const auto run = [work, stored] {
        work->memory = ReadPlainly(stored);
        for (const Setting& setting : work->settings) work->objects.push_back(std::make_unique<Setting>(setting));
    };
    return {prepare, run, [] {}};
}

Case SaveLimit(const Path& stored, const Path& fresh)
{
    const std::vector<char> bytes(std::filesystem::file_size(stored), 'x');
    return {[] {}, [bytes, fresh] { WritePlainly(fresh, bytes); }, [fresh] { std::filesystem::remove(fresh); }};
}

Case MakeCase(const Files& files, const std::string& job, const std::string& contender, int n)
{
    const Path stored = files.Stored(kFamily, contender == kLimit ? kOurs : contender, n);
    const Path fresh = files.Fresh();
    if (contender == kLimit) return job == "load" ? LoadLimit(stored, n) : SaveLimit(stored, fresh);
    const std::shared_ptr<SettingStore> store = MakeStore(contender);
    if (job == "save")
        return {[store, n] { store->Make(n); }, [store, fresh] { store->Save(fresh); },
                [fresh] { Require(std::filesystem::remove(fresh), "a save"); }};
    Require(job == "load", "finding the job");
    const auto check = [store, n] {
        std::size_t length = 0;
        for (int i = 0; i < n; ++i) length += MakeSetting(i).title.size();
        Require(store->Count() == static_cast<std::size_t>(n) && store->TitleLength() == length,
                "reading what was stored");
    };
    return {[] {}, [store, stored] { store->Load(stored); }, check};
}

void Store(const Files& files, const std::string& contender, int n)
{
    if (contender == kLimit) return; // it reads ours
    const auto store = MakeStore(contender);
    store->Make(n);
    store->Save(files.Stored(kFamily, contender, n));
}

} // namespace

Setting MakeSetting(int number)
{
    const auto i = static_cast<unsigned>(number);
    Setting setting;
    setting.place = {0, 20 + i / kPerModule, 1, 1 + i % kPerModule / kPerSubmodule, 1, 1 + i % kPerSubmodule};
    setting.kind = static_cast<SettingKind>(i % 3);
    setting.title = "Upper limit " + std::to_string(number);
    if (setting.kind == SettingKind::Text) setting.text = "Bearing, drive end";
    if (setting.kind == SettingKind::Number) setting.number = static_cast<float>(number);
    return setting;
}

void PlainSettingStore::Make(int n)
{
    for (int i = 0; i < n; ++i) m_settings.push_back(MakeSetting(i));
}

std::size_t PlainSettingStore::TitleLength() const
{
    std::size_t length = 0;
    for (const Setting& setting : m_settings) length += setting.title.size();
    return length;
}

Family SettingFamily()
{
    return {kFamily,
            {{"load", "load 5,000 settings", "a plain read, and an object per setting with its texts", 2.5},
             {"save", "save 5,000 settings", "plain writes of 1 MiB", 8.0}},
            {{kLimit, "limit"},
             {kOurs, "ours"},
             {"hdf5-table", "HDF5, one table"},
             {"hdf5-groups", "HDF5, groups as the tree"},
             {"sqlite", "SQLite, one table"}},
            {5000},
            Store,
            MakeCase};
}

} // namespace peers
