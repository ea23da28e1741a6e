// A value as text: which digits are worth printing, in which notation, with which prefix.

#include "zelmresult/quantities/decimal_split.h"
#include "zelmresult/quantities/unite.h"
#include "zelmresult/support/charconv.h"
#include "zelmresult/support/text.h"

#include <algorithm>
#include <array>
#include <cfloat>
#include <cmath>
#include <string>

namespace ZelmResult {

namespace {

constexpr std::int32_t kFarthestPower = 100;    // a resolution beyond it counts as none
constexpr std::int32_t kExponentCharacters = 4; // "E+03"
constexpr std::int32_t kMostDecimals = 1000;    // of a unit with a fixed number of them
constexpr std::int32_t kSmallestPrefixPower = -24;
constexpr std::int32_t kLargestPrefixPower = 24;

const float kSmallestPrinted = std::pow(10.0F, -25.0F); // smaller values print as zero

std::array<wstring, 17>& Prefixes()
{
    static std::array<wstring, 17> prefixes = {u"y", u"z", u"a", u"f", u"p", u"n", u"u", u"m", u"",
                                               u"k", u"M", u"G", u"T", u"P", u"E", u"Z", u"Y"};
    return prefixes;
}

float Fraction(float value) { return value - std::trunc(value); }

// The decade of the last significant digit of an absolute precision: 0.01 for 0.25.
float LastDigitDecade(double precision)
{
    if (precision == 0.0) return 0.0F;
    auto [mantissa, exponent] = SplitMantissaExponent(static_cast<float>(precision));
    float fraction = Fraction(mantissa);
    while (std::fabs(fraction) > 0.001F) {
        auto [next, nextExponent] = SplitMantissaExponent(PowerOfTen(exponent) * std::fabs(fraction));
        exponent = nextExponent;
        if (Fraction(next) > 0.999F) next = 1.0F;
        fraction = Fraction(next);
    }
    return PowerOfTen(exponent);
}

// Removes what single precision leaves after the digits that count: 1.0000003 is 1.
void WipeFloatNoise(wstring& digits)
{
    const std::size_t noise = std::min(digits.find(CUnite::M_chZero), digits.size());
    const std::size_t kept = std::min(digits.find_first_not_of(CUnite::M_chZero, noise), digits.size());
    if (kept - noise > 4 && noise < 3) digits.replace(0, noise, noise, CUnite::M_chZero);
}

// Cuts zeros at the end of the decimals, but keeps the first decimal.
void CutTrailingZeros(wstring& out, bool hasExponent)
{
    const std::size_t tail = hasExponent ? kExponentCharacters : 0;
    if (out.size() <= tail + 1) return;
    std::size_t last = out.size() - tail - 1;
    while (last > 0 && out[last] == CUnite::M_chZero && out[last - 1] != CUnite::M_chPoint) --last;
    out.erase(last + 1, out.size() - tail - (last + 1));
}

} // namespace

char16_t CUnite::DecimalDigits::At(std::int32_t i) const
{
    return i >= 0 && i < static_cast<std::int32_t>(digits.size()) ? digits[static_cast<std::size_t>(i)] : M_chZero;
}

// Never more than seven significant digits.
std::int64_t CUnite::SmartRound(float value, int rounding)
{
    const std::int32_t exponent = SplitMantissaExponent(value).exponent;
    const std::int64_t step = exponent > 6 ? ToInteger(std::pow(10.0F, static_cast<float>(exponent - 6))) : 1;
    const auto stepFloat = static_cast<float>(step);
    const float quotient = value / stepFloat;
    std::int64_t rounded = 0;
    if (rounding == kRoundDown)
        rounded = ToInteger(quotient);
    else if (rounding == kRoundUp)
        rounded = static_cast<float>(ToInteger(value)) / stepFloat != quotient ? ToInteger(quotient + 1.0F)
                                                                               : ToInteger(quotient);
    else
        rounded = ToInteger(quotient > 0.0F ? quotient + 0.5F : quotient - 0.5F);
    // Limited to the range of an integer.
    if (rounded > INT64_MAX / step) return INT64_MAX;
    return rounded < INT64_MIN / step ? INT64_MIN : rounded * step;
}

bool CUnite::CalculResolution(float value, Precision precision, DecimalDigits& found, bool fixedDigits, int rounding,
                              bool dB) const
{
    found.digits.clear();
    if (value == 0.0F) {
        found.n = 1;
        found.e = 0;
        found.digits = u"0";
        return true;
    }
    value = std::fabs(value);
    const double relative = std::max(precision.relative, static_cast<double>(1e-8F));
    const float byRelative = RoundToOneDigit(static_cast<float>(static_cast<double>(value) * relative));
    const float byAbsolute = LastDigitDecade(precision.absolute);
    float resolution = byAbsolute > byRelative ? byAbsolute : byRelative;
    float scale = 1.0F;
    found.e = 0;
    while (resolution > 9.99999F) {
        resolution *= 0.1F;
        scale *= 0.1F;
        if (++found.e > kFarthestPower) return false;
    }
    while (resolution < 0.99999F) {
        resolution *= 10.0F;
        scale *= 10.0F;
        if (--found.e < -kFarthestPower) return false;
    }
    found.n = 0;
    bool dropZeros = m_noZero && !fixedDigits && !dB;
    for (std::int64_t rest = SmartRound(scale * value, rounding); rest > 0; rest /= 10) {
        const auto digit = static_cast<char16_t>(M_chZero + rest % 10);
        if (dropZeros && digit == M_chZero) {
            ++found.e;
            continue;
        }
        dropZeros = false;
        ++found.n;
        found.digits += digit;
    }
    if (found.At(0) != M_chZero) WipeFloatNoise(found.digits);
    return true;
}

double CUnite::NDigitResolution() const
{
    const std::int64_t power = (isPrefixForced() ? std::int64_t{m_lowPrefix} : 0) - m_nbDigits;
    return static_cast<double>(
        PowerOfTen(static_cast<std::int32_t>(std::clamp<std::int64_t>(power, INT32_MIN, INT32_MAX))));
}

bool CUnite::CalculResolutionDigits(float value, DecimalDigits& found) const
{
    return CalculResolution(value, {NDigitResolution(), 0.0}, found, true, kRoundNearest, false);
}

bool CUnite::isNDigitsApplicable(std::int16_t notation) const
{
    const int used = notation == kNotationOfUnit ? m_notation : notation;
    return m_digits && (used == 0 || (used == 1 && isPrefixForced()));
}

void CUnite::Traitement_Notation_Fixed(const DecimalDigits& found, Form& form)
{
    if (found.e < -6 || found.n + found.e > 8)
        Traitement_Notation_Scientifique(found, form);
    else
        form.decimals = -found.e;
}

void CUnite::Traitement_Notation_Scientifique(const DecimalDigits& found, Form& form)
{
    form.decimals = found.n - 1;
    form.exponent = found.e + found.n - 1;
    form.hasExponent = true;
}

void CUnite::Traitement_Notation_Ingenieur(const DecimalDigits& found, Form& form)
{
    form.exponent = ((found.n + found.e + 89) / 3 - 30) * 3;
    form.decimals = form.exponent - found.e;
    form.hasExponent = true;
}

void CUnite::Traitement_Notation_Prefixe(const DecimalDigits& found, Form& form)
{
    const std::int32_t power = ((found.n + found.e + 38) / 3 - 13) * 3;
    form.decimals = power - found.e;
    m_highPrefix = std::min(m_highPrefix, static_cast<std::int16_t>(kLargestPrefixPower));
    m_lowPrefix = std::max(m_lowPrefix, static_cast<std::int16_t>(kSmallestPrefixPower));
    m_highPrefix = std::max(m_highPrefix, m_lowPrefix);
    const std::int32_t high = m_highPrefix;
    const std::int32_t low = m_lowPrefix;
    if (power > high + 3 || power < low - 3) {
        form.prefixPower = power > high ? high : low;
        form.exponent = power - form.prefixPower;
        form.hasExponent = form.hasPrefix = true;
        return;
    }
    form.prefixPower = std::clamp(power, low, high);
    if (power > high) form.decimals -= 3;
    if (power < low) form.decimals += 3;
    form.hasPrefix = form.prefixPower != 0;
}

CUnite::Form CUnite::ChooseForm(const DecimalDigits& found, bool zeroOrLevel, std::int16_t notation)
{
    Form form;
    if (zeroOrLevel || notation == 0)
        Traitement_Notation_Fixed(found, form);
    else if (notation == 3)
        Traitement_Notation_Scientifique(found, form);
    else if (notation == 2)
        Traitement_Notation_Ingenieur(found, form);
    else if (notation == 1)
        Traitement_Notation_Prefixe(found, form);
    else
        form.decimals = found.e; // an unknown notation takes the exponent as it is, not negated
    return form;
}

// Brings the decimals to the fixed number of the unit.
void CUnite::FitDecimals(wstring& out, std::int32_t& decimals, bool hasPoint) const
{
    const std::int32_t wanted = std::min(m_nbDigits, kMostDecimals);
    for (; decimals < wanted; ++decimals) out += M_chZero;
    for (; decimals > wanted && !out.empty(); --decimals) out.pop_back();
    if (decimals == 0 && hasPoint && !out.empty()) out.pop_back();
}

std::int32_t CUnite::CalculFormat(wstring& out, bool negative, bool zero, DecimalDigits& found, wstring& prefixText,
                                  bool dB, std::int16_t notation)
{
    out.clear();
    if (notation == kNotationOfUnit) notation = static_cast<std::int16_t>(m_notation);
    const Form form = ChooseForm(found, zero || dB, notation);
    std::int32_t decimals = form.decimals;
    found.n = std::max(found.n, decimals + 1);

    if (negative) out += M_chTiret;
    bool hasPoint = false;
    while (found.n > 0) {
        if (found.n == decimals) {
            out += M_chPoint;
            hasPoint = true;
        }
        out += found.At(--found.n);
    }
    for (; decimals < 0; ++decimals) out += M_chZero;
    const bool fixedDecimals = isNDigitsApplicable(notation);
    if (fixedDecimals) FitDecimals(out, decimals, hasPoint);
    if (form.hasExponent) {
        const std::int32_t size = std::abs(form.exponent);
        out += Concat(u"E", form.exponent < 0 ? u"-" : u"+", size / 10, size % 10);
    }
    prefixText = form.hasPrefix ? prefix((form.prefixPower - kSmallestPrefixPower) / 3) : wstring();
    if (!fixedDecimals) {
        if (decimals > 0)
            CutTrailingZeros(out, form.hasExponent);
        else if (out == u"00" || out == u"-00")
            out = u"0";
    }
    return static_cast<std::int32_t>(out.size());
}

void CUnite::ScalaireCourantToString(wstring& out, float value, float absPrecision, float relPrecision,
                                     wstring& prefixText, wstring& label, bool dB, const CPonderationUnite* weighting,
                                     int rounding, std::int16_t notation)
{
    if (!std::isfinite(value)) {
        out = textNotANumber();
        return;
    }
    const bool zero = dB ? std::fabs(static_cast<double>(value)) < 0.0001 : std::fabs(value) < kSmallestPrinted;
    const bool negative = value < 0.0F && !zero;
    if (zero) value = 0.0F;
    DecimalDigits found;
    if (dB) {
        (void)CalculResolution(value, {M_fPrecisionDb, 0.0}, found, false, rounding, true); // prints what there is
    } else if (const bool resolved =
                   isNDigitsApplicable(notation)
                       ? CalculResolutionDigits(value, found)
                       : CalculResolution(value, {absPrecision, relPrecision}, found, false, rounding, false);
               !resolved) {
        out = textNotANumber();
        return;
    }
    wstring text;
    (void)CalculFormat(text, negative, zero, found, prefixText, dB, notation);
    if (dB) prefixText.clear();
    label = GetLabelLinOrDbUnite(dB, weighting);
    // Only at the start: a minus sign protects the zeros after it.
    while (text.size() > 1 && text[0] == M_chZero && text[1] == M_chZero) text.erase(0, 1);
    out = text;
}

void CUnite::ScalaireSIToString(wstring& out, float value, float absPrecision, float relPrecision, wstring& prefixText,
                                wstring& label, bool dB, const CPonderationUnite* weighting, int rounding,
                                std::int16_t notation)
{
    if ((dB && value <= 0.0F) || std::fabs(value) >= FLT_MAX) {
        out = textNotANumber();
        prefixText.clear();
        label.clear();
        return;
    }
    ScalaireCourantToString(out, ScalaireSIToScalaire(value, dB), getCurrentAbsPrecision(absPrecision), relPrecision,
                            prefixText, label, dB, weighting, rounding, notation);
}

double CUnite::AdjustScalaireLin(float value, float absPrecision, float relPrecision) const
{
    if (!std::isfinite(value) || std::fabs(value) < kSmallestPrinted) return 0.0; // as its text has no digits, or "0"
    DecimalDigits found;
    (void)CalculResolution(value, {absPrecision, relPrecision}, found, false, kRoundNearest, false);
    found.n = std::max(found.n, 1 - found.e);
    std::string text(value < 0.0F ? "-" : "");
    while (found.n > 0) {
        if (found.n == -found.e) text += '.';
        text += static_cast<char>(found.At(--found.n));
    }
    for (; found.e > 0; --found.e) text += '0';
    double read = 0.0;
    (void)FromChars(text, read);
    return read;
}

wstring CUnite::TimeToString_seconds(std::int32_t seconds)
{
    const auto padded = [](std::int32_t number) {
        const wstring digits = ToDecimal(number);
        return digits.size() < 2 ? u" " + digits : digits;
    };
    const std::int32_t hours = seconds / 3600;
    const std::int32_t minutes = seconds % 3600 / 60;
    wstring rest = padded(seconds % 60) + u"\"";
    if (hours == 0 && minutes == 0) return rest;
    if (hours == 0) return padded(minutes) + u"'" + rest;
    return padded(hours) + u" " + ToDecimal(minutes) + u"'" + rest;
}

wstring CUnite::prefix(std::int32_t index)
{
    const auto& prefixes = Prefixes();
    return index >= 0 && index < static_cast<std::int32_t>(prefixes.size()) ? prefixes[static_cast<std::size_t>(index)]
                                                                            : wstring();
}

void CUnite::setPrefix_micro(const wstring& text) { Prefixes()[6] = text; }

void CUnite::ConvertWithRegionalSeparator(wstring& text)
{
    std::replace(text.begin(), text.end(), M_chPoint, M_chRegionalSeparator);
}

} // namespace ZelmResult
