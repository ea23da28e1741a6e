// Legal calls at the wrong time or with the oddest arguments, for the settings tree and every kind of setting.

#include "tests/builders/record_check.h"
#include "zelmresult/settings/booleen_data.h"
#include "zelmresult/settings/config_data.h"
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
    const std::uint32_t kinds[] = {3, 8193, 17, 49,    113,  273,   129,  641, 65537,
                                   5, 4097, 9,  32769, 2049, 16385, 1024, 128, CReglageInfoData::kUnsetType};
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
        EXPECT_EQ(setting->GetStringValue(), nullptr);
        setting->setTitleString(wstring(70000, u't')), setting->info().SetIDN(Place(65536, 0xFFFFFFFF, 65534));
        const std::unique_ptr<CReglageData> copy(setting->GetCopy());
        const std::vector<char> stored = written(*setting);
        EXPECT_EQ(written(*copy), stored);
        const bool holdsOthers = kind == CTableauData::kType || kind == CVirtualTachoData::kType;
        if (!holdsOthers) readInto(*make(), stored), readInto(*copy, stored); // fresh, and over what is there
        (void)readFrom({}, [&](CMmioFile& file) { return copy->Read(&file); });
    }
    EXPECT_EQ(known, 16);
    EXPECT_EQ(CSousModuleData::CreateReglage(nullptr), nullptr);
}

// What a tree answers for any identifier when it holds none of them.
template <class Node>
void ExpectNothing(const Node& node)
{
    for (const std::uint32_t a : kNumbers)
        for (const std::uint32_t b : kNumbers) EXPECT_EQ(node.GetReglage(Place(a, b, b)), nullptr);
}

TEST(UnluckySettings, TreesFullEmptyAndEmptied)
{
    CConfigData tree;
    ExpectNothing(tree);
    tree.AddReglage(nullptr);
    EXPECT_TRUE(tree.modules().empty() && tree.ComputeInstanceID(idn::Idn()) == 0);
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
        module->clearSubmodules(), ExpectNothing(*module);
    }
    ExpectNothing(copy);
    CMmioFile closed(false, MemoryDisk().backend());
    EXPECT_FALSE(tree.Save(&closed, false) || tree.Load(&closed) || CConfigData::PassOver(&closed));
    EXPECT_EQ(CSousModuleData::GetReglage(&closed, idn::Idn()), nullptr);
}

} // namespace
} // namespace ZelmResult
