// Legal calls at the wrong time or with the oddest arguments, for buffers, waterfalls, references and their lists.

#include "tests/builders/record_check.h"
#include "zelmresult/results/order_track.h"
#include "zelmresult/waterfalls/list_vector_ref.h"
#include "zelmresult/waterfalls/ref_waterfall.h"
#include "zelmresult/waterfalls/wtf_octave.h"

#include <array>
#include <cfloat>
#include <cmath>
#include <gtest/gtest.h>

namespace ZelmResult {
namespace {

using namespace test;

constexpr std::int32_t kInts[] = {INT32_MIN, INT32_MIN + 1, -1, 0, 1, 2, 3, 4, INT32_MAX - 1, INT32_MAX};
constexpr float kFloats[] = {NAN, INFINITY, -INFINITY, FLT_MAX, -FLT_MAX, 1e-45F, -1.0F, 0.0F, 7.0F};

// What every waterfall answers, whatever happened to it.
void Call(CWaterfall& waterfall)
{
    auto* octave = dynamic_cast<CWtfOctave*>(&waterfall);
    std::array<float, 5> values{};
    for (const std::int32_t a : kInts) {
        for (const std::int32_t b : kInts) {
            const auto slice = waterfall.GetTabData(a, b);
            values.fill(9);
            waterfall.GetValues(a, b, values.data(), 4), waterfall.GetValues(a, b, values.data(), INT32_MIN);
            EXPECT_TRUE(values[4] == 9 && (slice.HasSlice() || values[0] == 0));
            EXPECT_EQ(waterfall.GetTabPoint(a, b, 7), 0.0F);
            waterfall.DoSpectrumExchange(a, b);
            std::int32_t cursor = b;
            if (waterfall.CReferencedAxis::GetFilled() < 100) (void)waterfall.GetBlockNumberFromWbArray(a, cursor);
            if (octave == nullptr) continue;
            octave->SetGlobalLevelByIndex(a, b, 1), octave->SetGlobalLevelPondByIndex(a, b, 1);
            EXPECT_TRUE(a >= 0 || octave->GetGlobalLevelByIndex(a, b) + octave->GetGlobalLevelPondByIndex(a, b) == 0);
            (void)octave->GetGlobLevel(a, AvgOctaveTarget(b)), (void)octave->GetGlobalLevelPond(a, AvgOctaveTarget(b));
        }
        bool useTable = a > 0;
        for (CVector* shown : {waterfall.GetTempVector(a), waterfall.GetTempVectorFromDimData(a),
                               waterfall.GetTempVector_Verrue(a, useTable)})
            for (std::int32_t i = 0; shown != nullptr && shown->GetRealValue() != nullptr && i < shown->GetSize(); ++i)
                shown->GetRealValue()[i] += 1;
        EXPECT_LT(waterfall.GetIndexByBloc(a), std::max(waterfall.GetZSize(), 1));
        waterfall.SetXnOctave(static_cast<std::uint32_t>(a));
    }
    CGrandeur quantity;
    waterfall.SetMagnitude(&quantity), waterfall.SetXMagnitude(&quantity), waterfall.SetYMax(NAN);
    waterfall.SetMagnitude(nullptr), waterfall.SetXMagnitude(nullptr), waterfall.SetXMin(-INFINITY);
    waterfall.SetReference(u"", nullptr, nullptr), waterfall.SetReference(u"x", &quantity, nullptr);
    EXPECT_TRUE(waterfall.GetChosenReference() != nullptr || waterfall.GetZMax() + waterfall.GetPrecisionZ() == 0);
}

void Steps(CWaterfall& waterfall)
{
    Call(waterfall);
    for (const std::int32_t block : kInts)
        for (const std::int32_t raw : {-1, 0, INT32_MIN, INT32_MAX}) {
            const std::int32_t place = waterfall.AddBlock(block, raw);
            EXPECT_TRUE(place < std::max(waterfall.GetZSize(), 0) && place >= -1);
            EXPECT_TRUE(waterfall.AddBlockByIndex(block) == -1 || waterfall.AddBlockByIndex(block) == block);
            waterfall.SetBlocNumber(block, raw);
        }
    for (const std::int32_t filled : {INT32_MIN, 0, 1, 3, 50}) { // more than there are, too
        waterfall.SetFilled(filled);
        Call(waterfall);
        EXPECT_TRUE(waterfall.UpdateDataTab() || filled > 0);
        Call(waterfall);
    }
}

class UnluckyWaterfalls : public ::testing::TestWithParam<EStrategy> {
protected:
    UnluckyWaterfalls() : m_former(CWaterfallBufferFactory::SetStrategy(GetParam())) {}
    ~UnluckyWaterfalls() override { CWaterfallBufferFactory::SetStrategy(m_former); }

private:
    EStrategy m_former;
};

INSTANTIATE_TEST_SUITE_P(Everywhere, UnluckyWaterfalls,
                         ::testing::Values(EStrategy::StrategyAuto, EStrategy::StrategyDisk,
                                           EStrategy::StrategyAllZeroes));

TEST_P(UnluckyWaterfalls, InEveryState)
{
    for (const bool isOctave : {false, true})
        for (const std::int32_t slices : {INT32_MIN, 0, 1, 3})
            for (const std::uint32_t type : {0U, 1U, 3U, 4U, 0xFFFFFFFFU})
                for (const std::int32_t size : {INT32_MIN, 0, 2}) {
                    SCOPED_TRACE(std::to_string(slices) + " slices of type " + std::to_string(type));
                    std::unique_ptr<CWaterfall> waterfall;
                    if (isOctave)
                        waterfall = std::make_unique<CWtfOctave>(18, 20, size, slices, nullptr, SignalType(type));
                    else
                        waterfall = std::make_unique<CWaterfall>(2, 20, size, slices, nullptr, SignalType(type), size);
                    (void)waterfall->AllocateTabBlockNumber(size);
                    Steps(*waterfall);
                    const std::unique_ptr<CResult> copy(waterfall->GetCopy());
                    Steps(dynamic_cast<CWaterfall&>(*copy));
                    waterfall->ClearTab(), Call(*waterfall), waterfall->Clean(), Steps(*waterfall);
                    waterfall->SetZSize(0, false), waterfall->SetSize(INT32_MAX - 1);
                    if (GetParam() == EStrategy::StrategyAuto) waterfall->SetZSize(INT32_MAX, true); // no such memory
                    EXPECT_EQ(waterfall->HasLostSlices(),
                              GetParam() == EStrategy::StrategyAuto && CWaterfall::GetComplexDim(SignalType(type)) > 0);
                    Call(*waterfall), waterfall->SetZSize(0, false);
                    waterfall->SetSize(3), waterfall->SetZSize(3, true), Steps(*waterfall);
                    waterfall->AdjustSize(9), Steps(*waterfall);
                    CRefVector vector(16, 3, SignalType::Real, 0);
                    CWaterfall plain(2, 20, 2, 3, nullptr, SignalType::Real, true); // also into octaves
                    for (CResult* other : {static_cast<CResult*>(&vector), copy.get(), static_cast<CResult*>(&plain)})
                        *waterfall = other, Steps(*waterfall);
                    waterfall->FreeRefList(), waterfall->FreeRefList(), Steps(*waterfall);
                }
}

// The operations of an axis on references that may be gone.
void CallAxis(CReferencedAxis& axis)
{
    const bool hasList = axis.GetReferences() != nullptr;
    EXPECT_EQ(axis.GetReferencesList() != nullptr, hasList);
    EXPECT_TRUE(hasList || axis.GetChosenReference() == nullptr);
    CVectorRef stranger(23, 2, u"Time", SignalType::Real);
    for (const wstring& name : {wstring(), wstring(u"rpm"), wstring(70000, u'r')}) {
        float* values = nullptr;
        axis.GetAnyRefValue(values, name, nullptr);
        EXPECT_TRUE(hasList || (values == nullptr && axis.GetReference(name, nullptr) == nullptr));
        axis.SetReference(name, nullptr, nullptr), axis.SetReference(name, nullptr, &stranger);
    }
    axis.SetChosenReference(&stranger), axis.SetChosenReference(axis.GetChosenReference());
    EXPECT_NE(axis.GetChosenReference(), &stranger);
    axis.RemoveVectorRef(&stranger), axis.RemoveVectorRef(nullptr), axis.ReplaceGrandeur(nullptr, nullptr);
    for (const std::int32_t point : kInts) {
        axis.SetBlocNumber(point, point), axis.SetFilled(point);
        EXPECT_EQ(axis.GetBlocNumber(point) == -1, axis.GetBlocNumberPtr(point) == nullptr || point == -1);
        EXPECT_FALSE(axis.CopyBlocNumber(static_cast<const std::int32_t*>(nullptr), point));
    }
    const std::unique_ptr<CReferencedAxis> copy(axis.GetRefAxisCopy());
    const CReferencedAxis flat(axis);
    EXPECT_EQ(flat.GetReferences(), axis.GetReferences());
    axis.Clean(), axis = static_cast<CReferencedAxis*>(nullptr), axis = copy.get();
}

TEST(UnluckyReferences, ThatGoAwayUnderTheirUsers)
{
    for (int way = 0; way < 7; ++way) {
        SCOPED_TRACE(way);
        auto* list = new CListVectorRef(way == 0);
        auto* reference = new CWaterfallRef(23, 3, u"rpm", SignalType::Real, true);
        list->AddVectorRef(reference), list->AddVectorRef(reference), list->AddVectorRef(nullptr);
        CRefVector vector(16, 3, SignalType::Real, list, 0);
        CRefOrderTrack track(22, 3, 2, SignalType::Real);
        track.SetReferenceList(list), track.SetChosenReference(reference);
        auto series = std::make_unique<CRefWaterfall>(10, 3, SignalType::Real, list, reference, 20, true, true);
        reference->SetMyRefVect(series.get());
        CWaterfall waterfall(2, 20, 2, 3, list, SignalType::Real, true);
        CallAxis(vector), CallAxis(track), CallAxis(waterfall);
        if (way == 0) delete list;
        if (way == 1) delete reference;
        if (way == 2) list->RemoveAll(), delete reference;
        if (way == 3) vector.SetReferenceList(nullptr), track.SetReferenceList(nullptr);
        if (way == 4) (void)series.release(), vector.DeleteAllRef();
        if (way == 5) delete reference, waterfall.FreeRefList();
        if (way == 6) delete list, track.SetReferenceList(new CListVectorRef(false));
        CallAxis(waterfall), Call(waterfall);
        for (CResult* result :
             {static_cast<CResult*>(&vector), static_cast<CResult*>(&track), static_cast<CResult*>(series.get())}) {
            if (result == nullptr) continue;
            CallAxis(*result->GetReferencedAxis());
            result->SetXMin(1), result->SetXMax(2), result->SetXMagnitude(nullptr), result->SetSize(5);
            EXPECT_EQ(result->GetXMax() == 2, result->GetReferencedAxis()->GetChosenReference() != nullptr);
            EXPECT_FALSE(written(*result).empty());
        }
        track.CopyVectorRef(&track), vector.AddVectorRef(nullptr), vector.DeleteAllRef();
    }
}

TEST(UnluckyReferences, SeriesWithAndWithoutOneAnother)
{
    for (const std::uint32_t wtf : {20U, 128U}) // 128 slides
        for (const std::int32_t size : {INT32_MIN, 0, 1, 3})
            for (const bool shares : {false, true}) {
                CWaterfallRef reference(23, size, u"rpm", SignalType::Real, true);
                CRefWaterfall series(10, size, SignalType::Real, nullptr, shares ? &reference : nullptr, wtf, true,
                                     true);
                if (shares) reference.SetMyRefVect(&series), reference.SetMyRefVectTemp(&series);
                for (int turn = 0; turn < 3; ++turn) {
                    float value = 0;
                    for (const std::int32_t block : kInts) {
                        for (const float each : kFloats) {
                            const std::int32_t place = series.AddRefValue(each, block, turn == 1);
                            EXPECT_TRUE(place >= -1 && place < std::max(size, 1));
                            (void)reference.InsertValueInSortedTabs(each, block);
                            (void)reference.RemoveValueInSortedTabs(block);
                        }
                        EXPECT_LT(reference.GetValueByBloc(block, value), std::max(size, 1));
                        EXPECT_LT(series.GetValueByBloc(block, value), std::max(size, 1));
                        (void)reference.GetValueByBlocForConversion(block, value);
                        (void)reference.AddUnsortedValue(1, block), (void)reference.AddUnsortedBlockNumber(block);
                    }
                    for (const std::int32_t filled : {-1, 0, 2, INT32_MAX}) {
                        series.SetFilled(filled), (void)series.UpdateTabValue();
                        series.SetFilled(std::min(filled, 3)), (void)reference.UpdateTabRefValue();
                    }
                    series.SetSize(size);
                    if (turn == 0) series.Clean(), reference.Clean();
                    if (turn == 1) series.ReInitPtrTab();
                    series.SetMyVecteurReference(u"", nullptr), series.UpdateVecteurReferencePtr();
                }
            }
}

} // namespace
} // namespace ZelmResult
