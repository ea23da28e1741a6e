#pragma once

#include "bench/peers/result_set.h"

// The settings that every contender keeps: texts, numbers and switches in equal parts.

namespace peers {

enum class SettingKind : std::uint8_t { Text, Number, Switch };

struct Setting {
    Place place{}; // analyzer, module and submodule with their instances, setting
    SettingKind kind = SettingKind::Text;
    std::string title;
    bool visible = true;
    std::string text;
    float number = 0;
    std::array<std::uint32_t, 4> words{}; // with a number
    bool flag = false;                    // the switch; with a number another one
};

Setting MakeSetting(int number);

class SettingStore {
public:
    SettingStore() = default;
    SettingStore(const SettingStore&) = delete;
    SettingStore& operator=(const SettingStore&) = delete;
    virtual ~SettingStore() = default;

    virtual void Make(int n) = 0; // in memory, to be saved
    virtual void Save(const Path& path) = 0;
    virtual void Load(const Path& path) = 0;
    [[nodiscard]] virtual std::size_t Count() const = 0;       // of those that are in memory
    [[nodiscard]] virtual std::size_t TitleLength() const = 0; // of all of them together
};

// In the plain struct above.
class PlainSettingStore : public SettingStore {
public:
    void Make(int n) override;
    [[nodiscard]] std::size_t Count() const override { return m_settings.size(); }
    [[nodiscard]] std::size_t TitleLength() const override;

protected:
    std::vector<Setting> m_settings;
};

std::unique_ptr<SettingStore> OurSettings();
std::unique_ptr<SettingStore> Hdf5SettingGroups();
std::unique_ptr<SettingStore> Hdf5SettingTable();
std::unique_ptr<SettingStore> SqliteSettings();

} // namespace peers
