#include "tests/quantities/plain_formatting.h"
#include "zelmresult/quantities/grandeur.h"
#include "zelmresult/quantities/ponderation_unite.h"
#include "zelmresult/support/text.h"

#include <array>
#include <bit>
#include <cfloat>
#include <charconv>
#include <climits>
#include <cmath>
#include <gtest/gtest.h>
#include <random>
#include <sstream>
#include <string>

namespace ZelmResult {
namespace {

using namespace test;

// What only units themselves see.
struct OpenUnit : CUnite {
    using CUnite::CalculResolution;
    using CUnite::CalculResolutionDigits;
    using CUnite::DecimalDigits;
    using CUnite::SmartRound;
};

OpenUnit Real(const PlainUnit& plain)
{
    OpenUnit unit;
    unit.SetCoeffA(plain.slope), unit.SetCoeffB(plain.offset), unit.SetRef0dB(plain.ref0dB);
    unit.SetCoefdB(plain.coefdB), unit.SetId(static_cast<std::uint16_t>(plain.id));
    unit.SetLowPrefix(static_cast<std::int16_t>(plain.low)), unit.SetHighPrefix(static_cast<std::int16_t>(plain.high));
    unit.SetNotation(static_cast<std::uint16_t>(plain.notation)), unit.SetNoZero(plain.noZero);
    unit.SetDigits(plain.fixedDecimals), unit.SetNbDigits(plain.decimals);
    unit.SetLabelLinUnite(plain.lin), unit.SetLabeldBUnite(plain.level);
    return unit;
}

PlainText Shown(CUnite& unit, const PlainValue& v, bool inSI, const CPonderationUnite* weighting = nullptr)
{
    PlainText text{u"former", u"former", u"former"};
    const auto call = inSI ? &CUnite::ScalaireSIToString : &CUnite::ScalaireCourantToString;
    (unit.*call)(text.digits, v.value, v.absolute, v.relative, text.prefix, text.label, v.dB, weighting, v.rounding,
                 static_cast<std::int16_t>(v.notation));
    return text;
}

// Draws units and values, the telling ones more often than chance would.
class Draw {
public:
    template <class T>
    T of(std::initializer_list<T> choices)
    {
        return choices.begin()[static_cast<std::size_t>(integer(0, static_cast<int>(choices.size()) - 1))];
    }
    int integer(int low, int high) { return std::uniform_int_distribution(low, high)(m_engine); }
    bool oneIn(int n) { return integer(1, n) == 1; }
    float decade(int low, int high) { return static_cast<float>(std::pow(10.0, integer(low, high))); }

    PlainUnit unit()
    {
        PlainUnit u;
        if (oneIn(2)) u.slope = of({0.0F, 0.5F, 1.8F, 1000.0F, 1e-3F, -2.5F, decade(-12, 12)});
        if (oneIn(4)) u.offset = of({273.15F, -459.67F, 1e-6F, -1.0F, decade(-9, 9)});
        u.ref0dB = of({1.0F, 2e-5F, 1e-6F, 1e-12F, -1.0F});
        u.coefdB = of({20.0F, 10.0F, -10.0F});
        u.id = of({0, 60});
        if (oneIn(2)) u.low = 3 * integer(-9, 3), u.high = u.low + 3 * integer(-1, 6);
        if (oneIn(8)) u.low = integer(-40, 40), u.high = integer(-40, 40);
        if (oneIn(4)) u.high = u.low;
        u.notation = integer(0, 4);
        u.noZero = !oneIn(3), u.fixedDecimals = oneIn(3), u.decimals = integer(-2, 9);
        if (oneIn(50)) u.decimals = of({-100, 30, 60});
        return u;
    }

    float number()
    {
        const float tenth = static_cast<float>(integer(1, 9'999'999)) * decade(-7, 0);
        const auto bits = static_cast<std::uint32_t>(m_engine());
        float value = of({tenth, static_cast<float>(integer(0, 1100)), static_cast<float>(integer(0, 1 << 24)),
                          decade(-30, 30), std::bit_cast<float>(bits), tenth * decade(-30, 30)});
        if (oneIn(5)) value = std::nextafter(value, of({0.0F, HUGE_VALF}));
        if (oneIn(50)) value = of({0.0F, FLT_MAX, FLT_MIN, 1e-45F, HUGE_VALF, NAN, 1e-25F, 1e-4F});
        return oneIn(3) ? -value : value;
    }

