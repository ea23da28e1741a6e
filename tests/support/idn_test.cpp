#include "zelmresult/support/idn.h"

#include <gtest/gtest.h>

namespace idn {
namespace {

TEST(Idn, EveryShortFormThatIsWrittenComesBackTheSame)
{
    const std::uint16_t edges[] = {0, 1, 255, 256, 65533, 65534, 65535};
    const auto known = [](std::uint16_t n) -> std::uint32_t { return n == 65535 ? 0 : n; };
    const auto one = [](std::uint32_t kind) -> std::uint32_t { return kind == 0 ? 0 : 1; };
    for (const std::uint16_t a : edges)
        for (const std::uint16_t b : edges)
            for (const std::uint16_t c : edges) {
                const Legacy legacy{a, b, c};
                const std::uint32_t module = known(a), submodule = known(b);
                const Idn idn{Analyzer{}, {module, one(module)}, {submodule, one(submodule)}, Setting{known(c)}};
                EXPECT_EQ(legacy.toIdn(), idn);
                Legacy back{1, 2, 3};
                const bool isMarker = legacy == Legacy::formerAbsent() || legacy.isMagic();
                const bool isShort = Legacy::convertIdnToLegacy(idn, back, false);
                EXPECT_EQ(isShort, !isMarker && idn != Idn());
                EXPECT_TRUE(isShort ? back.toIdn() == idn : back == Legacy(1, 2, 3));
            }
}

TEST(Idn, TextForm)
{
    const Idn widest{Analyzer{1}, {2, 3}, {4, 0}, Setting{4294967295U}};
    EXPECT_EQ(IdnString::idnToStringT(widest), u"1/2.3/4.0/4294967295");
    EXPECT_EQ(IdnString::legacyIdnToLegacyStringT({65535, 0, 12}), u"65535/0/12");
    Idn read = widest;
    for (const char16_t* wrong :
         {u"", u"1/2.3/4.0/4294967296", u"1/2.3/4.0/99999999999999999999999", u"1/2.3/4.0/", u"1/2.3/4.0/5 ",
          u" 1/2.3/4.0/5", u"1/2/4.0/5", u"1.2.3/4.0/5", u"-1/2.3/4.0/5", u"/2.3/4.0/5", u"\x0661/2.3/4.0/5"}) {
        EXPECT_FALSE(IdnString::stringToIdnT(wrong, read)) << std::u16string(wrong).size();
        EXPECT_EQ(read, widest) << "left alone";
    }
}

TEST(Idn, RawNumbers)
{
    const Idn setting = Idn::generateSettingIdn({70000, 2}, {3, 0x12345}, ESetting{5});
    EXPECT_EQ(setting.settingIdn(ESetting{6}), Idn(Analyzer{}, {70000, 2}, {3, 0x12345}, Setting{6}));
    EXPECT_EQ(setting.module().to_uint32(), 70000U - 65536U + (2U << 16U)) << "the low half of the kind";
    EXPECT_EQ(setting.submodule().to_uint32(), 0x23450003U);
    EXPECT_EQ(Legacy::convertSettingToLegacy(Setting{65536 + 7}), 7);
}

} // namespace
} // namespace idn
