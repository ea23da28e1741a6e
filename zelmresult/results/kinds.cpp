#include "zelmresult/results/kinds.h"

#include <algorithm>
#include <array>

namespace ZelmResult {

namespace {

using enum ResultKind::Trait;
using Empty = ResultKind::Empty;
using Over = MaskForm::Over;
using Width = MaskForm::Width;

constexpr Empty Level() { return {ResultClass::Scalar, 1}; }
constexpr Empty Steps(std::int32_t size) { return {ResultClass::RegVector, size}; }
constexpr Empty ComplexSteps(std::int32_t size) { return {ResultClass::RegVector, size, SignalType::Complex}; }
constexpr Empty Along(std::int32_t size) { return {ResultClass::RefVector, size}; }
constexpr Empty ComplexAlong(std::int32_t size) { return {ResultClass::RefVector, size, SignalType::Complex}; }
constexpr Empty Bands(SignalType type, AvgOctaveTarget level) { return {ResultClass::RegVector, 31, type, level}; }

constexpr Empty kBands = Bands(SignalType::Octave, AvgOctaveTarget::Octave);
constexpr Empty kAveragedBands = Bands(SignalType::Octave, AvgOctaveTarget::Averaged);
constexpr Empty kBandsWithExtremes = Bands(SignalType::OctaveMinMax, AvgOctaveTarget::Averaged);
constexpr Empty kLowestBands = Bands(SignalType::OctaveMin, AvgOctaveTarget::Minimum);
constexpr Empty kHighestBands = Bands(SignalType::OctaveMax, AvgOctaveTarget::Maximum);
constexpr Empty kPairAlong = {ResultClass::DoubleRefVector, 401};
constexpr Empty kPairOfSteps = {ResultClass::DoubleRegVector, 401};
constexpr Empty kCompressedSignal = {ResultClass::CompressedVector, 3200, SignalType::Compressed};

constexpr MaskForm NarrowMask(Width width, std::uint32_t otherWidth, std::uint32_t otherSteps)
{
    return {Over::NarrowBands, width, false, otherWidth, otherSteps};
}
constexpr MaskForm ProfileMask(std::uint32_t otherSteps)
{
    return {Over::Profile, Width::Single, false, 0, otherSteps};
}
constexpr MaskForm Interpolated(MaskForm form)
{
    form.interpolated = true;
    return form;
}

// By number. Kinds whose meaning only the analyzer knows are named by what they hold.
constexpr std::array kKinds = std::to_array<ResultKind>({
    {1, "Values at even steps", Steps(256)},
    {ResultKind::kAutospectrum, "Autospectrum", Steps(401), Spectral | Peaks | Maskable},
    {3, "Values at even steps", Steps(1024)},
    {4, "Complex spectrum", ComplexSteps(401), Spectral | Peaks | Maskable},
    {{5, 6}, "Cross spectrum", ComplexSteps(401), Spectral | CrossSpectral},
    {ResultKind::kMean, "Mean", Level(), MaskableAlong},
    {ResultKind::kRms, "RMS", Level(), MaskableAlong},
    {ResultKind::kAcRms, "AC RMS", Level(), MaskableAlong},
    {ResultKind::kPeak, "Peak", Level(), MaskableAlong},
    {ResultKind::kAcPeak, "AC peak", Level(), MaskableAlong},
    {ResultKind::kCrestFactor, "Crest factor", Level(), MaskableAlong},
    {ResultKind::kKurtosis, "Kurtosis", Level(), MaskableAlong},
    {16, "Values along references", Along(401)},
    {17, "Complex spectrum", ComplexSteps(401), Spectral | Peaks | Maskable},
    {18, "Octave bands", kBands, Spectral | Maskable | OctaveWaterfall},
    {19, "Values at even steps", Steps(256)},
    {{20, 21}, "Values at even steps", Steps(1024)},
    {ResultKind::kOrderTracks, "Order tracks", {ResultClass::RefOrderTrack, 256, SignalType::Complex}},
    {ResultKind::kReference, "Reference of a waterfall", {}},
    {ResultKind::kAveragedOctaves, "Averaged octave bands", kAveragedBands, Spectral | Maskable | OctaveWaterfall},
    {25, "Compressed signal", kCompressedSignal},
    {ResultKind::kGlobalLevel, "Global level", {ResultClass::GlobalLevel, 1}},
    {30, "Compressed signal", kCompressedSignal},
    {ResultKind::kTransferFunction, "Transfer function", ComplexSteps(401), Spectral | CrossSpectral},
    {32, "Cross spectrum", ComplexSteps(401), Spectral | CrossSpectral},
    {ResultKind::kCoherence, "Coherence", Steps(401)},
    {ResultKind::kMask, "Mask", Along(401), Spectral | Peaks | Maskable, NarrowMask(Width::Single, 40, 118)},
    {38, "Octave mask", kBands, Spectral | Maskable, {Over::Octaves, Width::Single}},
    {39, "Mask of another form", {}, Maskable, {Over::Something}},
    {40, "Double mask", kPairAlong, Peaks | Maskable, NarrowMask(Width::Double, 37, 119)},
    {41, "Mask of another form", {}, Maskable, {Over::Something}},
    {ResultKind::kTacho, "Tacho", Level(), Tacho | MaskableAlong},
    {ResultKind::kReferenceValues, "Values of a reference", Along(256)},
    {44, "Levels of orders", {ResultClass::SuiviOrdre, 9}},
    {ResultKind::kBroadBandLevels, "Broad band levels", {ResultClass::BroadBand, 54}},
    {{47, 56}, "Level", Level(), MaskableAlong},
    {75, "Tacho level", Level(), Tacho | MaskableAlong},
    {{76, 77}, "Values along references", Along(256)},
    {79, "Values along references", Along(256)},
    {80, "Complex spectrum", ComplexSteps(401), Spectral | Peaks | Maskable},
    {81, "Spectrum", Steps(401), Spectral | Peaks | Maskable},
    {82, "Complex spectrum", ComplexSteps(401), Spectral | Peaks | Maskable},
    {83, "Values at even steps", Steps(1024)},
    {{84, 85}, "Level", Level()},
    {{86, 87}, "Values at even steps", Steps(1024)},
    {88, "Tacho level", Level(), Tacho | MaskableAlong},
    {89, "Values along references", Along(256)},
    {90, "Complex spectrum", ComplexSteps(401), Spectral | Peaks | Maskable},
    {91, "Spectrum", Steps(401), Spectral | Peaks | Maskable},
    {{100, 107}, "Level with a phase", Level(), Peaks | MaskableAlong | PhasePossible},
    {108, "Level", Level(), Peaks},
    {{109, 116}, "Complex values along references", ComplexAlong(256), Peaks},
    {117, "Values along references", Along(256)},
    {118, "Interpolated mask", ComplexSteps(401), Spectral | Peaks | Maskable,
     Interpolated(NarrowMask(Width::Single, 119, 37))},
    {119, "Interpolated double mask", kPairOfSteps, Peaks | Maskable, Interpolated(NarrowMask(Width::Double, 118, 40))},
    {122, "Second mask", Along(401), Spectral | Maskable, NarrowMask(Width::Single, 123, 124)},
    {123, "Second double mask", kPairAlong, Maskable, NarrowMask(Width::Double, 122, 125)},
    {124, "Second interpolated mask", ComplexSteps(401), Spectral | Maskable,
     Interpolated(NarrowMask(Width::Single, 125, 122))},
    {125, "Second interpolated double mask", kPairOfSteps, Maskable, Interpolated(NarrowMask(Width::Double, 124, 123))},
    {126, "Profile mask", Along(401), Maskable, ProfileMask(127)},
    {127, "Interpolated profile mask", ComplexSteps(401), Maskable, Interpolated(ProfileMask(126))},
    {ResultKind::kSlidingCount, "Sliding count of slices", Along(256)},
    {129, "Second profile mask", Along(401), Maskable, ProfileMask(127)},
    {130, "Values at even steps", Steps(256)},
    {131, "Averaged octave bands with extremes", kBandsWithExtremes, Spectral | Maskable | OctaveWaterfall},
    {132, "Lowest octave bands", kLowestBands, Spectral | Maskable | OctaveWaterfall},
    {133, "Highest octave bands", kHighestBands, Spectral | Maskable | OctaveWaterfall},
    {134, "Level", Level(), MaskableAlong},
    {135, "Values at even steps", Steps(256)},
    {136, "Level", Level(), MaskableAlong},
    {137, "Octave bands", kBands, Spectral | Maskable},
    {138, "Averaged octave bands", kAveragedBands, Spectral | Maskable},
    {139, "Lowest octave bands", kLowestBands, Spectral | Maskable},
    {140, "Highest octave bands", kHighestBands, Spectral | Maskable},
    {141, "Values at even steps", Steps(256), OnlyAlong},
    {143, "Complex spectrum", ComplexSteps(401), Spectral | Peaks | Maskable},
    {144, "Spectrum", Steps(401), Spectral | Peaks | Maskable | OnlyAlong},
    {145, "Complex spectrum", ComplexSteps(401), Spectral | Peaks | Maskable},
    {146, "Spectrum", Steps(401), Spectral | Peaks | Maskable | OnlyAlong},
    {147, "Values at even steps", Steps(1024), OnlyAlong},
    {{148, 149}, "Values along a waterfall", {}, OnlyAlong},
    {150, "Values along a waterfall", {}, MaskableAlong | OnlyAlong},
    {{151, 153}, "Values along a waterfall", {}, Peaks | MaskableAlong | OnlyAlong},
    {154, "Values along a waterfall", {}, OnlyAlong},
    {{155, 158}, "Values along a waterfall", {}, Peaks | MaskableAlong | OnlyAlong},
    {159, "Values at even steps", Steps(401)},
    {{160, 161}, "Values along a waterfall", {}, OnlyAlong},
    {162, "Values at even steps", Steps(401)},
    {{163, 164}, "Values along a waterfall", {}, OnlyAlong},
    {{170, 173}, "Cross spectrum", ComplexSteps(401), Spectral | CrossSpectral},
    {174, "Values at even steps", Steps(401)},
    {{175, 176}, "Values at even steps", Steps(256)},
    {177, "Spectrum", Steps(401), Spectral | Peaks},
    {178, "Complex spectrum", ComplexSteps(401), Spectral | Peaks},
    {179, "Spectrum", Steps(401), Spectral | Peaks},
    {180, "Complex spectrum", ComplexSteps(401), Spectral | Peaks},
    {181, "Values at even steps", Steps(401)},
    {182, "Level", Level()},
    {183, "Octave bands", kBands, Spectral},
    {185, "Values along references", Along(256)},
    {186, "Operated spectrum", ComplexAlong(256), Peaks | ExportedComplex},
    {187, "Waterfall", {ResultClass::Waterfall, 0}},
    {ResultKind::kRecordingPreview, "Recording preview", kCompressedSignal},
    {{193, 194}, "Level", Level(), MaskableAlong},
    {197, "Values at even steps", Steps(1024)},
    {198, "Spectrum", Steps(401), Spectral | Peaks | Maskable},
    {199, "Spectrum", {}, Spectral},
    {200, "Values at even steps", Steps(1024)},
    {{201, 208}, "Level", Level()},
    {{219, 220}, "Level", Level()},
    {{221, 222}, "Values at even steps", Steps(401), Maskable},
    {{223, 228}, "Values at even steps", Steps(1024), Maskable},
    {{229, 230}, "Values at even steps", Steps(1024)},
    {{250, 252}, "Level", Level()},
    {253, "Tacho level", Level(), Tacho | MaskableAlong},
    {254, "Values along references", Along(256)},
    {255, "Level", Level(), MaskableAlong},
    {256, "Values along references", Along(256)},
    {257, "Orbit", Along(401), Orbit},
    {{259, 266}, "Orbit", Along(401), Orbit},
    {267, "Tacho level", Level(), Tacho | MaskableAlong},
    {268, "Values along references", Along(256)},
    {ResultKind::kOverview, "Overview", {ResultClass::CompressedScalar, 3200, SignalType::Compressed}},
    {{271, 273}, "Level", Level(), MaskableAlong},
    {{274, 275}, "Values at even steps", Steps(1024)},
    {276, "Level", Level()},
    {277, "Values along references", Along(256)},
    {278, "Tacho level", Level(), Tacho | MaskableAlong},
    {279, "Values at even steps", Steps(256)},
    {280, "Level", Level()},
    {281, "Values along references", Along(256)},
    {{282, 285}, "Cross spectrum", ComplexSteps(401), Spectral | CrossSpectral},
    {286, "Values at even steps", Steps(401)},
    {287, "Values at even steps", Steps(401), Maskable},
    {{288, 293}, "Values at even steps", Steps(1024), Maskable},
    {{294, 295}, "Values at even steps", Steps(1024)},
    {{296, 297}, "Tacho", {}, Tacho},
    {300, "Values at even steps", Steps(401)},
    {{301, 306}, "Values at even steps", Steps(1024)},
    {{307, 308}, "Values along references", Along(401)},
    {309, "Values along references", Along(256)},
    {310, "Complex spectrum", ComplexSteps(401), Spectral | Peaks | Maskable},
    {311, "Level", Level()},
    {312, "Values along references", Along(256)},
    {313, "Compressed signal", kCompressedSignal},
});

constexpr bool AreInOrder(std::span<const ResultKind> kinds)
{
    for (std::size_t i = 1; i < kinds.size(); ++i)
        if (kinds[i].numbers.first <= kinds[i - 1].numbers.last) return false;
    return true;
}
static_assert(AreInOrder(kKinds), "each number stands in one row, and rows are found by their order");

constexpr ResultKind kUnknown = {0, "", {}};

constexpr std::array kGroupNames =
    std::to_array<const char*>({"level", "autospectrum", "spectrum", "octave", "frf", "coherence", "waterfall", "order",
                                "series", "overview", "orbit", "mask", "values", "other"});
static_assert(kGroupNames.size() == std::size_t{static_cast<std::uint8_t>(ResultGroup::Other)} + 1);

ResultGroup GroupOfVector(const ResultKind& kind)
{
    switch (kind.numbers.first) {
    case ResultKind::kAutospectrum: return ResultGroup::Autospectrum;
    case ResultKind::kTransferFunction: return ResultGroup::Frf;
    case ResultKind::kCoherence: return ResultGroup::Coherence;
    default: break;
    }
    if (kind.empty.octaves != AvgOctaveTarget::None) return ResultGroup::Octave;
    if (kind.Has(Orbit)) return ResultGroup::Orbit;
    if (kind.Has(Spectral)) return ResultGroup::Spectrum;
    return kind.empty.made == ResultClass::RefVector ? ResultGroup::Series : ResultGroup::Values;
}

} // namespace

ResultClass ResultKind::ClassAt(int waterfallDimension) const
{
    switch (waterfallDimension) {
    case WaterfallDimension::kNone: return empty.made;
    case WaterfallDimension::kReference:
        return Has(OnlyAlong) ? ResultClass::RefWaterfall : ResultClass::RefWaterfallWithReference;
    case WaterfallDimension::kWaterfall: return Has(OctaveWaterfall) ? ResultClass::WtfOctave : ResultClass::Waterfall;
    case WaterfallDimension::kAlong: return ResultClass::RefWaterfall;
    default: return ResultClass::None;
    }
}

ResultGroup ResultKind::GroupAt(int waterfallDimension) const
{
    const ResultClass made = ClassAt(waterfallDimension);
    if (waterfallDimension == WaterfallDimension::kNone && mask.over != Over::NoMask) return ResultGroup::Mask;
    switch (made) {
    case ResultClass::None: return ResultGroup::Other;
    case ResultClass::Scalar:
    case ResultClass::GlobalLevel:
    case ResultClass::BroadBand: return ResultGroup::Level;
    case ResultClass::RefOrderTrack:
    case ResultClass::SuiviOrdre: return ResultGroup::Order;
    case ResultClass::CompressedVector:
    case ResultClass::CompressedScalar: return ResultGroup::Overview;
    case ResultClass::Waterfall:
    case ResultClass::WtfOctave: return ResultGroup::Waterfall;
    case ResultClass::RefWaterfall:
    case ResultClass::RefWaterfallWithReference: return ResultGroup::Series;
    default: return GroupOfVector(*this);
    }
}

std::span<const char* const> ResultKind::GroupNames() { return kGroupNames; }

const ResultKind& ResultKind::Of(std::uint32_t process)
{
    const auto* row = std::partition_point(kKinds.begin(), kKinds.end(),
                                           [process](const ResultKind& kind) { return kind.numbers.last < process; });
    return row != kKinds.end() && row->numbers.first <= process ? *row : kUnknown;
}

std::span<const ResultKind> ResultKind::All() { return kKinds; }

} // namespace ZelmResult
