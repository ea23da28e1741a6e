#include "bench/peers/fixed_text.h"
#include "bench/peers/hdf5.h"
#include "bench/peers/setting_set.h"

namespace peers {

namespace {

using namespace hdf5;

// ---- Groups as the tree has them, with an attribute per field ----

void CallForChild(hid_t place, const char* name, const std::function<void(hid_t)>& action)
{
    action(OpenGroup(place, name));
}

void ForEachChild(hid_t place, const std::function<void(hid_t)>& action)
{
    const auto visit = [](hid_t group, const char* name, const H5L_info_t*, void* what) -> herr_t {
        CallForChild(group, name, *static_cast<const std::function<void(hid_t)>*>(what));
        return 0;
    };
    auto copy = action;
    Do(::H5Literate(place, H5_INDEX_NAME, H5_ITER_NATIVE, nullptr, visit, &copy));
}

class Groups : public PlainSettingStore {
public:
    void Save(const Path& path) override
    {
        const Handle file = CreateFile(path);
        Handle module = CreateGroup(file, "0");
        Handle submodule = CreateGroup(module, "0");
        Place current{};
        for (const Setting& setting : m_settings) {
            const bool newModule = setting.place[1] != current[1];
            if (newModule) module = CreateGroup(file, std::to_string(setting.place[1]));
            if (newModule || setting.place[3] != current[3])
                submodule = CreateGroup(module, std::to_string(setting.place[3]));
            current = setting.place;
            Write(CreateGroup(submodule, std::to_string(setting.place[5])), setting);
        }
    }

    void Load(const Path& path) override
    {
        ForEachChild(OpenFile(path), [this](hid_t module) {
            ForEachChild(module, [this](hid_t submodule) {
                ForEachChild(submodule, [this](hid_t setting) { m_settings.push_back(Read(setting)); });
            });
        });
    }

private:
    void Write(hid_t group, const Setting& setting) const
    {
        WriteAttribute(group, "place", m_place, setting.place.data());
        WriteAttribute(group, "kind", H5T_NATIVE_UINT8, &setting.kind);
        WriteTextAttribute(group, "title", setting.title);
        WriteAttribute(group, "visible", H5T_NATIVE_HBOOL, &setting.visible);
        if (setting.kind == SettingKind::Text) return WriteTextAttribute(group, "text", setting.text);
        WriteAttribute(group, "flag", H5T_NATIVE_HBOOL, &setting.flag);
        if (setting.kind == SettingKind::Switch) return;
        WriteAttribute(group, "number", H5T_NATIVE_FLOAT, &setting.number);
        WriteAttribute(group, "words", m_words, setting.words.data());
    }

    [[nodiscard]] Setting Read(hid_t group) const
    {
        Setting setting;
        ReadAttribute(group, "place", m_place, setting.place.data());
        ReadAttribute(group, "kind", H5T_NATIVE_UINT8, &setting.kind);
        setting.title = ReadTextAttribute(group, "title");
        ReadAttribute(group, "visible", H5T_NATIVE_HBOOL, &setting.visible);
        if (setting.kind == SettingKind::Text) setting.text = ReadTextAttribute(group, "text");
        if (setting.kind == SettingKind::Text) return setting;
        ReadAttribute(group, "flag", H5T_NATIVE_HBOOL, &setting.flag);
        if (setting.kind == SettingKind::Switch) return setting;
        ReadAttribute(group, "number", H5T_NATIVE_FLOAT, &setting.number);
        ReadAttribute(group, "words", m_words, setting.words.data());
        return setting;
    }

    Handle m_place = Array(H5T_NATIVE_UINT32, std::tuple_size_v<Place>);
    Handle m_words = Array(H5T_NATIVE_UINT32, 4);
};

// ---- One table, with room in each row for all kinds and for the longest text ----

struct Row {
    Place place{};
    std::array<std::uint32_t, 4> words{};
    float number = 0;
    FixedText title{};
    FixedText text{};
    SettingKind kind = SettingKind::Text;
    bool visible = true;
    bool flag = false;
};

Handle RowType()
{
    const Handle place = Array(H5T_NATIVE_UINT32, std::tuple_size_v<Place>);
    const Handle words = Array(H5T_NATIVE_UINT32, 4);
    const Handle text = Text(kTextSize);
    return Compound(sizeof(Row), {{"place", offsetof(Row, place), place},
                                  {"words", offsetof(Row, words), words},
                                  {"number", offsetof(Row, number), H5T_NATIVE_FLOAT},
                                  {"title", offsetof(Row, title), text},
                                  {"text", offsetof(Row, text), text},
                                  {"kind", offsetof(Row, kind), H5T_NATIVE_UINT8},
                                  {"visible", offsetof(Row, visible), H5T_NATIVE_HBOOL},
                                  {"flag", offsetof(Row, flag), H5T_NATIVE_HBOOL}});
}

class Table : public PlainSettingStore {
public:
    void Save(const Path& path) override
    {
        std::vector<Row> rows;
        rows.reserve(m_settings.size());
        for (const Setting& setting : m_settings) {
            Row& row = rows.emplace_back(
                Row{setting.place, setting.words, setting.number, {}, {}, setting.kind, setting.visible, setting.flag});
            SetText(row.title, setting.title);
            SetText(row.text, setting.text);
        }
        const Handle file = CreateFile(path);
        const Handle data = CreateData(file, "settings", m_rowType, {rows.size()});
        Rows(data, m_rowType).Write(0, rows.size(), rows.data());
    }

    void Load(const Path& path) override
    {
        const Handle file = OpenFile(path);
        const Handle data = OpenData(file, "settings");
        Rows stored(data, m_rowType);
        std::vector<Row> rows(stored.count());
        stored.Read(0, rows.size(), rows.data());
        m_settings.reserve(rows.size());
        for (const Row& row : rows)
            m_settings.push_back(
                {row.place, row.kind, row.title.data(), row.visible, row.text.data(), row.number, row.words, row.flag});
    }

private:
    Handle m_rowType = RowType();
};

} // namespace

std::unique_ptr<SettingStore> Hdf5SettingGroups() { return std::make_unique<Groups>(); }
std::unique_ptr<SettingStore> Hdf5SettingTable() { return std::make_unique<Table>(); }

} // namespace peers
