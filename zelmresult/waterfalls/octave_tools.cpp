#include "zelmresult/waterfalls/octave_tools.h"

#include "zelmresult/quantities/decimal_split.h"

#include <array>
#include <cmath>

namespace ZelmResult {

namespace {

// Not all of these are rounded powers of ten: results are labelled with exactly these values.
const std::vector<float> kPreferred = {1.0F, 1.25F, 1.6F, 2.0F, 2.5F, 3.15F, 4.0F, 5.0F, 6.3F, 8.0F, 10.0F};
const std::vector<float> kPreferredTwelfth = {
    1.00F, 1.03F, 1.06F, 1.09F, 1.12F, 1.15F, 1.19F, 1.22F, 1.26F, 1.30F, 1.33F, 1.37F, 1.41F, 1.45F, 1.50F, 1.54F,
    1.58F, 1.63F, 1.68F, 1.72F, 1.78F, 1.83F, 1.88F, 1.94F, 2.00F, 2.05F, 2.11F, 2.18F, 2.24F, 2.30F, 2.37F, 2.44F,
    2.51F, 2.58F, 2.66F, 2.74F, 2.82F, 2.90F, 2.98F, 3.07F, 3.16F, 3.25F, 3.35F, 3.45F, 3.55F, 3.65F, 3.76F, 3.87F,
    3.98F, 4.10F, 4.22F, 4.34F, 4.47F, 4.60F, 4.73F, 4.87F, 5.01F, 5.16F, 5.30F, 5.46F, 5.62F, 5.79F, 5.96F, 6.13F,
    6.30F, 6.49F, 6.68F, 6.88F, 7.08F, 7.28F, 7.50F, 7.71F, 7.94F, 8.18F, 8.41F, 8.66F, 8.91F, 9.17F, 9.44F, 9.71F};
const std::vector<float> kPreferredTwentyFourth = {
    1.01F, 1.04F, 1.07F, 1.10F, 1.14F, 1.17F, 1.20F, 1.24F, 1.28F, 1.31F, 1.35F, 1.39F, 1.43F, 1.47F, 1.52F, 1.56F,
    1.60F, 1.65F, 1.70F, 1.75F, 1.80F, 1.86F, 1.91F, 1.97F, 2.02F, 2.08F, 2.14F, 2.20F, 2.27F, 2.34F, 2.40F, 2.48F,
    2.55F, 2.62F, 2.70F, 2.78F, 2.86F, 2.94F, 3.03F, 3.12F, 3.20F, 3.30F, 3.40F, 3.50F, 3.60F, 3.70F, 3.81F, 3.92F,
    4.04F, 4.16F, 4.28F, 4.40F, 4.53F, 4.66F, 4.80F, 4.94F, 5.08F, 5.23F, 5.39F, 5.54F, 5.70F, 5.87F, 6.04F, 6.22F,
    6.40F, 6.59F, 6.78F, 6.98F, 7.18F, 7.40F, 7.60F, 7.83F, 8.06F, 8.30F, 8.54F, 8.79F, 9.04F, 9.30F, 9.58F, 9.85F};

} // namespace

float OctaveTools::GetOctaveCoeff(std::uint32_t xn)
{
    if (xn == 2) return 0.91728F;
    return xn == 3 ? 0.90417F : 1.0F;
}

float OctaveTools::GetOctaveStep(std::uint32_t xn)
{
    constexpr std::array exponents{0.3F, 0.1F, 0.025F, 0.0125F};
    return std::pow(10.0F, xn < exponents.size() ? exponents[xn] : exponents[0]);
}

const std::vector<float>& OctaveTools::GetOctavePreferedTab(std::uint32_t xn)
{
    if (xn == 2) return kPreferredTwelfth;
    return xn == 3 ? kPreferredTwentyFourth : kPreferred;
}

const float* OctaveTools::GetOctavePreferedTab(std::uint32_t xn, std::int32_t& count)
{
    const std::vector<float>& table = GetOctavePreferedTab(xn);
    count = static_cast<std::int32_t>(table.size());
    return table.data();
}

float OctaveTools::GetOctaveFrequence(float base, std::int16_t index, std::uint32_t xn, bool convert, bool lowerEdge)
{
    const float step = GetOctaveStep(xn);
    float frequency = base * GetOctaveCoeff(xn) * std::pow(step, static_cast<float>(index));
    if (convert) frequency = ConvertOctaveCentralFreq(frequency, xn);
    if (lowerEdge) frequency /= std::sqrt(step);
    return frequency;
}

float OctaveTools::ConvertOctaveCentralFreq(float f, std::uint32_t xn)
{
    const std::vector<float>& table = GetOctavePreferedTab(xn);
    const auto [mantissa, exponent] = SplitMantissaExponent(f);
    std::size_t i = 1;
    while (i + 1 < table.size() && table[i] < mantissa) ++i;
    if (mantissa < (table[i - 1] + table[i]) / 2.0F) --i;
    float preferred = table[i];
    for (int e = 0; e < exponent; ++e) preferred *= 10.0F;
    for (int e = 0; e > exponent; --e) preferred /= 10.0F;
    return preferred;
}

} // namespace ZelmResult
