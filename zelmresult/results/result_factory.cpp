// The one source that knows every class of result.

#include "zelmresult/results/result_factory.h"

#include "zelmresult/results/compressed_result.h"
#include "zelmresult/results/double_result.h"
#include "zelmresult/results/kind_set.h"
#include "zelmresult/results/level_results.h"
#include "zelmresult/results/order_track.h"
#include "zelmresult/results/ref_vector.h"
#include "zelmresult/results/reg_vector.h"
#include "zelmresult/results/result_mask.h"
#include "zelmresult/results/scalar.h"
#include "zelmresult/waterfalls/ref_waterfall.h"
#include "zelmresult/waterfalls/waterfall.h"
#include "zelmresult/waterfalls/waterfall_ref.h"
#include "zelmresult/waterfalls/wtf_octave.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <typeinfo>

namespace ZelmResult {

namespace {

enum class ResultClass {
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
    RefWaterfall,         // along a waterfall, without a reference of its own
    ReferenceOfWaterfall, // with one
};

// What is made for a run of kinds.
struct Row {
    KindRange kinds;
    ResultClass made;
    std::int32_t size = 0;
    SignalType type = SignalType::Real;
    std::uint32_t xnOctave = 0;
    bool phasePossible = false;
};

constexpr Row Spectrum(KindRange kinds, std::int32_t size, SignalType type = SignalType::Real)
{
    return {kinds, ResultClass::RegVector, size, type};
}
constexpr Row Octave(KindRange kinds, SignalType type) { return {kinds, ResultClass::RegVector, 31, type, 1}; }
constexpr Row Level(KindRange kinds, bool phasePossible = false)
{
    return {kinds, ResultClass::Scalar, 1, SignalType::Real, 0, phasePossible};
}
constexpr Row AlongReference(KindRange kinds, std::int32_t size, SignalType type = SignalType::Real)
{
    return {kinds, ResultClass::RefVector, size, type};
}
constexpr Row Other(KindRange kinds, ResultClass made, std::int32_t size, SignalType type = SignalType::Real)
{
    return {kinds, made, size, type};
}

constexpr std::int32_t kFactoryOrders = 9; // of an order track

// Results without a waterfall, by kind. What stands in no row has no class.
constexpr std::array kPlainRows = std::to_array<Row>({
    Spectrum(1, 256),
    Spectrum(2, 401),
    Spectrum(3, 1024),
    Spectrum({4, 6}, 401, SignalType::Complex),
    Level({9, 15}),
    AlongReference(16, 401),
    Spectrum(17, 401, SignalType::Complex),
    Octave(18, SignalType::Octave),
    Spectrum(19, 256),
    Spectrum({20, 21}, 1024),
    Other(22, ResultClass::RefOrderTrack, 256, SignalType::Complex),
    Octave(24, SignalType::Octave),
    Other(25, ResultClass::CompressedVector, 3200, SignalType::Compressed),
    Other(29, ResultClass::GlobalLevel, 1),
    Other(30, ResultClass::CompressedVector, 3200, SignalType::Compressed),
    Spectrum({31, 32}, 401, SignalType::Complex),
    Spectrum(33, 401),
    AlongReference(37, 401),
    Octave(38, SignalType::Octave),
    Other(40, ResultClass::DoubleRefVector, 401),
    Level(42),
    AlongReference(43, 256),
    Other(44, ResultClass::SuiviOrdre, 9),
    Other(46, ResultClass::BroadBand, 54),
    Level({47, 56}),
    Level(75),
    AlongReference({76, 77}, 256),
    AlongReference(79, 256),
    Spectrum(80, 401, SignalType::Complex),
    Spectrum(81, 401),
    Spectrum(82, 401, SignalType::Complex),
    Spectrum(83, 1024),
    Level({84, 85}),
    Spectrum({86, 87}, 1024),
    Level(88),
    AlongReference(89, 256),
    Spectrum(90, 401, SignalType::Complex),
    Spectrum(91, 401),
    Level({100, 107}, true),
    Level(108),
    AlongReference({109, 116}, 256, SignalType::Complex),
    AlongReference(117, 256),
    Spectrum(118, 401, SignalType::Complex),
    Other(119, ResultClass::DoubleRegVector, 401),
    AlongReference(122, 401),
    Other(123, ResultClass::DoubleRefVector, 401),
    Spectrum(124, 401, SignalType::Complex),
    Other(125, ResultClass::DoubleRegVector, 401),
    AlongReference(126, 401),
    Spectrum(127, 401, SignalType::Complex),
    AlongReference(128, 256),
    AlongReference(129, 401),
    Spectrum(130, 256),
    Octave(131, SignalType::OctaveMinMax),
    Octave(132, SignalType::OctaveMin),
    Octave(133, SignalType::OctaveMax),
    Level(134),
    Spectrum(135, 256),
    Level(136),
    Octave({137, 138}, SignalType::Octave),
    Octave(139, SignalType::OctaveMin),
    Octave(140, SignalType::OctaveMax),
    Spectrum(141, 256),
    Spectrum(143, 401, SignalType::Complex),
    Spectrum(144, 401),
    Spectrum(145, 401, SignalType::Complex),
    Spectrum(146, 401),
    Spectrum(147, 1024),
    Spectrum(159, 401),
    Spectrum(162, 401),
    Spectrum({170, 173}, 401, SignalType::Complex),
    Spectrum(174, 401),
    Spectrum({175, 176}, 256),
    Spectrum(177, 401),
    Spectrum(178, 401, SignalType::Complex),
    Spectrum(179, 401),
    Spectrum(180, 401, SignalType::Complex),
    Spectrum(181, 401),
    Level(182),
    Octave(183, SignalType::Octave),
    AlongReference(185, 256),
    AlongReference(186, 256, SignalType::Complex),
    Other(187, ResultClass::Waterfall, 0),
    Other(191, ResultClass::CompressedVector, 3200, SignalType::Compressed),
    Level({193, 194}),
    Spectrum(197, 1024),
    Spectrum(198, 401),
    Spectrum(200, 1024),
    Level({201, 208}),
    Level({219, 220}),
    Spectrum({221, 222}, 401),
    Spectrum({223, 230}, 1024),
    Level({250, 253}),
    AlongReference(254, 256),
    Level(255),
    AlongReference(256, 256),
    AlongReference(257, 401),
    AlongReference({259, 266}, 401),
    Level(267),
    AlongReference(268, 256),
    Other(270, ResultClass::CompressedScalar, 3200, SignalType::Compressed),
    Level({271, 273}),
    Spectrum({274, 275}, 1024),
    Level(276),
    AlongReference(277, 256),
    Level(278),
    Spectrum(279, 256),
    Level(280),
    AlongReference(281, 256),
    Spectrum({282, 285}, 401, SignalType::Complex),
    Spectrum({286, 287}, 401),
    Spectrum({288, 295}, 1024),
    Spectrum(300, 401),
    Spectrum({301, 306}, 1024),
    AlongReference({307, 308}, 401),
    AlongReference(309, 256),
    Spectrum(310, 401, SignalType::Complex),
    Level(311),
    AlongReference(312, 256),
    Other(313, ResultClass::CompressedVector, 3200, SignalType::Compressed),
});

Row PlainRow(int kind)
{
    for (const Row& row : kPlainRows)
        if (row.kinds.Holds(kind)) return row;
    return {kind, ResultClass::None};
}

// What is made for a kind under a WaterfallDimension.
Row RowFor(int kind, int waterfallDimension)
{
    switch (waterfallDimension) {
    case 0: return PlainRow(kind);
    case 1: {
        const bool bare = IsAmong(kind, {141, 144, {146, 158}, 160, 161, 163, 164});
        return {kind, bare ? ResultClass::RefWaterfall : ResultClass::ReferenceOfWaterfall};
    }
    case 2: return {kind, IsAmong(kind, {18, 24, {131, 133}}) ? ResultClass::WtfOctave : ResultClass::Waterfall};
    case 5: return {kind, ResultClass::RefWaterfall};
    default: return {kind, ResultClass::None};
    }
}

// A vector along a waterfall and its reference, tied to each other.
std::unique_ptr<CResult> WithReference(std::uint32_t kind, const wstring& name)
{
    constexpr std::uint32_t referenceProcess = 23;
    constexpr std::int32_t firstSize = 100;
    auto reference = std::make_unique<CWaterfallRef>(referenceProcess, firstSize, name, SignalType::Real,
                                                     ResultFactory::IsTachoProcessType(kind));
    auto result = std::make_unique<CRefWaterfall>(true, reference.get(), true);
    reference.release()->SetMyRefVect(result.get());
    return result;
}

} // namespace

std::unique_ptr<CResult> ResultFactory::create(const otype::ElementaryResultProcess& process, int waterfallDimension,
                                               const wstring& name)
{
    const auto kind = static_cast<std::uint32_t>(process.toInteger());
    const auto single = static_cast<std::uint32_t>(ResultMask::maskSingle(process).toInteger());
    const Row row = RowFor(process.toInteger(), waterfallDimension);
    switch (row.made) {
    case ResultClass::Scalar: return std::make_unique<CScalar>(kind, row.size, row.type, row.phasePossible);
    case ResultClass::RegVector: return std::make_unique<CRegVector>(kind, row.size, row.xnOctave, row.type, 0, true);
    case ResultClass::RefVector: return std::make_unique<CRefVector>(kind, row.size, row.type, 0);
    case ResultClass::DoubleRegVector: {
        const auto make = [&] { return new CRegVector(single, row.size, 0, row.type, 0, true); };
        return std::make_unique<CDoubleResult>(make(), make());
    }
    case ResultClass::DoubleRefVector: {
        const auto make = [&] { return new CRefVector(single, row.size, row.type, 0); };
        return std::make_unique<CDoubleResult>(make(), make());
    }
    case ResultClass::RefOrderTrack: return std::make_unique<CRefOrderTrack>(kind, row.size, kFactoryOrders, row.type);
    case ResultClass::CompressedVector: return std::make_unique<CCompressedVector>(kind, row.size, row.type);
    case ResultClass::CompressedScalar: return std::make_unique<CCompressedScalar>(kind, row.size, row.type);
    case ResultClass::GlobalLevel: return std::make_unique<CGlobalLevel>(kind, row.size, row.type);
    case ResultClass::SuiviOrdre: return std::make_unique<CSuiviOrdre>(kind, row.size, row.type);
    case ResultClass::BroadBand: return std::make_unique<CBroadBand>(kind, row.size, row.type);
    case ResultClass::Waterfall: return std::make_unique<CWaterfall>(true);
    case ResultClass::WtfOctave: return std::make_unique<CWtfOctave>(true);
    case ResultClass::RefWaterfall: return std::make_unique<CRefWaterfall>(true, nullptr, false);
    case ResultClass::ReferenceOfWaterfall: return WithReference(kind, name);
    case ResultClass::None: break; // a kind of another version of the library: a load passes over such a result
    }
    return nullptr;
}

bool ResultFactory::IsOwnClass(const CResult& result)
{
    const std::type_info* const own[] = {
        &typeid(CScalar),           &typeid(CVector),        &typeid(CRegVector),     &typeid(CRefVector),
        &typeid(CDoubleResult),     &typeid(CRegOrderTrack), &typeid(CRefOrderTrack), &typeid(CCompressedVector),
        &typeid(CCompressedScalar), &typeid(CGlobalLevel),   &typeid(CSuiviOrdre),    &typeid(CBroadBand),
        &typeid(CVectorRef),        &typeid(CWaterfallRef),  &typeid(CRefWaterfall),  &typeid(CWaterfall),
        &typeid(CWtfOctave)};
    return std::any_of(std::begin(own), std::end(own), [&](const auto* type) { return *type == typeid(result); });
}

bool ResultFactory::IsTachoProcessType(std::uint32_t process)
{
    return IsAmong(static_cast<int>(process), {42, 75, 88, 253, 267, 278, 296, 297});
}

} // namespace ZelmResult
