#include "zelmresult/support/text.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace ZelmResult {
namespace {

TEST(Text, Utf8AndUtf16)
{
    const struct {
        wstring wide;
        std::string narrow;
    } pairs[] = {
        {u"", ""},
        {u"\x7F\x80\x7FF\x800", "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80"},
        {u"\xFFFF", "\xEF\xBF\xBF"},
        {wstring(u"a\0b", 3), std::string("a\0b", 3)},
        {u"\xD800\xDC00", "\xF0\x90\x80\x80"},
        {u"\xDBFF\xDFFF", "\xF4\x8F\xBF\xBF"},
        {u"\xD800", "\xED\xA0\x80"}, // alone, its own three bytes
        {u"\xDC00\xD800x", "\xED\xB0\x80\xED\xA0\x80x"},
    };
    for (const auto& [wide, narrow] : pairs) {
        EXPECT_EQ(ToUtf8(wide), narrow);
        EXPECT_EQ(FromUtf8(narrow), wide);
    }
}

TEST(Text, AByteOfNoValidFormCountsAsItsCodePageCharacter)
{
    const struct {
        std::string narrow;
        wstring wide;
    } broken[] = {
        {"\x80", u"\x20AC"},                                      // a continuation by itself
        {"\xC3", u"\xC3"},                                        // cut at the end
        {"\xE2\x82", u"\xE2\x201A"},                              //
        {"\xF0\x9F\x98", u"\xF0\x178\x2DC"},                      //
        {"\xC0\x80", u"\xC0\x20AC"},                              // longer than needed
        {"\xE0\x9F\xBF", u"\xE0\x178\xBF"},                       //
        {"\xF0\x8F\xBF\xBF", u"\xF0\x8F\xBF\xBF"},                //
        {"\xF4\x90\x80\x80", u"\xF4\x90\x20AC\x20AC"},            // past the last character
        {"\xF8\x88\x80\x80\x80", u"\xF8\x2C6\x20AC\x20AC\x20AC"}, //
        {"\xC3\x28", u"\xC3("},                                   // no continuation
        {"\xE9t\xC3\xA9", u"\xE9t\xE9"},                          // and the next valid form again
        {"\xFF", u"\xFF"},
    };
    for (const auto& [narrow, wide] : broken) EXPECT_EQ(FromUtf8(narrow), wide) << narrow;
}

TEST(Text, CodePageGivesOneCharacterPerByte)
{
    std::string all;
    for (int byte = 0; byte < 256; ++byte) all += static_cast<char>(byte);
    const wstring wide = FromCodePage(all);
    ASSERT_EQ(wide.size(), 256U);
    for (char16_t c = 0; c < 0x80; ++c) EXPECT_EQ(wide[c], c);
    for (char16_t c = 0xA0; c < 0x100; ++c) EXPECT_EQ(wide[c], c);
    EXPECT_EQ(wide.substr(0x80, 32),
              u"\x20AC\x81\x201A\x192\x201E\x2026\x2020\x2021\x2C6\x2030\x160\x2039\x152\x8D\x17D"
              u"\x8F\x90\x2018\x2019\x201C\x201D\x2022\x2013\x2014\x2DC\x2122\x161\x203A\x153"
              u"\x9D\x17E\x178");
}

TEST(Text, NumbersDoNotDependOnTheLocale)
{
    EXPECT_EQ(ToHex8(0), u"00000000");
    EXPECT_EQ(ToHex8(0xABCDEF01), u"abcdef01");
    EXPECT_EQ(ToHex(0x10), u"10");
    EXPECT_EQ(ToHex(0), u"0");
    EXPECT_EQ(ToDecimal(INT64_MIN), u"-9223372036854775808");
    EXPECT_EQ(ToDecimalPadded(7, 3), u"007");
    EXPECT_EQ(ToDecimalPadded(-7, 3), u"-07");
    EXPECT_EQ(ToDecimalPadded(1234, 3), u"1234");
    EXPECT_EQ(Concat(u"a", -1, wstring(u"b"), 4294967295U), u"a-1b4294967295");

    constexpr float infinity = std::numeric_limits<float>::infinity();
    const struct {
        float value;
        const char16_t* fixed;
        const char16_t* scientific;
    } floats[] = {
        {0, u"0.000000", u"0.000000e+00"},
        {-0.0F, u"-0.000000", u"-0.000000e+00"},
        {1234.5F, u"1234.500000", u"1.234500e+03"},
        {-0.1F, u"-0.100000", u"-1.000000e-01"}, // of the single-precision value 0.100000001...
        {16777217.0F, u"16777216.000000", u"1.677722e+07"},
        {1e-40F, u"0.000000", u"9.999946e-41"},
        {std::numeric_limits<float>::max(), u"340282346638528859811704183484516925440.000000", u"3.402823e+38"},
        {infinity, u"inf", u"inf"},
        {-infinity, u"-inf", u"-inf"},
        {std::nanf(""), u"nan", u"nan"},
    };
    for (const auto& [value, fixed, scientific] : floats) {
        EXPECT_EQ(ToFixed(value), fixed);
        EXPECT_EQ(ToScientific(value), scientific);
    }
}

TEST(Text, PlaceholdersAreFilledInOnePass)
{
    EXPECT_EQ(FillPlaceholders(u"%1 and %2, %1", u"a", u"b"), u"a and b, a");
    EXPECT_EQ(FillPlaceholders(u"%1%2", u"%2", u"%1"), u"%2%1");
    EXPECT_EQ(FillPlaceholders(u"100% %3 %", u"a", u"b"), u"100% %3 %");
    EXPECT_EQ(FillPlaceholders(u"%%1", u"a"), u"%a");
    EXPECT_EQ(FillPlaceholders(u"[%2]", u"a"), u"[]");
}

TEST(Text, ContainsFindsWhatTheStandardSearchFinds)
{
    std::mt19937 random(8);
    const auto text = [&random](std::size_t size) {
        wstring made(size, u'a');
        for (char16_t& c : made) c = random() % 5 == 0 ? u'b' : u'a';
        return made;
    };
    for (int round = 0; round < 2000; ++round) {
        const wstring where = text(random() % 200);
        wstring what = random() % 2 == 0 ? text(random() % 40) : where.substr(where.size() / 3, random() % 60);
        EXPECT_EQ(Contains(where, what), where.find(what) != wstring::npos);
    }
    EXPECT_TRUE(Contains(u"", u"") && Contains(wstring(64, u'x'), wstring(64, u'x')));
}

} // namespace
} // namespace ZelmResult
