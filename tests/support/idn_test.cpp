#include "zelmresult/support/idn.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <set>
#include <vector>

namespace idn {
namespace {

Idn Place(std::uint32_t module, std::uint32_t submodule, std::uint32_t setting)
{
    return {Analyzer{}, {module, module == 0 ? 0U : 1U}, {submodule, submodule == 0 ? 0U : 1U}, Setting{setting}};
}

TEST(Idn, EveryShortFormThatIsWrittenComesBackTheSame)
{
    const std::uint16_t edges[] = {0, 1, 2, 254, 255, 256, 999, 1000, 32767, 32768, 65533, 65534, 65535};
    for (const std::uint16_t module : edges)
        for (const std::uint16_t submodule : edges)
            for (const std::uint16_t setting : edges) {
                const Legacy legacy{module, submodule, setting};
                const auto known = [](std::uint16_t n) -> std::uint32_t { return n == 65535 ? 0 : n; };
                const Idn idn = legacy.toIdn();
                EXPECT_EQ(idn, Place(known(module), known(submodule), known(setting)));

                Legacy back{1, 2, 3};
                const bool isMarker = legacy == Legacy::formerAbsent() || legacy.isMagic();
                const bool isShort = Legacy::convertIdnToLegacy(idn, back, false);
                EXPECT_EQ(isShort, !isMarker && !idn.isNull());
                if (isShort)
                    EXPECT_EQ(back.toIdn(), idn);
                else
                    EXPECT_EQ(back, Legacy(1, 2, 3)) << "left alone";
            }
}

TEST(Idn, WhatAShortFormCannotHoldHasNone)
{
    const Idn shortest = Place(5, 6, 7);
    Legacy legacy;
    ASSERT_TRUE(Legacy::convertIdnToLegacy(shortest, legacy, false));
    EXPECT_EQ(legacy, Legacy(5, 6, 7));

    std::vector<Idn> longer(9, shortest);
    longer[0].analyzer().value = 1;
    longer[1].module().instance = 0;
    longer[2].module().instance = 2;
    longer[3].module().kind = 65535;
    longer[4].module().kind = 65536 + 5;
    longer[5].module() = {0, 1};
    longer[6].submodule() = {6, 0};
    longer[7].submodule() = {65535, 1};
    longer[8].setting().value = 65535;
    for (const Idn& idn : longer) {
        EXPECT_FALSE(Legacy::convertIdnToLegacy(idn, legacy, false));
        Idn back;
        EXPECT_TRUE(IdnString::stringToIdnT(IdnString::idnToStringT(idn), back));
        EXPECT_EQ(back, idn);
    }
}

TEST(Idn, NullIsWhatTheAbsentNumbersGive)
{
    EXPECT_TRUE(Idn().isNull());
    EXPECT_EQ(Idn::s_null, Legacy::absent().toIdn());
    EXPECT_FALSE(Legacy::formerAbsent().toIdn().isNull()) << "only a reader takes it for null";
    EXPECT_FALSE(Place(0, 0, 1).isNull());
}

TEST(Idn, TextForm)
{
    const Idn widest{Analyzer{1}, {2, 3}, {4, 0}, Setting{4294967295U}};
    EXPECT_EQ(IdnString::idnToStringT(widest), u"1/2.3/4.0/4294967295");
    Idn read;
    EXPECT_TRUE(IdnString::stringToIdn(u"1/2.3/4.0/4294967295", read));
    EXPECT_EQ(read, widest);
    EXPECT_EQ(IdnString::legacyIdnToLegacyStringT({65535, 0, 12}), u"65535/0/12");

    for (const char16_t* wrong :
         {u"", u"1/2.3/4.0/4294967296", u"1/2.3/4.0/99999999999999999999999", u"1/2.3/4.0/", u"1/2.3/4.0/5 ",
          u" 1/2.3/4.0/5", u"1/2.3/4.0/5/", u"1/2/4.0/5", u"1.2.3/4.0/5", u"-1/2.3/4.0/5", u"+1/2.3/4.0/5",
          u"1/2.3/4.0/0x5", u"1/2.3/4,0/5", u"/2.3/4.0/5", u"\x0661/2.3/4.0/5"}) {
        EXPECT_FALSE(IdnString::stringToIdnT(wrong, read)) << std::u16string(wrong).size();
        EXPECT_EQ(read, widest) << "left alone";
    }
}

TEST(Idn, OrderGoesByTheNumbersFromLeftToRight)
{
    std::vector<Idn> ascending;
    ascending.emplace_back();
    for (const std::uint32_t n : {1U, 0x80000000U}) { // unsigned, so the second is the larger
        ascending.push_back({Analyzer{}, {}, {}, Setting{n}});
        ascending.push_back({Analyzer{}, {}, {0, n}, {}});
        ascending.push_back({Analyzer{}, {}, {n, 0}, {}});
        ascending.push_back({Analyzer{}, {0, n}, {}, {}});
        ascending.push_back({Analyzer{}, {n, 0}, {}, {}});
        ascending.push_back({Analyzer{n}, {}, {}, {}});
    }
    const auto rank = [](const Idn& i) {
        return std::vector<std::uint32_t>{i.analyzer().value, i.module().kind,        i.module().instance,
                                          i.submodule().kind, i.submodule().instance, i.setting().value};
    };
    for (const Idn& a : ascending)
        for (const Idn& b : ascending) EXPECT_EQ(a < b, rank(a) < rank(b));
    EXPECT_EQ(std::set<Idn>(ascending.begin(), ascending.end()).size(), ascending.size());
}

TEST(Idn, PartsOfAnIdentifier)
{
    const Idn setting = Idn::generateSettingIdn({70000, 2}, {3, 4}, ESetting{5});
    EXPECT_EQ(setting, Idn(Analyzer{}, {70000, 2}, {3, 4}, Setting{5}));
    EXPECT_EQ(Idn::generateSubmoduleIdn(Analyzer{9}, {1, 2}, {3, 4}), Idn(Analyzer{9}, {1, 2}, {3, 4}, Setting{}));
    EXPECT_EQ(Idn::generateModuleIdn(Analyzer{9}, {1, 2}), Idn(Analyzer{9}, {1, 2}, {}, Setting{}));
    EXPECT_EQ(Idn(Analyzer{9}, {1, 2}, {3, 4}, Setting{5}).settingIdn(ESetting{6}),
              Idn(Analyzer{9}, {1, 2}, {3, 4}, Setting{6}));
    EXPECT_EQ(setting.module().to_uint32(), 70000U - 65536U + (2U << 16U)) << "the low half of the kind";
    EXPECT_EQ(Submodule(3, 0x12345).to_uint32(), 0x23450003U);
    EXPECT_EQ(Legacy::convertSettingToLegacy(Setting{65536 + 7}), 7);
    EXPECT_EQ(Submodule::intToSubmoduleCollection(-1), ESubmoduleCollection{0xFFFFFFFFU});
}

} // namespace
} // namespace idn
