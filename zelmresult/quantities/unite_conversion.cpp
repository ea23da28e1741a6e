// Values of a unit: SI to the unit and back, linear and in decibels.

#include "zelmresult/quantities/decimal_split.h"
#include "zelmresult/quantities/unite.h"

#include <algorithm>
#include <cfloat>
#include <cmath>

namespace ZelmResult {

namespace {

constexpr float kLargestTens = 38.0F;            // keeps powers of ten finite
constexpr std::uint16_t kIdOfFullPrecision = 60; // a unit whose precision must not be reduced to its decade

} // namespace

float CUnite::LinTodB(float value) const
{
    return value <= 0.0F ? M_fNotANumber : std::log10(value * m_invRef0dB) * m_coefdB;
}

float CUnite::DbToLin(float level) const { return DiffDbToRatioLin(level) * m_ref0dB; }

float CUnite::DiffDbToRatioLin(float difference) const
{
    const float tens = difference / m_coefdB;
    return std::pow(10.0F, tens > kLargestTens ? kLargestTens : tens);
}

float CUnite::ScalaireSIToScalaire(float value, bool dB) const
{
    float converted = 0.0F;
    if (value >= FLT_MAX && (m_coeffA > 1.0F || m_coeffB > 0.0F))
        converted = FLT_MAX;
    else if (value <= -FLT_MAX && (m_coeffA > 1.0F || m_coeffB < 0.0F))
        converted = -FLT_MAX;
    else if (value != 0.0F && std::fabs(value) <= FLT_MIN && m_coeffA < 1.0F)
        converted = std::copysign(FLT_MIN, value);
    else
        converted = value * m_coeffA + m_coeffB;
    return dB ? LinTodB(converted) : converted;
}

double CUnite::ScalaireToScalaireSI(double value, bool dB) const
{
    if (dB) {
        const auto tens = static_cast<float>(static_cast<double>(static_cast<float>(value)) / m_coefdB);
        value = std::pow(10.0F, std::min(tens, kLargestTens)) * m_ref0dB;
    }
    return m_coeffA == 0.0F ? 0.0 : (value - m_coeffB) / m_coeffA;
}

float CUnite::ScalaireToScalaireSI(float value, bool dB) const
{
    return static_cast<float>(ScalaireToScalaireSI(static_cast<double>(value), dB));
}

float CUnite::getCurrentAbsPrecision(float precision) const
{
    const bool isSI = m_coeffA == 1.0F && m_coeffB == 0.0F;
    if (isSI || precision == 0.0F || m_id == kIdOfFullPrecision) return precision;
    // The conversion adds the offset of the unit too, which makes the precision of a temperature coarse.
    const float converted = m_coeffA * precision + m_coeffB;
    return std::pow(10.0F, static_cast<float>(SplitMantissaExponent(converted).exponent));
}

double CUnite::AdjustScalaire(float value, float absPrecision, float relPrecision, bool dB) const
{
    if (!dB) return AdjustScalaireLin(value, absPrecision, relPrecision);
    const auto tens = static_cast<float>(static_cast<double>(value) / m_coefdB);
    return static_cast<double>(std::pow(10.0F, std::min(tens, kLargestTens)) * m_ref0dB);
}

} // namespace ZelmResult
