#include "tests/quantities/plain_formatting.h"

#include <algorithm>
#include <cfloat>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <string>

namespace ZelmResult::test {
namespace {

struct Split {
    float mantissa;
    int exponent = 0;
};

Split split(float v)
{
    Split s{v};
    if (!std::isfinite(v) || v == 0) return s;
    for (; std::fabs(s.mantissa) < 0.999999F; --s.exponent) s.mantissa *= 10;
    for (; std::fabs(s.mantissa) >= 10; ++s.exponent) s.mantissa /= 10;
    return s;
}

float tenBySquaring(int exponent)
{
    float result = 1, square = 10;
    for (unsigned left = static_cast<unsigned>(std::abs(exponent)); left != 0; left /= 2, square *= square)
        if (left % 2 == 1) result *= square;
    return exponent < 0 ? 1 / result : result;
}

float oneDigit(float v)
{
    const float exact[] = {1e-9F, 1e-8F, 1e-7F, 1e-6F, 1e-5F, 1e-4F, 1e-3F, 1e-2F, 1e-1F, 1e0F,
                           1e1F,  1e2F,  1e3F,  1e4F,  1e5F,  1e6F,  1e7F,  1e8F,  1e9F};
    const auto [m, e] = split(v);
    const float power = e >= -9 && e <= 9 ? exact[e + 9] : std::pow(10.0F, static_cast<float>(e));
    const int digit = static_cast<int>(m > 0 ? static_cast<double>(m) + 0.5 : static_cast<double>(m) - 0.5);
    return static_cast<float>(digit) * power;
}

// The decade of the last digit of an absolute precision that isn't 0.
float lastDecade(float precision)
{
    auto [g, c] = split(precision);
    float rest = g - std::trunc(g);
    while (std::fabs(rest) > 0.001F) {
        const auto [h, exponent] = split(tenBySquaring(c) * std::fabs(rest));
        c = exponent;
        rest = h - std::trunc(h);
        if (rest > 0.999F) rest = 0;
    }
    return tenBySquaring(c);
}

struct Places {
    std::string digits; // the least significant first
    int n = 0, e = 0;
    [[nodiscard]] char at(int i) const
    {
        return i < static_cast<int>(digits.size()) ? digits[static_cast<std::size_t>(i)] : '0';
    }
};

bool resolve(float value, double absolute, double relative, bool stripZeros, int rounding, Places& found)
{
    if (value == 0) {
        found = {"0", 1, 0};
        return true;
    }
    value = std::fabs(value);
    if (relative < 1e-8F) relative = 1e-8F;
    const float rel = oneDigit(static_cast<float>(value * relative));
    const float abs = absolute == 0 ? 0 : lastDecade(static_cast<float>(absolute));
    float resolution = abs > rel ? abs : rel, scale = 1;
    for (; resolution > 9.99999F; resolution *= 0.1F, scale *= 0.1F)
        if (++found.e > 100) return false;
    for (; resolution < 0.99999F; resolution *= 10, scale *= 10)
        if (--found.e < -100) return false;
    for (std::int64_t r = plainRounded(scale * value, rounding); r > 0; r /= 10) {
        if (stripZeros && r % 10 == 0) {
            ++found.e;
            continue;
        }
        stripZeros = false;
        ++found.n;
        found.digits += static_cast<char>('0' + r % 10);
    }
    // A few digits below a long run of zeros are noise of single precision.
    const std::size_t noise = std::min(found.digits.find('0'), found.digits.size());
    const std::size_t behind = std::min(found.digits.find_first_not_of('0', noise), found.digits.size());
    if (noise < 3 && behind - noise > 4) found.digits.replace(0, noise, noise, '0');
    return true;
}

bool hasFixedDecimals(const PlainUnit& unit, int notation)
{
    if (notation == -1) notation = unit.notation;
    return unit.fixedDecimals && (notation == 0 || (notation == 1 && unit.low == unit.high));
}

wstring wide(const std::string& text) { return {text.begin(), text.end()}; }

std::string layOut(PlainUnit& unit, bool negative, bool zero, const Places& found, wstring& prefix, bool dB,
                   int notation)
{
    if (notation == -1) notation = unit.notation;
    int n = found.n, exponent = 0, power = 0;
    const int e = found.e;
    int decimals = e; // of an unknown notation; not negated
    bool hasExponent = false, hasPrefix = false;
    int form = notation;
    if (zero || dB || notation == 0) form = e < -6 || n + e > 8 ? 3 : 0;
    if (form == 0) {
        decimals = -e;
    } else if (form == 3) {
        decimals = n - 1, exponent = e + n - 1, hasExponent = true;
    } else if (form == 2) {
        exponent = ((n + e + 89) / 3 - 30) * 3, decimals = exponent - e, hasExponent = true;
    } else if (form == 1) {
        const int wanted = ((n + e + 38) / 3 - 13) * 3;
        decimals = wanted - e;
        unit.high = std::min(unit.high, 24);
        unit.low = std::max(unit.low, -24);
        unit.high = std::max(unit.high, unit.low);
        if (wanted > unit.high + 3) {
            hasExponent = hasPrefix = true, power = unit.high, exponent = wanted - power;
        } else if (wanted < unit.low - 3) {
            hasExponent = hasPrefix = true, power = unit.low, exponent = wanted - power;
        } else {
            power = wanted;
            if (wanted > unit.high)
                power = unit.high, decimals -= 3;
            else if (wanted < unit.low)
                power = unit.low, decimals += 3;
            hasPrefix = power != 0;
        }
    }

    std::string out = negative ? "-" : "";
    bool hasPoint = false;
    n = std::max(n, decimals + 1);
    while (n > 0) {
        if (n == decimals) out += '.', hasPoint = true;
        out += found.at(--n);
    }
    for (; decimals < 0; ++decimals) out += '0';

    const bool fixedDecimals = hasFixedDecimals(unit, notation); // the limits may have been repaired
    if (fixedDecimals) {
        for (; decimals < unit.decimals; ++decimals) out += '0';
        for (; decimals > unit.decimals && !out.empty(); --decimals) out.pop_back();
        if (decimals == 0 && hasPoint) out.pop_back();
    } else if (decimals > 0) {
        while (out.ends_with('0') && out[out.size() - 2] != '.') out.pop_back();
    } else if (!hasExponent && (out == "00" || out == "-00")) {
        out = "0";
    }
    if (hasExponent) {
        const int size = std::abs(exponent);
        out += std::string(exponent < 0 ? "E-" : "E+") + std::to_string(size / 10) + std::to_string(size % 10);
    }

    const char* const prefixes[] = {"y", "z", "a", "f", "p", "n", "u", "m", "", "k", "M", "G", "T", "P", "E", "Z", "Y"};
    const int index = (power + 24) / 3;
    prefix = wide(hasPrefix && index >= 0 && index < 17 ? prefixes[index] : "");
    return out;
}

} // namespace

std::int64_t plainRounded(float x, int rounding)
{
    const auto whole = [](float v) { return v < 9e18F ? static_cast<std::int64_t>(v) : INT64_MAX; };
    const int exponent = split(x).exponent;
    const std::int64_t p = exponent > 6 ? whole(std::pow(10.0F, static_cast<float>(exponent - 6))) : 1;
    const float unit = static_cast<float>(p), q = x / unit;
    if (rounding == 0) return whole(q) * p;
    if (rounding == 2) return (static_cast<float>(whole(x)) / unit != q ? whole(q + 1) : whole(q)) * p;
    return (q > 0 ? whole(q + 0.5F) : whole(q - 0.5F)) * p;
}

float plainInUnit(const PlainUnit& unit, float si, bool dB)
{
    float r = si * unit.slope + unit.offset;
    if (si >= FLT_MAX && (unit.slope > 1 || unit.offset > 0))
        r = FLT_MAX;
    else if (si <= -FLT_MAX && (unit.slope > 1 || unit.offset < 0))
        r = -FLT_MAX;
    else if (si != 0 && std::fabs(si) <= FLT_MIN && unit.slope < 1)
        r = std::copysign(FLT_MIN, si);
    if (!dB) return r;
    return r <= 0 ? -1000000.0F : std::log10(r * (1 / unit.ref0dB)) * unit.coefdB;
}

double plainInSI(const PlainUnit& unit, double value, bool dB)
{
    if (dB) {
        const float t = static_cast<float>(static_cast<double>(static_cast<float>(value)) / unit.coefdB);
        value = std::pow(10.0F, t > 38 ? 38 : t) * unit.ref0dB;
    }
    return unit.slope == 0 ? 0 : (value - unit.offset) / unit.slope;
}

void plainFromUnit(PlainUnit& unit, const PlainValue& what, PlainText& text)
{
    float value = what.value;
    bool found = std::isfinite(value);
    Places places;
    if (found && what.dB) {
        if (std::fabs(static_cast<double>(value)) < 0.0001) value = 0;
        resolve(value, 0.01F, 0, false, what.rounding, places);
    } else if (found) {
        if (std::fabs(value) < std::pow(10.0F, -25.0F)) value = 0;
        if (hasFixedDecimals(unit, what.notation)) {
            const int power = (unit.low == unit.high ? unit.low : 0) - unit.decimals;
            found = resolve(value, tenBySquaring(power), 0, false, 1, places);
        } else {
            found = resolve(value, what.absolute, what.relative, unit.noZero, what.rounding, places);
        }
    }
    if (!found) {
        text.digits = u"N.A.";
        return;
    }
    std::string out = layOut(unit, value < 0, value == 0, places, text.prefix, what.dB, what.notation);
    while (out.starts_with("00")) out.erase(0, 1);
    text.digits = wide(out);
    text.label = what.dB ? unit.level : unit.lin;
    if (what.dB) text.prefix.clear();
}

void plainFromSI(PlainUnit& unit, PlainValue what, PlainText& text)
{
    if ((what.dB && what.value <= 0) || std::fabs(what.value) >= FLT_MAX) {
        text = {u"N.A.", u"", u""};
        return;
    }
    const bool sameScale = unit.slope == 1 && unit.offset == 0;
    if (!sameScale && what.absolute != 0 && unit.id != 60) {
        const float converted = unit.slope * what.absolute + unit.offset;
        what.absolute = std::pow(10.0F, static_cast<float>(split(converted).exponent));
    }
    what.value = plainInUnit(unit, what.value, what.dB);
    plainFromUnit(unit, what, text);
}

double plainAdjusted(const PlainUnit& unit, const PlainValue& what)
{
    if (what.dB) {
        const float t = static_cast<float>(static_cast<double>(what.value) / unit.coefdB);
        return std::pow(10.0F, t > 38 ? 38 : t) * unit.ref0dB;
    }
    Places places;
    resolve(what.value, what.absolute, what.relative, unit.noZero, 1, places);
    std::string text = what.value < 0 ? "-" : "";
    for (int n = std::max(places.n, 1 - places.e); n > 0; --n) {
        if (n == -places.e) text += '.';
        text += places.at(n - 1);
    }
    text.append(static_cast<std::size_t>(std::max(places.e, 0)), '0');
    double value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

} // namespace ZelmResult::test
