#pragma once

#include <cstdint>

// The numbers that results carry. They are stored as they are, so every value is legal.

namespace ZelmResult {

// The family of the concrete class.
enum class SizeType : std::uint32_t {
    Vector = 0, // CVector and CDoubleResult set none
    Scalar = 1,
    RegVector = 2,
    RefVector = 3,
    RegOrderTrack = 6,
    RefOrderTrack = 7,
    Waterfall = 8,
    VectorRef = 9,
    CompressedVector = 10,
    GlobalLevel = 11,
    SuiviOrdre = 12,
    BroadBand = 13,
    CompressedScalar = 14
};

// How the values of a vector are held. Any number above the last acts like OctaveMinMax without its extra arrays.
enum class SignalType : std::uint32_t {
    Real = 0,
    Complex = 1,      // real and imaginary parts in two arrays
    Octave = 2,       // real, octave bands
    OctaveMinMax = 3, // bands with their minimum and maximum
    OctaveMin = 4,    // the minimum only
    OctaveMax = 5,    // the maximum only
    Compressed = 6    // no arrays of its own
};

// The unit that a result was made for; dumps show any other number as the second.
enum class TypeUnite : std::uint32_t { EU = 0, EU2 = 1 };

// Which level of octave bands an operation is about.
enum class AvgOctaveTarget : std::int32_t { None = 0, Averaged = 1, Octave = 2, Minimum = 3, Maximum = 4 };

// The values of Dimension.
inline constexpr std::uint32_t kDimensionScalar = 1;
inline constexpr std::uint32_t kDimensionVector = 2;
inline constexpr std::uint32_t kDimensionWaterfall = 3;
inline constexpr std::uint32_t kDimensionUnset = 0xFFFFFFFF;

// Bits for IsOfType.
namespace ResultMaskBit {
inline constexpr std::uint32_t kWaterfall = 0x40;
inline constexpr std::uint32_t kRefWaterfall = 0x80;
} // namespace ResultMaskBit

} // namespace ZelmResult
