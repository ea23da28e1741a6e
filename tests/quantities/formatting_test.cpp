#include "zelmresult/quantities/grandeur.h"
#include "zelmresult/quantities/ponderation_unite.h"
#include "zelmresult/support/text.h"

#include <algorithm>
#include <cfloat>
#include <climits>
#include <cmath>
#include <gtest/gtest.h>

namespace ZelmResult {
namespace {

struct OpenUnit : CUnite {
    using CUnite::SmartRound;
};

struct Value {
    float value, absolute = 0, relative = 0;
    bool dB = false;
    int rounding = CUnite::kRoundNearest;
    std::int16_t notation = CUnite::kNotationOfUnit;
};

struct Text {
    wstring digits = u"?", prefix = u"?", label = u"?";
    bool operator==(const Text&) const = default;
};

Text Shown(CUnite& unit, const Value& v, bool inSI)
{
    Text text;
    const auto call = inSI ? &CUnite::ScalaireSIToString : &CUnite::ScalaireCourantToString;
    (unit.*call)(text.digits, v.value, v.absolute, v.relative, text.prefix, text.label, v.dB, nullptr, v.rounding,
                 v.notation);
    return text;
}

CUnite WithLimits(int low, int high)
{
    CUnite unit;
    unit.SetLowPrefix(static_cast<std::int16_t>(low));
    unit.SetHighPrefix(static_cast<std::int16_t>(high));
    return unit;
}

CUnite Fixed(int decimals, CUnite unit = CUnite(), std::uint16_t notation = 0)
{
    unit.SetDigits(true);
    unit.SetNbDigits(decimals);
    unit.SetNotation(notation);
    return unit;
}

struct Example {
    CUnite unit;
    Value value;
    wstring shown; // with the prefix
};

void ExpectShown(const std::vector<Example>& examples)
{
    for (const Example& example : examples) {
        CUnite unit = example.unit;
        const Text text = Shown(unit, example.value, false);
        EXPECT_EQ(ToUtf8(text.digits + text.prefix), ToUtf8(example.shown)) << "example " << &example - examples.data();
    }
}

TEST(Formatting, ExamplesOfAPlainUnit)
{
    const CUnite plain;
    ExpectShown({
        {plain, {1234.5F, 0, 0.001F}, u"1.235k"},
        {plain, {0.00012345F, 0, 0.001F}, u"0.1235m"},
        {plain, {-12.34F, 0, 0.001F}, u"-12.34"},
        {plain, {1.5e6F, 0, 0.001F}, u"1500k"},
        {plain, {1.5e9F, 0, 0.001F}, u"1.5E+06k"},
        {plain, {999.6F, 0, 0.01F}, u"1k"},
        {plain, {0.9999997F, 0, 0.1F}, u"1"}, // stays in its decade
        {plain, {1e-7F, 0, 0.001F}, u"100E-06m"},
        {plain, {5e-25F, 0, 0.001F}, u"500E-24m"},
        {plain, {1e-26F, 0, 0.001F}, u"0"},
        {plain, {-1e-26F, 0, 0.001F}, u"0"},
        {plain, {0.3F, 1, 0}, u"0m"},
        {plain, {-0.3F, 1, 0}, u"-000m"}, // the sign shields the zeros
        {plain, {-30, 100, 0, false, 1, 0}, u"0"},
        {plain, {98500, 0, 0.01F}, u"99k"},
        {plain, {8388609, 0, 1e-7F}, u"8388.61k"}, // a half added in single precision
        {plain, {1.000003F, 0, 1e-6F}, u"1.0"},    // noise
        {plain, {1.0000013F, 0, 1e-7F}, u"1.0"},   //
        {plain, {1.00003F, 0, 1e-6F}, u"1.00003"},
        {plain, {9.4F, 0, 0.1F}, u"9.4"},
        {plain, {1.26F, 1.05F, 0}, u"1.26"}, // 1.05 has digits down to 0.01
        {plain, {1.26F, 0.3F, 0}, u"1.3"},
        {plain, {1.26F, 0.3F, 1}, u"1"}, // the coarser one counts
        {plain, {1234.5F, 0, 0.01F, false, CUnite::kRoundUp}, u"1.24k"},
        {plain, {1239.5F, 0, 0.01F, false, CUnite::kRoundDown}, u"1.23k"},
        {plain, {12, 0, 0.1F, false, CUnite::kRoundUp}, u"12"},
        {plain, {12345678, 0, 1e-8F, false, CUnite::kRoundUp}, u"12345.67k"}, // whole, though past seven digits
        {plain, {1234.5F, 0, 0.001F, false, 1, 0}, u"1235"},
        {plain, {1.5e8F, 0, 0.001F, false, 1, 0}, u"1.5E+08"},
        {plain, {1.5e7F, 0, 0.001F, false, 1, 0}, u"15000000"},
        {plain, {1.5e-5F, 0, 0.01F, false, 1, 0}, u"0.000015"},
        {plain, {1.5e-7F, 0, 0.001F, false, 1, 0}, u"1.5E-07"},
        {plain, {1234.5F, 0, 0.001F, false, 1, 2}, u"1.235E+03"},
        {plain, {123450, 0, 0.001F, false, 1, 2}, u"123.5E+03"},
        {plain, {1.5F, 0, 0.001F, false, 1, 3}, u"1.5E+00"},
        {plain, {12.34F, 0, 0.001F, false, 1, 4}, u"123400"}, // an unknown notation
        {plain, {93.4567F, 0, 0, true}, u"93.46"},
        {plain, {120, 0, 0, true}, u"120.0"},
        {plain, {0, 0, 0, true}, u"0"},
        {plain, {-0.0009F, 0, 0, true}, u"-0.0"},
        {plain, {0.0001F, 0, 0, true}, u"0"}, // the nearest float lies below
        {plain, {NAN, 0, 0}, u"N.A.?"},
    });
}

TEST(Formatting, ExamplesOfFixedDigitsAndPrefixes)
{
    CUnite plain, keepsZeros;
    keepsZeros.SetNoZero(false);
    const CUnite kilo = Fixed(2, WithLimits(3, 3), 1);
    ExpectShown({
        {keepsZeros, {1500, 0, 0.001F}, u"1.5k"},
        {keepsZeros, {15, 0, 0, false, 1, 0}, u"1.5E+01"}, // places past the sixth decimal
        {keepsZeros, {1500, 0, 0.01F, false, 1, 2}, u"1.5E+03"},
        {Fixed(3), {1.5F}, u"1.500"},
        {Fixed(7), {1.5F}, u"1.5000000E+00"},
        {Fixed(2), {1234.5678F}, u"1234.57"},
        {Fixed(2), {0}, u"0"},
        {Fixed(0), {2.5F}, u"3"},
        {Fixed(3), {93.4567F, 0, 0, true, 1, 0}, u"93.460"},
        {Fixed(1), {93.4567F, 0, 0, true, 1, 0}, u"93.4"}, // cut, not rounded
        {Fixed(0), {93.4567F, 0, 0, true, 1, 0}, u"93"},
        {Fixed(-4), {123}, u""},
        {Fixed(2, plain, 1), {1234.5F, 0, 0.001F}, u"1.235k"}, // no fixed place without a fixed prefix
        {kilo, {1236}, u"1.24k"},
        {kilo, {1.5e9F}, u"1.50E+06k"},
        {WithLimits(4, 4), {1234.5F, 0, 0.001F}, u"0.001235k"}, // no multiple of 3
        {WithLimits(-60, 60), {1.5e30F, 0, 0.001F}, u"1.5E+06Y"},
        {WithLimits(30, 30), {1.5e30F, 0, 0.001F}, u"1.5"},              // past the table
        {Fixed(2, WithLimits(6, -3), 1), {1.5e6F, 0, 0.001F}, u"1.50M"}, // limits that agree once they are repaired
    });
}

TEST(Formatting, WhatPrintsAsNothingAdjustsToZero)
{
    const CUnite unit;
    for (const float nothing : {1e-40F, -1e-26F, 1.5e-31F, HUGE_VALF, -HUGE_VALF, NAN})
        for (const float relative : {0.0F, 0.001F}) EXPECT_EQ(unit.AdjustScalaire(nothing, 0, relative, false), 0);
}

TEST(Formatting, HostilePrecisionsEnd)
{
    CUnite unit;
    for (const float value : {1.0F, FLT_MAX, 1e-45F, HUGE_VALF, NAN})
        for (const float absolute : {0.0F, FLT_MAX, 1e-45F, -HUGE_VALF, NAN})
            for (const float relative : {0.0F, FLT_MAX, -1.0F, HUGE_VALF, NAN})
                for (const int decimals : {0, INT_MIN, INT_MAX}) {
                    const Value v{value, absolute, relative, false, 2, std::int16_t(decimals == 0 ? 1 : 0)};
                    unit.SetDigits(decimals != 0);
                    unit.SetNbDigits(decimals);
                    EXPECT_LT(Shown(unit, v, true).digits.size(), 2000U);
                    (void)unit.AdjustScalaire(value, absolute, relative, false);
                }
    EXPECT_EQ(OpenUnit::SmartRound(123456789.0F, CUnite::kRoundNearest), 123456800);
    EXPECT_EQ(OpenUnit::SmartRound(FLT_MAX, CUnite::kRoundNearest), INT64_MAX);
    EXPECT_EQ(OpenUnit::SmartRound(-HUGE_VALF, CUnite::kRoundDown), INT64_MIN);
    EXPECT_EQ(OpenUnit::SmartRound(-2.5F, CUnite::kRoundNearest), -3);
}

TEST(Formatting, Conversions)
{
    CUnite si, degrees, tenths;
    degrees.SetCoeffB(-273.15F);
    tenths.SetCoeffA(0.1F);
    EXPECT_EQ(si.ScalaireSIToScalaire(HUGE_VALF, false), HUGE_VALF) << "a slope of 1 saturates nothing";
    EXPECT_EQ(degrees.ScalaireSIToScalaire(-HUGE_VALF, false), -FLT_MAX);
    EXPECT_EQ(tenths.ScalaireSIToScalaire(-1e-45F, false), -FLT_MIN);
    EXPECT_EQ(si.ScalaireSIToScalaire(1e-45F, false), 1e-45F);
    EXPECT_EQ(Shown(degrees, {100, 0, 0, true}, true), (Text{u"-1000000.0", u"", u"dB"})) << "above 0 only in SI";
    EXPECT_EQ(Shown(si, {0, 0, 0, true}, true), (Text{u"N.A.", u"", u""}));
    EXPECT_EQ(Shown(si, {FLT_MAX, 0, 0}, true), (Text{u"N.A.", u"", u""}));
    EXPECT_EQ(si.LinTodB(0), -1000000.0F);
    EXPECT_EQ(si.LinTodB(100), 40);
    EXPECT_EQ(si.DiffDbToRatioLin(40), 100);
    EXPECT_EQ(si.getCurrentAbsPrecision(0.25F), 0.25F);
    EXPECT_EQ(tenths.getCurrentAbsPrecision(0.25F), 0.01F) << "its decade";
    EXPECT_EQ(Shown(tenths, {12.34F, 3, 0}, true).digits, u"1.2") << "the decade";
    EXPECT_EQ(degrees.getCurrentAbsPrecision(0.1F), 100.0F) << "the offset goes along";
    tenths.SetId(60);
    EXPECT_EQ(tenths.getCurrentAbsPrecision(0.25F), 0.25F);
    si.SetRef0dB(0.5F);
    EXPECT_EQ(si.DbToLin(1000), std::pow(10.0F, 38.0F) * 0.5F);
    EXPECT_EQ(si.ScalaireToScalaireSI(20.0F, true), 5);
    EXPECT_EQ(si.AdjustScalaire(20, 0, 0, true), 5);
    si.SetCoeffA(0);
    EXPECT_EQ(si.ScalaireToScalaireSI(1.0, false), 0);
}

TEST(Formatting, TimesPrefixesAndWholeTexts)
{
    const std::pair<int, wstring> times[] = {
        {5, u" 5\""}, {3599, u"59'59\""}, {3725, u" 1 2' 5\""}, {-65, u"-1'-5\""}, {360000, u"100 0' 0\""}};
    for (const auto& [seconds, text] : times) EXPECT_EQ(CUnite::TimeToString_seconds(seconds), text);
    wstring table;
    for (int i = -1; i <= 17; ++i) table += CUnite::prefix(i) + u" ";
    EXPECT_EQ(table, u" y z a f p n u m  k M G T P E Z Y  ");

    wstring zero = u"0", number = u"1.0";
    CGrandeur::concat_SI_string(zero, u"k", u"m", false);
    CGrandeur::concat_SI_string(number, u"k", u"m.s", true);
    EXPECT_EQ(zero, u"0m");
    CUnite::M_chRegionalSeparator = u',';
    CUnite::ConvertWithRegionalSeparator(number);
    EXPECT_EQ(number, u"1,0 km,s");
    CUnite unit;
    EXPECT_EQ(Shown(unit, {1.5F}, false).digits, u"1.5") << "only on demand";
    CUnite::M_chRegionalSeparator = u'.';
}

TEST(Formatting, QuantitiesUseTheirCurrentUnit)
{
    CUnite milli;
    milli.SetCoeffA(1000);
    milli.SetLabelLinUnite(u"mm");
    milli.SetNotation(0);
    milli.SetRef0dB(0.1F);
    CGrandeur length;
    length.AjouteUniteDynamique(&milli);
    length.SetUniteCourante(&milli);
    CPonderationUnite weighting;
    weighting.SetPonderationLabelUnite(1);
    wstring out, prefix, label;
    length.SI_to_string(out, 1.2345F, 0, 0.001F, prefix, label, false, &weighting, CUnite::kRoundUp);
    EXPECT_EQ(out + prefix + label, u"1235mm(A)");
    length.courant_to_string(out, 1234.5F, 0, 0.001F, prefix, label, true, &weighting, 3);
    EXPECT_EQ(out + label, u"1234.5dBA");
    EXPECT_EQ(length.ConvertSIToScalaire(2, false), 2000);
    EXPECT_EQ(length.ConvertToScalaire(2000, false), 2);
    EXPECT_EQ(length.LinTodB(1), 20);
    EXPECT_EQ(length.DbToLin(40), 10);
    EXPECT_EQ(length.AdjustScalaire(1234.5F, 0, 0.01F, false), 1230) << "half of an even unit goes by single precision";
}

} // namespace
} // namespace ZelmResult
