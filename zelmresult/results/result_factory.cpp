// The one source that knows every class of result.

#include "zelmresult/results/result_factory.h"

#include "zelmresult/results/compressed_result.h"
#include "zelmresult/results/double_result.h"
#include "zelmresult/results/kinds.h"
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
#include <iterator>
#include <typeinfo>

namespace ZelmResult {

namespace {

constexpr std::int32_t kFactoryOrders = 9; // of an order track

// A vector along a waterfall and its reference, which point at each other.
std::unique_ptr<CResult> WithReference(const wstring& name, bool isTacho)
{
    constexpr std::int32_t firstSize = 100;
    auto reference =
        std::make_unique<CWaterfallRef>(ResultKind::kReference, firstSize, name, SignalType::Real, isTacho);
    auto result = std::make_unique<CRefWaterfall>(true, reference.get(), true);
    reference.release()->SetMyRefVect(result.get());
    return result;
}

template <class Half, class... Arguments>
std::unique_ptr<CResult> Pair(const Arguments&... arguments)
{
    return std::make_unique<CDoubleResult>(new Half(arguments...), new Half(arguments...));
}

} // namespace

std::unique_ptr<CResult> ResultFactory::create(const otype::ElementaryResultProcess& process, int waterfallDimension,
                                               const wstring& name)
{
    const ResultKind& row = ResultKind::Of(process);
    const auto [made, size, type, octaves] = row.empty;
    const auto kind = static_cast<std::uint32_t>(process.toInteger());
    const auto single = static_cast<std::uint32_t>(ResultMask::maskSingle(process).toInteger());
    const std::uint32_t xnOctave = octaves == AvgOctaveTarget::None ? 0 : 1;
    switch (row.ClassAt(waterfallDimension)) {
    case ResultClass::Scalar: return std::make_unique<CScalar>(kind, size, type, row.Has(ResultKind::PhasePossible));
    case ResultClass::RegVector: return std::make_unique<CRegVector>(kind, size, xnOctave, type, 0, true);
    case ResultClass::RefVector: return std::make_unique<CRefVector>(kind, size, type, 0);
    case ResultClass::DoubleRegVector: return Pair<CRegVector>(single, size, xnOctave, type, 0U, true);
    case ResultClass::DoubleRefVector: return Pair<CRefVector>(single, size, type, 0U);
    case ResultClass::RefOrderTrack: return std::make_unique<CRefOrderTrack>(kind, size, kFactoryOrders, type);
    case ResultClass::CompressedVector: return std::make_unique<CCompressedVector>(kind, size, type);
    case ResultClass::CompressedScalar: return std::make_unique<CCompressedScalar>(kind, size, type);
    case ResultClass::GlobalLevel: return std::make_unique<CGlobalLevel>(kind, size, type);
    case ResultClass::SuiviOrdre: return std::make_unique<CSuiviOrdre>(kind, size, type);
    case ResultClass::BroadBand: return std::make_unique<CBroadBand>(kind, size, type);
    case ResultClass::Waterfall: return std::make_unique<CWaterfall>(true);
    case ResultClass::WtfOctave: return std::make_unique<CWtfOctave>(true);
    case ResultClass::RefWaterfall: return std::make_unique<CRefWaterfall>(true, nullptr, false);
    case ResultClass::RefWaterfallWithReference: return WithReference(name, row.Has(ResultKind::Tacho));
    case ResultClass::None: break; // a kind of another version of the library: loads skip such a result
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

bool ResultFactory::IsTachoProcessType(std::uint32_t process) { return ResultKind::Of(process).Has(ResultKind::Tacho); }

} // namespace ZelmResult
