#include "bench/peers/setting_set.h"
#include "bench/peers/sqlite.h"

#include <cstring>

// One table; what a kind of setting doesn't have takes no room.

namespace peers {

namespace {

using namespace sqlite;

constexpr std::size_t kWordBytes = sizeof(Setting::words);

class Store : public PlainSettingStore {
public:
    void Save(const Path& path) override
    {
        const Database database(path);
        database.Execute("CREATE TABLE settings (analyzer, module, module_instance, submodule, submodule_instance, "
                         "setting, kind, title, visible, flag, text, number, words)");
        Begin(database);
        Statement text(database, "INSERT INTO settings VALUES (?,?,?,?,?,?,?,?,?,?,?,NULL,NULL)");
        Statement number(database, "INSERT INTO settings VALUES (?,?,?,?,?,?,?,?,?,?,NULL,?,?)");
        Statement flag(database, "INSERT INTO settings VALUES (?,?,?,?,?,?,?,?,?,?,NULL,NULL,NULL)");
        for (const Setting& setting : m_settings) {
            if (setting.kind == SettingKind::Text)
                BindCommon(text, setting).Bind(setting.text).Run();
            else if (setting.kind == SettingKind::Number)
                BindCommon(number, setting)
                    .Bind(static_cast<double>(setting.number))
                    .Bind(std::as_bytes(std::span(setting.words)))
                    .Run();
            else
                BindCommon(flag, setting).Run();
        }
        Commit(database);
    }

    void Load(const Path& path) override
    {
        const Database database(path);
        Statement rows(database, "SELECT * FROM settings");
        while (rows.Next()) m_settings.push_back(Read(rows));
    }

private:
    static Statement& BindCommon(Statement& insert, const Setting& setting)
    {
        for (const std::uint32_t number : setting.place) insert.Bind(std::int64_t{number});
        return insert.Bind(static_cast<std::int64_t>(setting.kind))
            .Bind(setting.title)
            .Bind(std::int64_t{setting.visible})
            .Bind(std::int64_t{setting.flag});
    }

    static Setting Read(Statement& row)
    {
        Setting setting;
        for (std::uint32_t& number : setting.place) number = static_cast<std::uint32_t>(row.Integer());
        setting.kind = static_cast<SettingKind>(row.Integer());
        setting.title = row.Text();
        setting.visible = row.Integer() != 0;
        setting.flag = row.Integer() != 0;
        if (setting.kind == SettingKind::Text) setting.text = row.Text();
        if (setting.kind != SettingKind::Number) return setting;
        row.Skip();
        setting.number = static_cast<float>(row.Real());
        const std::span<const std::byte> words = row.Bytes();
        Require(words.size() == kWordBytes, "a blob of that size");
        std::memcpy(setting.words.data(), words.data(), kWordBytes);
        return setting;
    }
};

} // namespace

std::unique_ptr<SettingStore> SqliteSettings() { return std::make_unique<Store>(); }

} // namespace peers
