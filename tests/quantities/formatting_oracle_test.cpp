// The digits, the notation and the prefix of random values, held against the same rules written down a second time:
// plainly, with a list of digits and no regard to speed.

#include "zelmresult/quantities/unite.h"
#include "zelmresult/support/text.h"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <gtest/gtest.h>
#include <random>
#include <string>

namespace ZelmResult {
namespace {

struct Split {
    float mantissa;
    int exponent;
};

Split SplitOf(float value)
{
    int exponent = 0;
    for (; std::fabs(value) < 0.999999F; value *= 10.0F) --exponent;
    for (; std::fabs(value) >= 10.0F; value /= 10.0F) ++exponent;
    return {value, exponent};
}

float Fraction(float value) { return value - std::trunc(value); }

float SquaredPower(int exponent)
{
    float power = 1.0F;
    float square = 10.0F;
    for (int rest = std::abs(exponent); rest > 0; rest >>= 1, square *= square)
        if ((rest & 1) != 0) power *= square;
    return exponent < 0 ? 1.0F / power : power;
}

float OneDigit(float value)
{
    const Split split = SplitOf(value);
    const bool isExact = std::abs(split.exponent) <= 9;
    const float power = isExact ? std::strtof(("1e" + std::to_string(split.exponent)).c_str(), nullptr)
                                : std::pow(10.0F, static_cast<float>(split.exponent));
    return static_cast<float>(static_cast<int>(split.mantissa + 0.5)) * power;
}

float DecadeOf(float precision)
{
    if (precision == 0.0F) return 0.0F;
    Split split = SplitOf(precision);
    float rest = Fraction(split.mantissa);
    while (std::fabs(rest) > 0.001F) {
        split = SplitOf(SquaredPower(split.exponent) * std::fabs(rest));
        rest = Fraction(Fraction(split.mantissa) > 0.999F ? 1.0F : split.mantissa);
    }
    return SquaredPower(split.exponent);
}

// Of what isn't negative.
long long Rounded(float value, int rounding)
{
    const int exponent = value > 0.0F ? SplitOf(value).exponent : 0;
    const long long step = exponent > 6 ? std::llround(std::pow(10.0, exponent - 6)) : 1;
    const float quotient = value / static_cast<float>(step);
    if (rounding == 0) return static_cast<long long>(quotient) * step;
    if (rounding != 2) return static_cast<long long>(quotient + 0.5F) * step;
    const bool isWhole = static_cast<float>(static_cast<long long>(value)) / static_cast<float>(step) == quotient;
    return static_cast<long long>(isWhole ? quotient : quotient + 1.0F) * step;
}

struct Input {
    float value, absolute, relative;
    bool dB;
    int rounding, notation;
};

struct Printed {
    std::string digits; // the least significant first
    int power = 0;      // of ten, of the first digit
    std::string text, prefix;
};

bool HasFixedDecimals(const CUnite& unit, const Input& in, bool isPrefixForced)
{
    return unit.GetDigits() && (in.notation == 0 || (in.notation == 1 && isPrefixForced));
}

void FindDigits(const CUnite& unit, const Input& in, bool isFixed, Printed& out)
{
    const float value = std::fabs(in.value);
    if (value == 0.0F) {
        out.digits = "0";
        return;
    }
    float absolute = in.dB ? 0.01F : in.absolute;
    if (isFixed) absolute = SquaredPower((unit.isPrefixForced() ? unit.GetLowPrefix() : 0) - unit.GetNbDigits());
    const double relative = isFixed || in.dB ? 0.0 : static_cast<double>(in.relative);
    const float byRelative = OneDigit(static_cast<float>(value * std::max(relative, static_cast<double>(1e-8F))));
    float resolution = std::max(DecadeOf(absolute), byRelative);
    float scale = 1.0F;
    for (; resolution > 9.99999F; ++out.power) resolution *= 0.1F, scale *= 0.1F;
    for (; resolution < 0.99999F; --out.power) resolution *= 10.0F, scale *= 10.0F;
    const long long number = Rounded(scale * value, isFixed ? 1 : in.rounding);
    const std::string digits = number > 0 ? std::to_string(number) : "";
    out.digits.assign(digits.rbegin(), digits.rend());
    while (unit.GetNoZero() && !isFixed && !in.dB && out.digits.starts_with('0')) out.digits.erase(0, 1), ++out.power;
    const std::size_t noise = std::min(out.digits.find('0'), out.digits.size());
    const std::size_t zeros = std::min(out.digits.find_first_not_of('0', noise), out.digits.size()) - noise;
    if (zeros > 4 && noise < 3) out.digits.replace(0, noise, std::string(noise, '0'));
}

void Lay(const CUnite& unit, const Input& in, int kept, Printed& out)
{
    const int end = kept + out.power;
    const int notation = in.value == 0.0F || in.dB ? 0 : in.notation;
    const int low = std::max<int>(unit.GetLowPrefix(), -24);
    const int high = std::max(std::min<int>(unit.GetHighPrefix(), 24), low);
    int decimals = -out.power, exponent = 0, prefix = 0;
    bool hasExponent = false;
    if (notation == 3 || (notation == 0 && (out.power < -6 || end > 8))) {
        decimals = kept - 1, exponent = end - 1, hasExponent = true;
    } else if (notation == 2) {
        exponent = ((end + 89) / 3 - 30) * 3, decimals = exponent - out.power, hasExponent = true;
    } else if (notation == 1) {
        const int power = ((end + 38) / 3 - 13) * 3;
        hasExponent = power > high + 3 || power < low - 3;
        prefix = std::min(std::max(power, low), high);
        decimals = power - out.power;
        if (hasExponent)
            exponent = power - prefix;
        else
            decimals += power > high ? -3 : power < low ? 3 : 0;
    } else if (notation > 3) {
        decimals = out.power;
    }
    // Choosing a prefix brings the limits into their range first, so that they may agree from then on.
    const bool isFixed = HasFixedDecimals(unit, in, notation == 1 ? low == high : unit.isPrefixForced());
    std::string& text = out.text;
    if (in.value < 0.0F) text = "-";
    for (int n = std::max(kept, decimals + 1); n > 0; --n) {
        if (n == decimals) text += '.';
        text += n <= static_cast<int>(out.digits.size()) ? out.digits[static_cast<std::size_t>(n - 1)] : '0';
    }
    text.append(static_cast<std::size_t>(std::max(-decimals, 0)), '0');
    decimals = std::max(decimals, 0);
    if (isFixed) {
        const bool hasPoint = text.find('.') != std::string::npos;
        text.resize(text.size() + static_cast<std::size_t>(unit.GetNbDigits() - decimals), '0');
        if (unit.GetNbDigits() == 0 && hasPoint) text.pop_back();
    } else if (decimals > 0) {
        while (text.size() > 1 && text.back() == '0' && text[text.size() - 2] != '.') text.pop_back();
    } else if (!hasExponent && (text == "00" || text == "-00")) {
        text = "0";
    }
    if (hasExponent) {
        text += exponent < 0 ? "E-" : "E+";
        text += std::to_string(std::abs(exponent) / 10) + std::to_string(std::abs(exponent) % 10);
    }
    while (text.starts_with("00")) text.erase(0, 1);
    if (prefix != 0) out.prefix = std::string("yzafpnum kMGTPEZY").substr(static_cast<std::size_t>(prefix / 3 + 8), 1);
}

Printed Print(const CUnite& unit, Input in)
{
    Printed out;
    const double least = in.dB ? 0.0001 : static_cast<double>(1e-25F);
    if (std::fabs(static_cast<double>(in.value)) < least) in.value = 0.0F;
    FindDigits(unit, in, HasFixedDecimals(unit, in, unit.isPrefixForced()) && !in.dB, out);
    Lay(unit, in, static_cast<int>(out.digits.size()), out);
    return out;
}

// The value of digits, by their places.
double ValueOf(const Printed& printed, bool isNegative)
{
    const std::string digits(printed.digits.rbegin(), printed.digits.rend());
    const std::string text = "0" + digits + "e" + std::to_string(printed.power);
    double value = 0.0;
    (void)std::from_chars(text.data(), text.data() + text.size(), value);
    return isNegative ? -value : value;
}

TEST(FormattingOracle, RandomValuesPrintAsTheRulesSay)
{
    std::mt19937 random(20261122);
    const auto below = [&random](unsigned n) { return static_cast<int>(random() % n); };
    const auto power = [](int exponent) { return std::pow(10.0F, static_cast<float>(exponent)); };
    for (int i = 0; i < 100'000 && !::testing::Test::HasFailure(); ++i) {
        CUnite unit;
        const int low = 3 * (below(19) - 9);
        unit.SetLowPrefix(static_cast<std::int16_t>(low));
        unit.SetHighPrefix(static_cast<std::int16_t>(low + 3 * below(6)));
        unit.SetNoZero(below(2) == 0);
        unit.SetDigits(below(4) == 0);
        unit.SetNbDigits(below(6));
        Input in{};
        in.dB = below(5) == 0;
        in.value = static_cast<float>((below(3) == 0 ? -1 : 1) * below(below(2) == 0 ? 100 : 10'000'000)) *
                   power(in.dB ? below(5) - 5 : below(38) - 26);
        in.absolute = below(2) == 0 ? 0.0F : static_cast<float>(below(30)) * power(below(20) - 12);
        in.relative = below(4) == 0 ? 0.0F : static_cast<float>(1 + below(9)) * power(-1 - below(8));
        in.rounding = below(4);
        in.notation = below(5);
        SCOPED_TRACE(::testing::Message()
                     << i << ": " << in.value << " to " << in.absolute << " and " << in.relative << ", notation "
                     << in.notation << ", level " << in.dB << ", decimals " << unit.GetDigits() << unit.GetNbDigits()
                     << ", prefixes from " << low << " to " << unit.GetHighPrefix());
        const bool isFixed = HasFixedDecimals(unit, in, unit.isPrefixForced());
        const Printed wanted = Print(unit, in);
        wstring text, prefix, label;
        unit.ScalaireCourantToString(text, in.value, in.absolute, in.relative, prefix, label, in.dB, nullptr,
                                     in.rounding, static_cast<std::int16_t>(in.notation));
        EXPECT_EQ(ToUtf8(text), wanted.text);
        EXPECT_EQ(ToUtf8(prefix), in.dB ? "" : wanted.prefix);
        if (in.dB || in.rounding != CUnite::kRoundNearest || isFixed) continue;
        EXPECT_EQ(unit.AdjustScalaire(in.value, in.absolute, in.relative, false), ValueOf(wanted, in.value < 0.0F));
    }
}

} // namespace
} // namespace ZelmResult