    PlainValue value()
    {
        PlainValue v{number()};
        if (!oneIn(3))
            v.absolute =
                decade(-25, 25) * of({1.0F, 0.25F, 3.0F, -1.0F, 1.0F + static_cast<float>(integer(1, 9999)) * 1e-4F});
        if (!oneIn(3)) v.relative = decade(-9, 0) * of({1.0F, 0.5F, 0.37F});
        v.dB = oneIn(4), v.rounding = integer(-1, 3), v.notation = integer(-1, 4);
        return v;
    }

private:
    std::mt19937 m_engine{20240607};
};

std::string Told(const PlainUnit& u, const PlainValue& v)
{
    std::ostringstream out;
    out.precision(9);
    out << "value " << v.value << ", precisions " << v.absolute << " " << v.relative << (v.dB ? ", dB" : "");
    out << ", rounding " << v.rounding << ", notation " << v.notation << "; unit " << u.slope << " " << u.offset << " ";
    out << u.ref0dB << " " << u.coefdB << ", id " << u.id << ", limits " << u.low << " " << u.high << ", notation ";
    out << u.notation << (u.noZero ? ", NoZero" : "") << (u.fixedDecimals ? ", Digits " : ", ") << u.decimals;
    return out.str();
}

bool Same(double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); }

// The number that a text without a prefix says.
double Number(const wstring& text)
{
    const std::string narrow = ToUtf8(text);
    double number = 0;
    std::from_chars(narrow.data(), narrow.data() + narrow.size(), number);
    return number;
}

TEST(Formatting, AgreesWithThePlainOne)
{
    Draw draw;
    int numbers = 0, unprintable = 0, levels = 0, exponents = 0, prefixes = 0, adjusted = 0;
    for (int i = 0; i < 200'000 && !::testing::Test::HasFailure(); ++i) {
        PlainUnit plain = draw.unit();
        const PlainUnit before = plain;
        const PlainValue v = draw.value();
        SCOPED_TRACE(Told(plain, v));
        OpenUnit unit = Real(plain);
        CPonderationUnite weighting;
        weighting.setHasLinString(draw.oneIn(2)), weighting.setHasDbString(draw.oneIn(2));
        weighting.set_lin(u"(Q)"), weighting.set_db(u"Q");
        const bool isWeighted = draw.oneIn(2), inSI = draw.oneIn(2);
        plain.lin = isWeighted && weighting.hasLinString() ? u"(Q)" : u"";
        plain.level = isWeighted && weighting.hasDbString() ? u"dBQ" : u"dB";

        PlainText expected{u"former", u"former", u"former"};
        (inSI ? plainFromSI(plain, v, expected) : plainFromUnit(plain, v, expected));
        const PlainText text = Shown(unit, v, inSI, isWeighted ? &weighting : nullptr);
        EXPECT_EQ(text.digits, expected.digits);
        EXPECT_EQ(text.prefix, expected.prefix);
        EXPECT_EQ(text.label, expected.label);
        EXPECT_TRUE(unit.GetLowPrefix() == plain.low && unit.GetHighPrefix() == plain.high) << "limits repaired";

        EXPECT_TRUE(Same(unit.ScalaireSIToScalaire(v.value, v.dB), plainInUnit(before, v.value, v.dB)));
        EXPECT_TRUE(Same(unit.ScalaireToScalaireSI(double{v.value}, v.dB), plainInSI(before, v.value, v.dB)));
        if (std::fabs(v.value) < 1e12F) {
            EXPECT_EQ(OpenUnit::SmartRound(v.value, v.rounding), plainRounded(v.value, v.rounding));
        }
        const double read = unit.AdjustScalaire(v.value, v.absolute, v.relative, v.dB);
        if (v.dB || std::isfinite(v.value)) {
            EXPECT_TRUE(Same(read, plainAdjusted(before, v))) << read;
        }

        // Without a prefix and a fixed number of decimals, the text says the very number that the value becomes.
        const PlainValue direct{v.value, v.absolute, v.relative, false, CUnite::kRoundNearest, draw.of({0, 2, 3})};
        unit.SetDigits(false);
        if (std::isfinite(v.value) && std::fabs(v.value) >= 1e-25F && !v.dB) {
            const PlainText said = Shown(unit, direct, false);
            if (said.digits != u"N.A.") {
                EXPECT_EQ(Number(said.digits), read) << ToUtf8(said.digits);
            }
            ++adjusted;
        }
        ++(text.digits == u"N.A." ? unprintable : v.dB ? levels : numbers);
        if (text.digits.find(u'E') != wstring::npos) ++exponents;
        if (text.prefix.size() == 1) ++prefixes;
    }
    EXPECT_GT(std::min({numbers, exponents, prefixes, adjusted}), 20'000) << "the draw reaches all ways";
    EXPECT_GT(std::min(unprintable, levels), 10'000);
}

PlainUnit Fixed(int decimals)
{
    PlainUnit unit;
    unit.notation = 0, unit.fixedDecimals = true, unit.decimals = decimals;
    return unit;
}

TEST(Formatting, Examples)
{
    PlainUnit plain, keepsZeros, odd, wide, strange, crossed;
    keepsZeros.noZero = false;
    odd.low = odd.high = 4; // no multiple of 3
    wide.low = -60, wide.high = 60;
    strange.low = strange.high = 30;
    crossed.low = 6, crossed.high = -3, crossed.fixedDecimals = true, crossed.decimals = 2;
    PlainUnit kilo = Fixed(2);
    kilo.notation = 1, kilo.low = kilo.high = 3;
    const struct {
        PlainUnit unit;
        PlainValue value;
        wstring digits, prefix;
    } rows[] = {
        {plain, {1234.5F, 0, 0.001F}, u"1.235", u"k"},
        {plain, {0.00012345F, 0, 0.001F}, u"0.1235", u"m"},
        {plain, {-12.34F, 0, 0.001F}, u"-12.34", u""},
        {plain, {1.5e6F, 0, 0.001F}, u"1500", u"k"},
        {plain, {1.5e7F, 0, 0.001F}, u"15000", u"k"},
        {plain, {999.6F, 0, 0.01F}, u"1", u"k"},
        {plain, {1e-7F, 0, 0.001F}, u"100E-06", u"m"},
        {plain, {1e-26F, 0, 0.001F}, u"0", u""},
        {plain, {0, 0, 0.001F}, u"0", u""},
        {plain, {0.3F, 1, 0}, u"0", u"m"},
        {plain, {-0.3F, 1, 0}, u"-000", u"m"}, // the sign shields the zeros
        {plain, {98500, 0, 0.01F}, u"99", u"k"},
        {plain, {8388609, 0, 1e-7F}, u"8388.61", u"k"}, // a half added in single precision
        {plain, {1.000003F, 0, 1e-6F}, u"1.0", u""},    // noise
        {plain, {1.00003F, 0, 1e-6F}, u"1.00003", u""},
        {plain, {1.26F, 0.25F, 0}, u"1.26", u""}, // 0.25 has digits down to 0.01
        {plain, {1234.5F, 0, 0.01F, false, CUnite::kRoundUp}, u"1.24", u"k"},
        {plain, {1239.5F, 0, 0.01F, false, CUnite::kRoundDown}, u"1.23", u"k"},
        {plain, {1234.5F, 0, 0.001F, false, 1, 0}, u"1235", u""},
        {plain, {1.5e9F, 0, 0.001F, false, 1, 0}, u"1.5E+09", u""},
        {plain, {1.5e-7F, 0, 0.001F, false, 1, 0}, u"1.5E-07", u""},
        {plain, {1234.5F, 0, 0.001F, false, 1, 2}, u"1.235E+03", u""},
        {plain, {1234.5F, 0, 0.001F, false, 1, 3}, u"1.235E+03", u""},
        {plain, {12.34F, 0, 0.001F, false, 1, 4}, u"123400", u""}, // an unknown notation
        {plain, {93.4567F, 0, 0, true}, u"93.46", u""},
        {plain, {-3, 0, 0, true}, u"-3.0", u""},
        {plain, {120, 0, 0, true}, u"120.0", u""},
        {plain, {0, 0, 0, true}, u"0", u""},
        {plain, {0.004F, 0, 0, true}, u"0.0", u""},
        {plain, {0.0001F, 0, 0, true}, u"0", u""}, // the nearest float lies below
        {plain, {-0.0001F, 0, 0, true}, u"0", u""},
        {plain, {HUGE_VALF, 0, 0, true}, u"N.A.", u"former"},
        {plain, {NAN, 0, 0}, u"N.A.", u"former"},
        {keepsZeros, {1500, 0, 0.001F}, u"1.5", u"k"},
        {keepsZeros, {1500, 0, 0.01F, false, 1, 2}, u"1.5E+03", u""},
        {Fixed(3), {1.5F}, u"1.500", u""},
        {Fixed(2), {1234.5678F}, u"1234.57", u""},
        {Fixed(2), {0}, u"0", u""},
        {Fixed(0), {2.5F}, u"3", u""},
        {Fixed(3), {93.4567F, 0, 0, true, 1, 0}, u"93.460", u""},
        {Fixed(1), {93.4567F, 0, 0, true, 1, 0}, u"93.4", u""}, // cut, not rounded
        {Fixed(0), {93.4567F, 0, 0, true, 1, 0}, u"93", u""},
        {Fixed(-1), {123}, u"12", u""},
        {Fixed(-4), {123}, u"", u""},
        {kilo, {1234.5F}, u"1.23", u"k"},
        {kilo, {1.5e9F}, u"1.50E+06", u"k"},
        {odd, {1234.5F, 0, 0.001F}, u"0.001235", u"k"},
        {wide, {1.5e30F, 0, 0.001F}, u"1.5E+06", u"Y"},
        {strange, {1.5e30F, 0, 0.001F}, u"1.5", u""},  // past the table
        {crossed, {1.5e6F, 0, 0.001F}, u"1.50", u"M"}, // its limits agree only once they are repaired
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(Told(row.unit, row.value));
        OpenUnit unit = Real(row.unit);
        const PlainText text = Shown(unit, row.value, false);
        EXPECT_EQ(ToUtf8(text.digits), ToUtf8(row.digits));
        EXPECT_EQ(ToUtf8(text.prefix), ToUtf8(row.prefix));
    }
}

TEST(Formatting, HostilePrecisionsEnd)
{
    OpenUnit unit;
    for (const float value : {1.0F, FLT_MAX, 1e-45F, HUGE_VALF, NAN})
        for (const float absolute : {0.0F, FLT_MAX, 1e-45F, -HUGE_VALF, NAN})
            for (const float relative : {0.0F, FLT_MAX, -1.0F, HUGE_VALF, NAN})
                for (const int decimals : {0, INT_MIN, INT_MAX}) {
                    const PlainValue v{value, absolute, relative, false, 2, decimals == 0 ? 1 : 0};
                    unit.SetDigits(decimals != 0), unit.SetNbDigits(decimals);
                    EXPECT_LT(Shown(unit, v, true).digits.size(), 2000U);
                    (void)unit.AdjustScalaire(value, absolute, relative, false);
                }
    const auto former = CUnite::M_fPrecisionDb;
    CUnite::M_fPrecisionDb = 1.0;
    EXPECT_EQ(Shown(unit, {93.4567F, 0, 0, true, 1, 3}, false).digits, u"93");
    CUnite::M_fPrecisionDb = former;
    EXPECT_EQ(former, static_cast<double>(0.01F));
    EXPECT_EQ(OpenUnit::SmartRound(123456789.0F, 1), 123456800);
    EXPECT_EQ(OpenUnit::SmartRound(FLT_MAX, 1), INT64_MAX);
    EXPECT_EQ(OpenUnit::SmartRound(-HUGE_VALF, 0), INT64_MIN);
    OpenUnit::DecimalDigits found{u"7", 7, 7};
    unit.SetNbDigits(2);
    EXPECT_TRUE(unit.CalculResolutionDigits(1.5F, found));
    EXPECT_TRUE(found.digits == u"051" && found.n == 3 && found.e == -2);
    EXPECT_FALSE(unit.CalculResolution(1e-38F, {0, 0}, found, false, 1, false)) << "no relative precision is left";
}

TEST(Formatting, Conversions)
{
    PlainUnit plain, celsius, tenth;
    celsius.offset = -273.15F;
    tenth.slope = 0.1F, tenth.offset = 0;
    OpenUnit si = Real(plain), degrees = Real(celsius), tenths = Real(tenth);
    EXPECT_EQ(si.ScalaireSIToScalaire(HUGE_VALF, false), HUGE_VALF) << "a slope of 1 saturates nothing";
    EXPECT_EQ(degrees.ScalaireSIToScalaire(-HUGE_VALF, false), -FLT_MAX);
    EXPECT_EQ(tenths.ScalaireSIToScalaire(-1e-45F, false), -FLT_MIN);
    EXPECT_EQ(si.ScalaireSIToScalaire(1e-45F, false), 1e-45F);
    EXPECT_EQ(degrees.ScalaireSIToScalaire(100, true), CUnite::M_fNotANumber);
    EXPECT_EQ(Shown(degrees, {100, 0, 0, true}, true), (PlainText{u"-1000000.0", u"", u"dB"})) << "above 0 only in SI";
    EXPECT_EQ(Shown(si, {-1, 0, 0, true}, true), (PlainText{u"N.A.", u"", u""}));
    EXPECT_EQ(Shown(si, {FLT_MAX, 0, 0}, true), (PlainText{u"N.A.", u"", u""}));
    EXPECT_TRUE(si.LinTodB(0) == -1000000.0F && si.LinTodB(100) == 40 && si.DiffDbToRatioLin(40) == 100);
    EXPECT_EQ(si.getCurrentAbsPrecision(0.25F), 0.25F);
    EXPECT_EQ(tenths.getCurrentAbsPrecision(0.25F), 0.01F) << "its decade";
    EXPECT_EQ(degrees.getCurrentAbsPrecision(0.1F), 100.0F) << "the offset goes along";
    tenths.SetId(60);
    EXPECT_EQ(tenths.getCurrentAbsPrecision(0.25F), 0.25F);
    si.SetRef0dB(0.5F);
    EXPECT_EQ(si.DbToLin(1000), std::pow(10.0F, 38.0F) * 0.5F);
    EXPECT_EQ(si.DbToLin(20), 5);
    EXPECT_EQ(si.ScalaireToScalaireSI(20.0F, true), 5);
    si.SetCoeffA(0);
    EXPECT_EQ(si.ScalaireToScalaireSI(1.0, false), 0);
}

TEST(Formatting, TimesPrefixesAndWholeTexts)
{
    const std::pair<int, wstring> times[] = {{5, u" 5\""},       {0, u" 0\""},           {65, u" 1' 5\""},
                                             {3599, u"59'59\""}, {3725, u" 1 2' 5\""},   {3600, u" 1 0' 0\""},
                                             {-65, u"-1'-5\""},  {360000, u"100 0' 0\""}};
    for (const auto& [seconds, text] : times) EXPECT_EQ(CUnite::TimeToString_seconds(seconds), text);
    wstring table;
    for (int i = -1; i <= 17; ++i) table += CUnite::prefix(i) + u" ";
    EXPECT_EQ(table, u" y z a f p n u m  k M G T P E Z Y  ");

    const struct {
        wstring text;
        bool blank;
        wstring whole;
    } rows[] = {{u"0", true, u"0 m"}, {u"0", false, u"0m"}, {u"0.0", true, u"0.0 km"}, {u"1", false, u"1km"}};
    for (const auto& row : rows) {
        wstring text = row.text;
        CGrandeur::concat_SI_string(text, u"k", u"m", row.blank);
        EXPECT_EQ(text, row.whole);
    }
    wstring text = u"1.5 m.s";
    CUnite::M_chRegionalSeparator = u',';
    CUnite::ConvertWithRegionalSeparator(text);
    EXPECT_EQ(text, u"1,5 m,s");
    OpenUnit unit;
    EXPECT_EQ(Shown(unit, {1.5F}, false).digits, u"1.5") << "only on demand";
    CUnite::M_chRegionalSeparator = u'.';
}

TEST(Formatting, QuantitiesUseTheirCurrentUnit)
{
    CUnite milli;
    milli.SetCoeffA(1000), milli.SetLabelLinUnite(u"mm"), milli.SetNotation(0), milli.SetRef0dB(0.1F);
    CGrandeur length, none;
    length.AjouteUniteDynamique(&milli), length.SetUniteCourante(&milli);
    wstring out, prefix = u"?", label = u"?";
    none.SI_to_string(out, 1, 0, 0, prefix, label, false, nullptr);
    none.courant_to_string(out, 1, 0, 0, prefix, label, false, nullptr);
    EXPECT_TRUE(out == u"N.A." && prefix == u"?" && label == u"?");
    EXPECT_TRUE(none.ConvertSIToScalaire(2, false) == 2 && none.LinTodB(2) == 2 && none.DbToLin(2) == 2);
    length.SI_to_string(out, 1.2345F, 0, 0.001F, prefix, label, false, nullptr, CUnite::kRoundUp);
    EXPECT_TRUE(out == u"1235" && prefix.empty() && label == u"mm");
    length.courant_to_string(out, 1234.5F, 0, 0.001F, prefix, label, false, nullptr, 3);
    EXPECT_EQ(out, u"1.235E+03");
    EXPECT_TRUE(length.ConvertSIToScalaire(2, false) == 2000 && length.ConvertToScalaire(2000, false) == 2);
    EXPECT_TRUE(length.LinTodB(1) == 20 && length.DbToLin(40) == 10 && length.DiffDbToRatioLin(40) == 100);
    EXPECT_EQ(length.AdjustScalaire(1234.5F, 0, 0.01F, false), 1230) << "half of an even unit goes by single precision";
}

} // namespace
} // namespace ZelmResult
