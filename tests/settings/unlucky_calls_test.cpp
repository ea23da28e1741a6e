// Legal calls at the wrong time or with the oddest arguments, for the settings tree and every kind of setting.

#include "tests/builders/record_check.h"
#include "zelmresult/settings/booleen_data.h"
#include "zelmresult/settings/chaine_data.h"
#include "zelmresult/settings/config_data.h"
#include "zelmresult/settings/idn_data.h"
#include "zelmresult/settings/module_data.h"
#include "zelmresult/settings/scalaire_data.h"
#include "zelmresult/settings/sous_module_data.h"
#include "zelmresult/settings/tableau_data.h"

#include <cmath>
#include <gtest/gtest.h>

namespace ZelmResult {
namespace {

using namespace test;

constexpr std::uint32_t kNumbers[] = {0, 1, 999, 1000, 65535, 65536, 0x7FFFFFFF, 0xFFFFFFFF};

idn::Idn Place(std::uint32_t module, std::uint32_t submodule, std::uint32_t setting)
{
    return {idn::Analyzer(setting), idn::Module(module, submodule), idn::Submodule(submodule, module),
            idn::Setting(setting)};
}

TEST(UnluckySettings, EveryKindInEveryState)
{
    const std::uint32_t kinds[] = {3,   8193, 17, 49,    113,  273,   129,  641, 65537,
                                   5,   4097, 9,  32769, 2049, 16385, 1024, 0,   CReglageInfoData::kUnsetType,
                                   128, 1};
    int known = 0;
    for (const std::uint32_t kind : kinds) {
        SCOPED_TRACE(kind);
        const auto make = [kind] { return CSousModuleData::CreateReglage(new CReglageInfoData(Place(1, 1, 1), kind)); };
        const auto setting = make();
        if (setting == nullptr) continue;
        ++known;
        if (auto* table = dynamic_cast<CTableauData*>(setting.get()); table != nullptr) {
            table->AddReglage(nullptr), table->AddReglage(new CScalaireData), table->SetNbrLineVisu(INT32_MIN);
            table->AddReglage(table->GetListReglage().front()); // again
            *table = CTableauData(*table);
            EXPECT_EQ(table->GetListReglage().size(), 2U) << "an assignment appends";
        }
        if (auto* pairs = dynamic_cast<CMatriceData*>(setting.get()); pairs != nullptr)
            for (const std::int32_t i : {INT32_MIN, -1, 0, 1, INT32_MAX})
                EXPECT_TRUE(pairs->GetResponse(i).isNull() && pairs->GetReference(i).isNull());
        if (auto* text = dynamic_cast<CChaineData*>(setting.get()); text != nullptr) {
            idn::Idn out = Place(2, 2, 2);
            for (const wstring& value : {wstring(), wstring(u"///"), wstring(100000, u'9'), wstring(3, u'\0')}) {
                text->setValue(value);
                EXPECT_TRUE(!text->ConvertToIdn(out) && out == Place(2, 2, 2) && text->valueContains(u""));
            }
        }
        if (auto* scalar = dynamic_cast<CScalaireData*>(setting.get()); scalar != nullptr) scalar->setValue(NAN);
        EXPECT_EQ(setting->GetStringValue(), nullptr);
        setting->setTitleString(wstring(70000, u't')), setting->info().SetIDN(Place(65536, 0xFFFFFFFF, 65534));
        const std::unique_ptr<CReglageData> copy(setting->GetCopy());
        const std::vector<char> stored = written(*setting);
        EXPECT_EQ(written(*copy), stored);
        const bool holdsOthers = kind == CTableauData::kType || kind == CVirtualTachoData::kType;
        if (!holdsOthers) readInto(*make(), stored), readInto(*copy, stored); // fresh, and over what is there
        (void)readFrom({}, [&](CMmioFile& file) { return copy->Read(&file); });
        copy->info().SetType(0xFFFFFFFF);
        EXPECT_FALSE(copy->HasKindOfItsClass());
    }
    EXPECT_EQ(known, 16);
    EXPECT_EQ(CSousModuleData::CreateReglage(nullptr), nullptr);
}

// What a tree answers for any identifier when it holds none of them.
template <class Node>
void ExpectNothing(Node& node)
{
    for (const std::uint32_t a : kNumbers)
        for (const std::uint32_t b : kNumbers) {
            EXPECT_EQ(node.GetReglage(Place(a, b, b)), nullptr);
            if constexpr (requires { node.GetSousModule(idn::Idn()); })
                EXPECT_EQ(node.GetSousModule(Place(a, b, a)), nullptr);
        }
}

TEST(UnluckySettings, TreesFullEmptyAndEmptied)
{
    CConfigData tree;
    ExpectNothing(tree);
    tree.AddReglage(nullptr);
    EXPECT_EQ(tree.ComputeInstanceID(idn::Idn()), 0);
    EXPECT_TRUE(tree.modules().empty() && tree.GetSubmoduleSet(idn::Idn(), idn::ESubmoduleCollection(0)).empty());
    for (const std::uint32_t a : kNumbers)
        for (const std::uint32_t b : kNumbers) {
            auto* setting = new CBooleenData;
            setting->info().SetIDN(Place(a, b, b));
            tree.AddReglage(setting), tree.AddReglage(setting); // the stored one itself
            EXPECT_EQ(tree.GetReglage(Place(a, b, b)), setting);
            (void)tree.ComputeInstanceID(Place(10, a, b));
        }
    CConfigData copy(tree);
    copy = copy = tree; // an assignment appends
    EXPECT_EQ(copy.modules().size(), 2 * tree.modules().size());
    for (CModuleData* module : copy.modules()) {
        for (CSousModuleData* submodule : module->submodules()) submodule->clearSettings(), ExpectNothing(*submodule);
        module->clearSubmodules(), ExpectNothing(static_cast<const CModuleData&>(*module));
    }
    ExpectNothing(static_cast<const CConfigData&>(copy));
    CDeepResultGeneratorData deep(Place(16, 1, 0));
    deep.AddFRFInfo(nullptr), deep.AddFRFInfo(new CWaterfallFRFInfo);
    deep = CDeepResultGeneratorData(deep);
    ExpectNothing(deep);
    CMmioFile closed(false, MemoryDisk().backend());
    EXPECT_FALSE(tree.Save(&closed, false) || tree.Load(&closed) || CConfigData::PassOver(&closed) ||
                 deep.Save(&closed) || deep.Load(&closed));
    EXPECT_EQ(CConfigData::GetReglage(&closed, idn::Idn()), nullptr);
    EXPECT_EQ(CSousModuleData::GetReglage(&closed, idn::Idn()), nullptr);
}

} // namespace
} // namespace ZelmResult
