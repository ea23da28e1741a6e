#include "zelmresult/support/text.h"

#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace ZelmResult {
namespace {

TEST(Text, Utf8AndUtf16)
{
    const std::pair<std::string, wstring> pairs[] = {
        {"\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80", u"\x7F\x80\x7FF\x800"},
        {"\xEF\xBF\xBF", u"\xFFFF"},
        {std::string("a\0b", 3), wstring(u"a\0b", 3)},
        {"\xF0\x90\x80\x80", u"\xD800\xDC00"},
        {"\xF4\x8F\xBF\xBF", u"\xDBFF\xDFFF"},
        {"\xED\xB0\x80\xED\xA0\x80x", u"\xDC00\xD800x"}, // alone, each its own three bytes
        {"\xED\xA0\x80", u"\xD800"},
    };
    for (const auto& [narrow, wide] : pairs) {
        EXPECT_EQ(ToUtf8(wide), narrow);
        EXPECT_EQ(FromUtf8(narrow), wide);
    }
}

TEST(Text, AByteOfNoValidFormCountsAsItsCodePageCharacter)
{
    const std::pair<std::string, wstring> broken[] = {
        {"\x80", u"\x20AC"},                                      // a continuation by itself
        {"\xF0\x9F\x98", u"\xF0\x178\x2DC"},                      // cut at the end
        {"\xC0\x80", u"\xC0\x20AC"},                              // longer than needed
        {"\xE0\x9F\xBF", u"\xE0\x178\xBF"},                       //
        {"\xF0\x8F\xBF\xBF", u"\xF0\x8F\xBF\xBF"},                //
        {"\xF4\x90\x80\x80", u"\xF4\x90\x20AC\x20AC"},            // past the last character
        {"\xF8\x88\x80\x80\x80", u"\xF8\x2C6\x20AC\x20AC\x20AC"}, //
        {"\xE9t\xC3\xA9", u"\xE9t\xE9"},                          // and the next valid form again
    };
    for (const auto& [narrow, wide] : broken) EXPECT_EQ(FromUtf8(narrow), wide) << narrow;
}

TEST(Text, CodePageGivesOneCharacterPerByte)
{
    std::string all;
    for (int byte = 0; byte < 256; ++byte) all += static_cast<char>(byte);
    const wstring wide = FromCodePage(all);
    ASSERT_EQ(wide.size(), 256U);
    for (char16_t c = 0; c < 0x100; ++c) EXPECT_TRUE(wide[c] == c || c / 0x20 == 4);
    EXPECT_EQ(wide.substr(0x80, 32),
              u"\x20AC\x81\x201A\x192\x201E\x2026\x2020\x2021\x2C6\x2030\x160\x2039\x152\x8D\x17D"
              u"\x8F\x90\x2018\x2019\x201C\x201D\x2022\x2013\x2014\x2DC\x2122\x161\x203A\x153"
              u"\x9D\x17E\x178");
}

TEST(Text, NumbersDoNotDependOnTheLocale)
{
    EXPECT_EQ(ToHex8(0xABCDEF1) + ToHex(0x10), u"0abcdef110");
    EXPECT_EQ(ToDecimal(INT64_MIN), u"-9223372036854775808");
    EXPECT_EQ(ToDecimalPadded(-7, 3) + ToDecimalPadded(1234, 3), u"-071234");
    EXPECT_EQ(Concat(u"a", -1, wstring(u"b"), 4294967295U), u"a-1b4294967295");
    EXPECT_EQ(ToFixed(-0.1F), u"-0.100000") << "of the single-precision value 0.100000001...";
    EXPECT_EQ(ToFixed(std::numeric_limits<float>::max()), u"340282346638528859811704183484516925440.000000");
    EXPECT_EQ(ToFixed(-std::numeric_limits<float>::infinity()), u"-inf");
    EXPECT_EQ(ToScientific(16777217.0F) + ToScientific(1e-40F), u"1.677722e+079.999946e-41");
}

TEST(Text, PlaceholdersAreFilledInOnePass)
{
    EXPECT_EQ(FillPlaceholders(u"%1 and %2, %1", u"a", u"%1"), u"a and %1, a");
    EXPECT_EQ(FillPlaceholders(u"100% %3 %%1 %", u"a", u"b"), u"100% %3 %a %");
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
        const wstring what = random() % 2 == 0 ? text(random() % 40) : where.substr(where.size() / 3, random() % 60);
        EXPECT_EQ(Contains(where, what), where.find(what) != wstring::npos);
    }
}

} // namespace
} // namespace ZelmResult
