// Legal calls at the wrong time or with the oddest arguments, for every class of result: nothing breaks, and what such
// an object stores can be read.

#include "tests/builders/record_check.h"
#include "zelmresult/results/compressed_result.h"
#include "zelmresult/results/double_result.h"
#include "zelmresult/results/level_results.h"
#include "zelmresult/results/order_track.h"
#include "zelmresult/results/ref_vector.h"
#include "zelmresult/waterfalls/ref_waterfall.h"
#include "zelmresult/waterfalls/wtf_octave.h"

#include <algorithm>
#include <array>
#include <cfloat>
#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <typeinfo>

namespace ZelmResult {
namespace {

using namespace test;

constexpr std::int32_t kInts[] = {INT32_MIN, -1, 0, 1, 3, 4, 33, INT32_MAX};
constexpr float kFloats[] = {NAN, INFINITY, -INFINITY, FLT_MAX, -FLT_MAX, 1e-38F, -1.0F, 0.0F};

using Made = std::unique_ptr<CResult>;

template <class Result>
Made New()
{
    return std::make_unique<Result>();
}

constexpr Made (*kClasses[])() = {New<CScalar>,           New<CVector>,           New<CRegVector>,     New<CRefVector>,
                                  New<CCompressedVector>, New<CBroadBand>,        New<CGlobalLevel>,   New<CSuiviOrdre>,
                                  New<CRegOrderTrack>,    New<CCompressedScalar>, New<CRefOrderTrack>, New<CVectorRef>,
                                  New<CWaterfallRef>,     New<CRefWaterfall>,     New<CWaterfall>,     New<CWtfOctave>,
                                  New<CDoubleResult>};

Made Sized(Made result, std::int32_t size)
{
    result->SetComplexType(SignalType::Complex, true), result->SetSize(size);
    if (auto* waterfall = dynamic_cast<CWaterfall*>(result.get()); waterfall != nullptr) waterfall->SetZSize(2, true);
    return result;
}

// The bytes of a result, nothing when it refuses to be written.
std::vector<char> Stored(CResult& result)
{
    MemoryDisk disk;
    CMmioFile file(false, disk.backend());
    const bool written = file.Open(u"r", nullptr, OMMIO_WRITE | OMMIO_CREATE) && result.Write(&file);
    return file.Close() && written ? disk[u"r"] : std::vector<char>();
}

// What an object stores is taken back, and stored again from then on as it is.
void ExpectStored(Made (*make)(), CResult& result)
{
    if (result.GetSize() < 0 || typeid(result) == typeid(CDoubleResult)) return;
    std::vector<char> bytes = Stored(result);
    ASSERT_FALSE(bytes.empty());
    for (int turn = 0; turn < 2; ++turn) {
        const Made read = make();
        if (CReferencedAxis* axis = read->GetReferencedAxis(); axis != nullptr) // which the block doesn't tell
            axis->SetIsWaterfall(result.GetReferencedAxis()->IsWaterfall());
        ASSERT_TRUE(readFrom(bytes, [&](CMmioFile& file) { return read->Read(&file); }));
        const std::vector<char> again = Stored(*read);
        ASSERT_TRUE(!again.empty() && (turn == 0 || again == bytes));
        bytes = again;
    }
}

// Every operation that all results have, but those that change sizes.
void Call(CResult& result)
{
    CGrandeur quantity;
    for (CGrandeur* each : {&quantity, static_cast<CGrandeur*>(nullptr)}) {
        std::map<CGrandeur*, int> counts;
        result.SetMagnitude(each), result.SetXMagnitude(each);
        result.AddInvolvedGrandeur(counts), result.AddReferredGrandeur(counts);
        result.ReplaceGrandeur(nullptr, &quantity);
        EXPECT_FALSE(counts.contains(nullptr) || (each == nullptr && result.GetXMagnitude() != nullptr));
    }
    for (const float value : kFloats) {
        result.SetXMin(value), result.SetXMax(value), result.SetYMin(value), result.SetYMax(value);
        result.SetAbsPrecisionX(value), result.SetAbsPrecisionY(value), result.SetRelPrecisionY(value);
        EXPECT_FALSE(result.GetAbsPrecisionY() < 1e-30F || result.GetRelPrecisionY() < 1e-30F);
        (void)CResult::ComputeAbsPrec(value);
    }
    const std::array<float, CResult::kStartRevPositions> turns{1, -1, 2};
    for (const std::int32_t n : kInts) {
        result.SetStartRevPosTab(turns.data(), n), result.CopyStartRevPosTab(n < 4, turns.data(), n);
        const auto bits = static_cast<std::uint32_t>(n);
        result.SetXnOctave(bits), result.SetProcessType(bits), result.SetWtfProcessType(bits);
        EXPECT_TRUE(!result.IsOfType(0) && result.IsOfType(1) && result.resultProcess().second().toInteger() == n);
    }
    result.setName(wstring(70000, u'n')), result.setName({});
    EXPECT_EQ(result.name(), u"");
    result = static_cast<CResult*>(nullptr);
}

TEST(UnluckyResults, EveryClassInEveryState)
{
    for (std::size_t i = 0; i < std::size(kClasses); ++i) {
        const auto make = kClasses[i];
        std::vector<Made> states;
        for (const std::int32_t size : {INT32_MIN, 0, 3}) {
            states.push_back(Sized(make(), size));
            states.push_back(Sized(Sized(make(), 3), size)); // emptied
            states.emplace_back(states.back()->GetCopy());
            (void)readFrom({}, [&](CMmioFile& file) { return states[0]->Read(&file); });
        }
        for (const auto other : kClasses) { // an object of one class that was given another's fields
            states.push_back(Sized(make(), 3));
            *states.back() = Sized(other(), 3).get();
        }
        for (const Made& state : states) {
            Call(*state), ExpectStored(make, *state);
            for (const std::uint32_t type : {1U, 3U, 4U, 6U, 0xFFFFFFFFU}) {
                state->SetSize(type % 2 == 0 ? -1 : 3), state->SetComplexType(SignalType(type), type < 3);
                for (const std::int32_t size : {INT32_MIN, 0, 4}) {
                    state->AdjustSize(size); // the arrays stay as they were
                    const Made copy(state->GetCopy());
                    Call(*copy), ExpectStored(make, *copy), ExpectStored(make, *state);
                    if (HasFatalFailure()) FAIL() << "class " << i << ", type " << type << ", size " << size;
                }
            }
        }
    }
}

TEST(UnluckyResults, HostileSizesAskForNothing)
{
    constexpr std::ptrdiff_t sizeInBase = 18; // behind version, quantity and three numbers
    for (const auto make : {New<CVector>, New<CRegVector>, New<CRefVector>, New<CVectorRef>, New<CWaterfallRef>})
        for (const std::uint32_t type : {0U, 1U, 3U, 4U, 5U, 7U})
            for (const std::int32_t size : {INT32_MIN, -1, INT32_MAX}) {
                const Made sample = make(), read = make();
                const CResult& made = *sample;
                if ((type == 4 || type == 5) && typeid(made) == typeid(CVector)) continue; // holds no values then
                sample->SetComplexType(SignalType(type), false);
                std::vector<char> bytes = Stored(*sample);
                const Bytes base = baseBlockOf<CResult>(*sample);
                const auto at = std::search(bytes.begin(), bytes.end(), base.data().begin(), base.data().end());
                std::memcpy(&*at + sizeInBase, &size, sizeof size);
                EXPECT_FALSE(readFrom(bytes, reading(*read))) << typeid(made).name() << type << " of " << size;
            }
}

// A target of three values that shows what was written behind it.
template <class Copy>
void ExpectCopies(Copy copy)
{
    for (const std::int32_t n : {INT32_MIN, -1, 0, 3}) {
        std::array<float, 4> target{7, 7, 7, 7};
        copy(target.data(), n);
        EXPECT_TRUE(target[3] == 7 && (n > 0 ? target[2] == 0 : target[0] == 7)) << n;
    }
}

TEST(UnluckyResults, ArraysThatAreNotThere)
{
    for (const std::int32_t size : {INT32_MIN, -1, 0, 2, 3}) {
        CRegVector vector(18, size, 1, SignalType::Octave, 0, true);
        CCompressedVector envelope(25, size, SignalType::Compressed);
        CCompressedScalar scalar(270, size, SignalType::Compressed);
        CRefVector along(16, size, SignalType::Complex, 0);
        const CRefOrderTrack track(22, size, size, SignalType::Complex);
        for (int state = 0; state < 3; ++state) { // as made, shorter than they tell, without arrays
            ExpectCopies([&](float* out, std::int32_t n) { vector.GetRealValues(out, n); });
            ExpectCopies([&](float* out, std::int32_t n) { envelope.GetDownValues(out, n); });
            ExpectCopies([&](float* out, std::int32_t n) { track.GetImValues(out, n, 1); });
            for (const std::int32_t number : {-1, 0, 6, INT32_MAX}) {
                const auto table = static_cast<OffsetScalarArray>(number);
                ExpectCopies([&](float* out, std::int32_t n) { scalar.GetScalarValues(table, out, n); });
                for (const std::int32_t n : kInts) EXPECT_EQ(scalar.GetScalar(table, n), 0.0F);
                EXPECT_EQ(scalar.GetComputedScalar(table), 0.0F);
            }
            for (const std::int32_t points : kInts) {
                envelope.SetCompSize(points), scalar.SetCompSize(points), scalar.SetWriteSize(points);
                CCompressedVector wider(25, 3, SignalType::Compressed);
                CCompressedScalar other(270, 3, SignalType::Compressed);
                wider.AdjustSize(envelope.GetSize()), other.AdjustSize(scalar.GetSize());
                envelope.TransferResult(&wider), wider.TransferResult(&envelope), envelope.TransferResult(nullptr);
                other.CopyFrom(&scalar), scalar.CopyFrom(&other), scalar.CopyFrom(nullptr);
                const std::array<float, 24> sixes{};
                for (const std::int32_t n : {INT32_MIN, -1, 0, 5, 6, 23, 24})
                    if (state == 0) scalar.CopyCompressedScalar(sixes.data(), n, points, n % 2 == 0);
                for (const float odd : kFloats) {
                    scalar.SetSamplingFrequency(odd);
                    EXPECT_FALSE(scalar.ComputeScalar(odd, odd, odd));
                }
                scalar.SetSamplingFrequency(0);
                EXPECT_EQ(along.AddNewValue(1, 1, points) == -1, size < 1 || state == 2);
            }
            for (CVector* each : {static_cast<CVector*>(&vector), static_cast<CVector*>(&along),
                                  static_cast<CVector*>(&envelope), static_cast<CVector*>(&scalar)})
                state == 0 ? each->AdjustSize(40) : each->ReInitPtrTab();
        }
    }
}

} // namespace
} // namespace ZelmResult
