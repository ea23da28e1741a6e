#include "bench/peers/setting_set.h"
#include "zelmresult/storage/chunk_codes.h"
#include "zelmresult/storage/nested_chunk.h"
#include "zelmresult/zelmresult.h"

namespace peers {

namespace {

using namespace ZelmResult;

std::unique_ptr<CReglageData> NewSetting(const Setting& plain)
{
    std::unique_ptr<CReglageData> setting;
    if (plain.kind == SettingKind::Text) {
        auto text = std::make_unique<CChaineData>();
        text->setValue(FromUtf8(plain.text));
        setting = std::move(text);
    } else if (plain.kind == SettingKind::Number) {
        auto number = std::make_unique<CScalaireData>();
        number->setValue(plain.number);
        number->setWords(plain.words);
        setting = std::move(number);
    } else {
        setting = std::make_unique<CBooleenData>();
    }
    const Place& place = plain.place;
    setting->info().SetIDN({idn::Analyzer(place[0]), idn::Module(place[1], place[2]),
                            idn::Submodule(place[3], place[4]), idn::Setting(place[5])});
    setting->setTitleString(FromUtf8(plain.title));
    setting->setVisible(plain.visible);
    return setting;
}

class Store : public SettingStore {
public:
    void Make(int n) override
    {
        for (int i = 0; i < n; ++i) m_tree.AddReglage(NewSetting(MakeSetting(i)).release());
    }

    void Save(const Path& path) override
    {
        CMmioFile file(false);
        OMMIOINFO info{1048576, 0};
        Require(file.Open(FromUtf8(path.string()), &info, OMMIO_CREATE | OMMIO_WRITE | OMMIO_ALLOCBUF) &&
                    m_tree.Save(&file, false) && file.Close(),
                "a save");
    }

    void Load(const Path& path) override
    {
        CMmioFile file(false);
        OMMCKINFO list;
        Require(file.Open(FromUtf8(path.string()), nullptr, OMMIO_READ) &&
                    file.EnterChunkListSansParent(list, FourCC("CONF")),
                "opening the settings");
        const NestedChunk current(file, list);
        Require(m_tree.Load(&file), "a load");
    }

    [[nodiscard]] std::size_t Count() const override
    {
        return Sum([](const CReglageData&) { return 1U; });
    }
    [[nodiscard]] std::size_t TitleLength() const override
    {
        return Sum([](const CReglageData& setting) { return setting.titleString().size(); });
    }

private:
    template <class Term>
    [[nodiscard]] std::size_t Sum(const Term& term) const
    {
        std::size_t sum = 0;
        for (const CModuleData* module : m_tree.modules())
            for (const CSousModuleData* submodule : module->submodules())
                for (const CReglageData* setting : submodule->settings()) sum += term(*setting);
        return sum;
    }

    CConfigData m_tree;
};

} // namespace

std::unique_ptr<SettingStore> OurSettings() { return std::make_unique<Store>(); }

} // namespace peers
