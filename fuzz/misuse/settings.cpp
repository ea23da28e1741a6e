// Settings of every kind, and trees that are full, empty and emptied.

#include "fuzz/misuse/rooms.h"
#include "tests/builders/record_check.h"
#include "zelmresult/settings/booleen_data.h"
#include "zelmresult/settings/config_data.h"
#include "zelmresult/settings/scalaire_data.h"
#include "zelmresult/settings/tableau_data.h"

namespace ZelmResult::fuzz {

namespace {

class Misuse : public Room {
public:
    using Room::Room;

    void Step()
    {
        m_odd.call([&] { UseSetting(); }, [&] { UseTable(); }, [&] { Add(); }, [&] { Look(); }, [&] { Copy(); },
                   [&] { Empty(); });
    }

private:
    static std::unique_ptr<CReglageData> Make(const idn::Idn& idn, std::uint32_t kind)
    {
        return CSousModuleData::CreateReglage(new CReglageInfoData(idn, kind));
    }
    void UseSetting()
    {
        constexpr std::uint32_t kinds[] = {3, 8193, 17, 49,    113,  273,   129,  641, 65537,
                                           5, 4097, 9,  32769, 2049, 16385, 1024, 128, CReglageInfoData::kUnsetType};
        const std::uint32_t kind = kinds[m_odd.choice(std::size(kinds))];
        const auto setting = Make(m_odd.idn(), kind);
        const bool isKnown = kind != 128 && kind != CReglageInfoData::kUnsetType;
        Require(CSousModuleData::CreateReglage(nullptr) == nullptr, "without a kind there is no setting");
        Require((setting != nullptr) == isKnown, "each kind has a class, and no other number has");
        if (!isKnown) return;
        Require(setting->GetStringValue() == nullptr, "an empty text is none");
        setting->setTitleString(m_odd.text());
        setting->info().SetIDN(m_odd.idn());
        const std::unique_ptr<CReglageData> copy(setting->GetCopy());
        const Data stored = test::written(*setting);
        Require(test::written(*copy) == stored, "a copy is stored as what it was made from");
        if (kind == CTableauData::kType || kind == CVirtualTachoData::kType) return; // whose values are chunks
        (void)test::readFrom({}, test::reading(*copy));
        Require(test::readFrom(stored, test::reading(*copy)), "what is stored is read");
        Require(test::written(*copy) == stored, "what is read takes the place of what was there");
    }
    void UseTable()
    {
        CTableauData table;
        table.AddReglage(nullptr);
        table.AddReglage(new CScalaireData);
        table.AddReglage(table.GetListReglage().front()); // again
        table.SetNbrLineVisu(m_odd.number());
        Require(table.GetListReglage().size() == 1, "a table takes a setting once");
        table = CTableauData(table);
        Require(table.GetListReglage().size() == 2, "an assignment appends");
        Require(!test::written(table).empty(), "a table is stored");
    }
    void Add()
    {
        const idn::Idn idn = m_odd.idn();
        auto* setting = new CBooleenData;
        setting->info().SetIDN(idn);
        m_tree.AddReglage(setting);
        m_tree.AddReglage(setting); // the stored one itself
        m_tree.AddReglage(nullptr);
        Require(m_tree.GetReglage(idn) == setting, "a setting is where it was put");
        m_isEmpty = false;
    }
    void Look()
    {
        const idn::Idn idn = m_odd.idn();
        const CReglageData* setting = m_tree.GetReglage(idn);
        Require(setting == nullptr || !m_isEmpty, "an empty tree holds nothing");
        Require(setting == nullptr || setting->GetIdn().setting() == idn.setting(), "a setting has its number");
        (void)m_tree.ComputeInstanceID(m_odd.flag() ? idn : idn::Idn({}, {10, 1}, idn.submodule(), idn.setting()));
        (void)m_tree.GetSubmoduleSet(idn, idn::ESubmoduleCollection(m_odd.word()));
        (void)m_tree.IsMyVersionOlder({m_odd.word(), m_odd.word(), m_odd.text()});
        (void)m_tree.Unstorable(m_odd.flag());
    }
    void Copy() const
    {
        CConfigData copy(m_tree);
        const CConfigData& same = copy;
        copy = same;
        Require(copy.modules().size() == m_tree.modules().size(), "an assignment to itself changes nothing");
        copy = m_tree;
        Require(copy.modules().size() == 2 * m_tree.modules().size(), "an assignment appends");
    }
    void Empty()
    {
        const bool isWhole = m_odd.flag();
        for (CModuleData* module : m_tree.modules()) {
            for (CSousModuleData* submodule : module->submodules()) submodule->clearSettings();
            if (isWhole) module->clearSubmodules();
        }
        m_isEmpty = true;
    }

    CConfigData m_tree;
    bool m_isEmpty = true;
};

} // namespace

void MisuseSettings(Odd& odd) { Run<Misuse>(odd); }

} // namespace ZelmResult::fuzz
