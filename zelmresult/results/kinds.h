#pragma once

#include "zelmresult/results/result_types.h"
#include "zelmresult/support/otype.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace ZelmResult {

// The class for a kind of result with a WaterfallDimension.
enum class ResultClass : std::uint8_t {
    None,
    Scalar,
    RegVector,
    RefVector,
    DoubleRefVector,
    DoubleRegVector,
    RefOrderTrack,
    CompressedVector,
    CompressedScalar,
    GlobalLevel,
    SuiviOrdre,
    BroadBand,
    Waterfall,
    WtfOctave,
    RefWaterfall,             // values along a waterfall, without a reference of their own
    RefWaterfallWithReference // the same with the reference that they belong to
};

// What people call results of many kinds. Each result is in one group; a waterfall is in that of waterfalls, whatever
// its slices hold.
enum class ResultGroup : std::uint8_t {
    Level, // one or several
    Autospectrum,
    Spectrum, // any other, cross spectra too
    Octave,   // bands of octaves and of their fractions
    Frf,
    Coherence,
    Waterfall,
    Order,  // tracks and levels of orders
    Series, // values along references or along a waterfall, and references of waterfalls
    Overview,
    Orbit,
    Mask,
    Values, // at even steps
    Other   // without a class
};

// The values of WaterfallDimension that have classes.
namespace WaterfallDimension {
inline constexpr std::uint32_t kNone = 0;
inline constexpr std::uint32_t kReference = 1; // values along a waterfall, which are a reference of it
inline constexpr std::uint32_t kWaterfall = 2;
inline constexpr std::uint32_t kAlong = 5; // values along a waterfall
inline constexpr std::uint32_t kLast = kAlong;
} // namespace WaterfallDimension

// A mask is a limit drawn against a measurement. Its forms are kinds of their own.
struct MaskForm {
    enum class Over { NoMask, Something, NarrowBands, Octaves, Profile };
    enum class Width { Neither, Single, Double };

    Over over = Over::NoMask;
    Width width = Width::Neither;
    bool interpolated = false;
    std::uint32_t otherWidth = 0; // the double form of a single one, the single form of a double one; 0 for none
    std::uint32_t otherSteps = 0; // the interpolated form, or the one that isn't; 0 for none
};

// All facts about a kind of result, by its number. This one table feeds the result factory, the classification of
// CResult and ResultMask, the rules of headers and of exports, and the table of kinds in docs/format/results.md.
struct ResultKind {
    // Kinds that have a name in code.
    static constexpr std::uint32_t kAutospectrum = 2;
    static constexpr std::uint32_t kMean = 9;
    static constexpr std::uint32_t kRms = 10;
    static constexpr std::uint32_t kAcRms = 11;
    static constexpr std::uint32_t kPeak = 12;
    static constexpr std::uint32_t kAcPeak = 13;
    static constexpr std::uint32_t kCrestFactor = 14;
    static constexpr std::uint32_t kKurtosis = 15;
    static constexpr std::uint32_t kOrderTracks = 22;
    static constexpr std::uint32_t kReference = 23;
    static constexpr std::uint32_t kAveragedOctaves = 24;
    static constexpr std::uint32_t kGlobalLevel = 29;
    static constexpr std::uint32_t kTransferFunction = 31;
    static constexpr std::uint32_t kCoherence = 33;
    static constexpr std::uint32_t kMask = 37;
    static constexpr std::uint32_t kTacho = 42;
    static constexpr std::uint32_t kReferenceValues = 43;
    static constexpr std::uint32_t kBroadBandLevels = 46;
    static constexpr std::uint32_t kSlidingCount = 128; // of slices: the oldest is always 0
    static constexpr std::uint32_t kRecordingPreview = 191;
    static constexpr std::uint32_t kOverview = 270;

    // What holds for a kind, joined by |.
    enum Trait : std::uint32_t {
        Plain = 0,
        Spectral = 1, // over frequency
        CrossSpectral = 2,
        Orbit = 4,
        Peaks = 8, // may be shown as peak values
        Tacho = 16,
        Maskable = 32,         // masks can be made from it
        MaskableAlong = 64,    // masks can be made from it when it goes along a second kind
        OnlyAlong = 128,       // along a waterfall it has no reference of its own
        OctaveWaterfall = 256, // its waterfall is one of octave bands
        ExportedComplex = 512, // its complex values are exported unless something else decides
        PhasePossible = 1024
    };

    // The numbers of the kinds that a row describes, both ends included.
    struct Numbers {
        std::uint32_t first;
        std::uint32_t last;

        constexpr Numbers(std::uint32_t one) : first(one), last(one) {} // so that rows look like data
        constexpr Numbers(std::uint32_t from, std::uint32_t to) : first(from), last(to) {}
    };

    // An empty result of the kind without a waterfall. The size is provisional, since a read replaces it.
    struct Empty {
        ResultClass made = ResultClass::None;
        std::int32_t size = 0;
        SignalType type = SignalType::Real;
        AvgOctaveTarget octaves = AvgOctaveTarget::None; // the level that its octave bands hold
    };

    Numbers numbers;
    const char* name; // for captions
    Empty empty;
    std::uint32_t traits = Plain;
    MaskForm mask{};

    [[nodiscard]] constexpr bool Has(Trait trait) const { return (traits & trait) != 0; }
    [[nodiscard]] ResultClass ClassAt(int waterfallDimension) const;
    [[nodiscard]] ResultGroup GroupAt(int waterfallDimension) const;

    // For a number in no row: a kind without name and traits, which has only the classes that any kind has along a
    // waterfall.
    static const ResultKind& Of(std::uint32_t process);
    static const ResultKind& Of(otype::ElementaryResultProcess process)
    {
        return Of(static_cast<std::uint32_t>(process.toInteger()));
    }
    static std::span<const ResultKind> All(); // in the order of their numbers

    // The one word that people type and read for a group: "autospectrum". In the order of ResultGroup.
    static std::span<const char* const> GroupNames();
    static const char* NameOf(ResultGroup group) { return GroupNames()[static_cast<std::size_t>(group)]; }
};

} // namespace ZelmResult
