#pragma once

#include <cstdint>
#include <vector>

namespace ZelmResult {

// The frequencies of octave bands. The fraction of an octave is coded as results store it: 0 for 1/1, 1 for 1/3, 2 for
// 1/12, 3 for 1/24; any other code counts as 1/1. All frequencies are in Hz.
class OctaveTools {
public:
    // The factor from the frequency that a result stores to the middle of its lowest band: 1 except for 1/12 and 1/24.
    static float GetOctaveCoeff(std::uint32_t xn);
    // The ratio of two neighbouring bands.
    static float GetOctaveStep(std::uint32_t xn);
    // The preferred values between 1 and 10, ascending. lends, permanently.
    static const float* GetOctavePreferedTab(std::uint32_t xn, std::int32_t& count);
    static const std::vector<float>& GetOctavePreferedTab(std::uint32_t xn);
    static float GetLowerCentralFreqOctaveResolution(float f, std::uint32_t xn) { return f * GetOctaveCoeff(xn); }
    // The frequency of band index, counted from 0 at base: the exact middle, the preferred value with convert, the
    // lower edge with lowerEdge.
    static float GetOctaveFrequence(float base, std::int16_t index, std::uint32_t xn, bool convert, bool lowerEdge);
    // The preferred value nearest to f.
    static float ConvertOctaveCentralFreq(float f, std::uint32_t xn);
};

} // namespace ZelmResult
