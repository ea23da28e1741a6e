#include "zelmresult/support/charconv.h"

#include <array>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <string>

namespace ZelmResult {
namespace {

template <class Number>
std::string Shortest(Number value)
{
    std::array<char, 32> text{};
    return {text.data(), ToChars(text.data(), text.data() + text.size(), value)};
}

TEST(CharConv, ShortestDigits)
{
    const struct {
        double value;
        const char* text;
    } rows[] = {{100000.0, "1e+05"},
                {123456789.0, "123456789"},
                {0.0001, "1e-04"},
                {0.00012, "0.00012"},
                {5e-324, "5e-324"},
                {-0.0, "-0"},
                {0.1, "0.1"},
                {1e21, "1e+21"},
                {2.828427e-5, "2.828427e-05"},
                {1.7976931348623157e308, "1.7976931348623157e+308"},
                {1.2345678901234567e20, "123456789012345667584"}};
    for (const auto& row : rows) EXPECT_EQ(Shortest(row.value), row.text);
    EXPECT_EQ(Shortest(0.1F), "0.1");
    EXPECT_EQ(Shortest(2.828427F), "2.828427");
    EXPECT_EQ(Shortest(std::numeric_limits<float>::denorm_min()), "1e-45");
    EXPECT_EQ(Shortest(8.5899346e9F), "8589934592");
}

TEST(CharConv, NumbersThatATextBeginsWith)
{
    const struct {
        const char* text;
        std::size_t length;
        double value;
    } rows[] = {{"12abc", 2, 12.0}, {"-.5", 3, -0.5},  {"1.5e+3 m", 6, 1500.0}, {"0x10", 1, 0.0},
                {"1e", 1, 1.0},     {"+1", 0, 7.0},    {" 1", 0, 7.0},          {"-", 0, 7.0},
                {"", 0, 7.0},       {"1e999", 0, 7.0}, {"1e-310", 6, 1e-310},   {"1e-999", 0, 7.0}};
    for (const auto& row : rows) {
        double value = 7.0;
        EXPECT_EQ(FromChars(row.text, value), row.length) << row.text;
        EXPECT_EQ(value, row.value) << row.text;
    }
    float infinite = 0.0F;
    EXPECT_EQ(FromChars("-inf", infinite), 4);
    EXPECT_TRUE(std::isinf(infinite));
}

} // namespace
} // namespace ZelmResult
