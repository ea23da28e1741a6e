// The oddest arguments for texts, numbers, times and identifiers.

#include "zelmresult/support/idn.h"
#include "zelmresult/support/numbers.h"
#include "zelmresult/support/text.h"
#include "zelmresult/support/time.h"

#include <cfloat>
#include <gtest/gtest.h>
#include <random>

namespace ZelmResult {
namespace {

TEST(UnluckySupport, NumbersAndTexts)
{
    for (const float value : {NAN, INFINITY, -INFINITY, FLT_MAX, -FLT_MAX, 2147483648.0F, -2147483648.0F, -0.0F}) {
        EXPECT_EQ(Truncated(value) == 0, std::isnan(value) || value == 0);
        EXPECT_FALSE(ToFixed(value).empty() || ToFixed(static_cast<double>(value)).empty() ||
                     ToScientific(value).empty());
    }
    EXPECT_EQ(ToFixed(DBL_MAX).size(), 316U) << "309 digits and six behind the point";
    for (const int digits : {0, 3, 20}) EXPECT_EQ(ToDecimalPadded(INT64_MIN, digits), ToDecimal(INT64_MIN));
    // Any units come back from their UTF-8, alone and in the longest texts, but halves of a pair that it joins.
    std::mt19937 random(7);
    wstring text;
    for (int i = 0; i < 200000; ++i) text += static_cast<char16_t>(random() % 0xD800);
    EXPECT_EQ(FromUtf8(ToUtf8(text)), text);
    std::string bytes;
    for (int i = 0; i < 200000; ++i) bytes += static_cast<char>(random());
    const wstring decoded = FromUtf8(bytes);
    EXPECT_TRUE(!decoded.empty() && decoded.size() <= bytes.size() && FromCodePage(bytes).size() == bytes.size());
}

TEST(UnluckySupport, TimesAtTheirEnds)
{
    for (const std::int64_t seconds : {INT64_MIN, INT64_MIN + 1, std::int64_t{-1}, std::int64_t{0}, INT64_MAX}) {
        const OTime time(seconds);
        const OFileTime ticks = OFileTime::fromOTime(time);
        EXPECT_EQ(OFileTime::fromFILETIME(ticks.toFILETIME()), ticks);
        EXPECT_EQ(OTimeToDateString(time), "1970-01-01 00:00:00Z");
        (void)OFileTime::fromOFILETIME(static_cast<std::uint64_t>(seconds)).toOTime();
    }
    for (const std::uint16_t number : {std::uint16_t{0}, std::uint16_t{13}, std::uint16_t{60}, std::uint16_t{65535}}) {
        const SYSTEMTIME date{number, number, number, number, number, number, number, number};
        FILETIME out{1, 2};
        EXPECT_TRUE(!SystemTimeToFileTime(date, out) && out == (FILETIME{1, 2}));
        EXPECT_EQ(CAbsoluteTimeFormater::ConvertToTimeZone(date), date);
        EXPECT_EQ(CAbsoluteTimeFormater::ConvertToUTC(date), date);
    }
}

TEST(UnluckySupport, Identifiers)
{
    constexpr std::uint32_t numbers[] = {0, 1, 255, 65533, 65534, 65535, 65536, 0xFFFFFFFF};
    for (const std::uint32_t a : numbers)
        for (const std::uint32_t b : numbers)
            for (const std::uint32_t c : numbers) {
                const idn::Idn idn(idn::Analyzer(c), idn::Module(a, b), idn::Submodule(b, c), idn::Setting(c));
                idn::Idn back;
                ASSERT_TRUE(idn::IdnString::stringToIdn(idn::IdnString::idnToStringT(idn), back) && back == idn);
                idn::Legacy legacy;
                if (idn::Legacy::convertIdnToLegacy(idn, legacy, false)) ASSERT_EQ(legacy.toIdn(), idn);
            }
    for (const wstring& text : {wstring(100000, u'1'), wstring(100000, u'/'), wstring(3, u'\0')}) {
        idn::Idn out;
        EXPECT_TRUE(!idn::IdnString::stringToIdn(text, out) && out.isNull());
    }
}

} // namespace
} // namespace ZelmResult
