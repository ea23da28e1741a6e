#include "tools/zmxf/base/text.h"
#include "tools/zmxf/showing/description.h"

#include <gtest/gtest.h>
#include <limits>

namespace zmxf {

TEST(Text, OfAnyOriginIsOneHarmlessLine)
{
    EXPECT_EQ(Printable(u"a\tb\r\nc"), "a b  c");
    EXPECT_EQ(Printable(u"\x1B[31m\x9B"), "\uFFFD[31m\uFFFD");
    EXPECT_EQ(Printable(std::u16string{u'a', 0xD800, u'b', 0xDC00}), "a\uFFFDb\uFFFD");
    EXPECT_EQ(Printable(u"\U0001D11E \u00E9"), "\U0001D11E \u00E9");
    EXPECT_EQ(Printable("caf\xE9"), "caf\u00E9");
    EXPECT_EQ(JsonDocument({JsonText(std::u16string{0xD800})}), "[\n  \"\uFFFD\uFFFD\uFFFD\"\n]\n");
}

TEST(Text, OfNumbersKnowsNoLocale)
{
    EXPECT_EQ(NumberText(-5.754012e-6), "-5.75401e-06");
    EXPECT_EQ(NumberText(1234567.0), "1.23457e+06");
    EXPECT_EQ(NumberText(std::numeric_limits<double>::quiet_NaN()), "undefined");
    EXPECT_EQ(ExactText(2.828427), "2.828427");
    EXPECT_EQ(JsonNumber(0.1F), Json(0.1));
    EXPECT_TRUE(JsonNumber(std::numeric_limits<float>::infinity()).is_null());
}

} // namespace zmxf
