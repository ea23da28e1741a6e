// Legal calls at the wrong time or with the oddest arguments, for buffers, waterfalls, references and their lists.

#include "tests/builders/record_check.h"
#include "zelmresult/results/order_track.h"
#include "zelmresult/waterfalls/list_vector_ref.h"
#include "zelmresult/waterfalls/octave_tools.h"
#include "zelmresult/waterfalls/ref_waterfall.h"
#include "zelmresult/waterfalls/waterfall_buffer_disk.h"
#include "zelmresult/waterfalls/waterfall_buffer_ram.h"
#include "zelmresult/waterfalls/weighting_window.h"
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

template <class Buffer>
void CallBuffer()
{
    Buffer buffer;
    Buffer other;
    const auto call = [&] {
        for (const std::int32_t a : kInts) {
            const bool hasRaw = a >= 0 && a < buffer.GetZSize();
            EXPECT_EQ(buffer.GetRawSlice(a).HasSlice(), hasRaw) << a;
            EXPECT_EQ(buffer.GetRawSliceCounter(a), 0) << "after the handler went";
            for (const std::int32_t b : kInts) {
                buffer.SetSortedIndex(a, b);
                const bool shows = a >= 0 && a < buffer.GetZSparseSize() && b >= 0 && b < buffer.GetZSize();
                EXPECT_EQ(buffer.GetSortedSlice(a).HasSlice(), shows);
                buffer.SwapSortedIndex(a, b), buffer.SwapRawSlices(a, b), buffer.CopySingleRawSlice(a, b);
                buffer.CopySingleRawSliceFrom(other, a, b), other.CopySingleRawSliceFrom(buffer, a, b);
                buffer.SetRawSinglePoint(a, b, 5), buffer.SetSortedSinglePoint(a, b, 5);
                if (!hasRaw || b < 0 || b >= buffer.GetRealSize()) EXPECT_EQ(buffer.GetRawSinglePoint(a, b), 0.0F);
                (void)buffer.GetSortedSinglePoint(a, b), buffer.ClearSortedIndexes(a, b);
            }
        }
        buffer.CopyWaterfallBufferFrom(other), other.CopyWaterfallBufferFrom(buffer);
    };
    call();
    for (const auto& [points, slices] : {std::pair(2, 3), std::pair(0, 3), std::pair(1, 1),
                                         std::pair(INT32_MAX, INT32_MAX), std::pair(INT32_MIN, 1), std::pair(3, 2)}) {
        buffer.Allocate(points, slices);
        EXPECT_EQ(buffer.IsAllocated(), points > 0 && points < 10);
        call();
        for (const std::int32_t slots : {INT32_MIN, 5, INT32_MAX}) {
            buffer.SetZSparseSize(slots);
            EXPECT_EQ(buffer.GetZSparseSize(), std::max(slots, buffer.GetZSize()));
            call();
        }
        other.Allocate(2, 3);
    }
    buffer.FreeMemory(), buffer.FreeMemory();
    call();
}

TEST(UnluckyBuffers, EveryVariant)
{
    CallBuffer<CWaterfallBufferRam>();
    CallBuffer<CWaterfallBufferRamFlat>();
    CallBuffer<CWaterfallBufferDisk>();
    CallBuffer<CWaterfallBufferAllZeroes>();
    CWaterfallBufferArray none;
    none.Allocate(3, 3), none.SetZSparseSize(5), none.ClearSortedIndexMap(), none.SwapSortedIndex(-1, INT32_MAX);
    CWaterfallBufferFactory::FillAndAllocateArray(none, INT32_MIN, 3, 3);
    EXPECT_TRUE(none.IsEmpty() && none.GetRealSize() == 0 && !none.HasMapToRawIndex(0));
}

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
            if (a < 0) EXPECT_EQ(octave->GetGlobalLevelByIndex(a, b) + octave->GetGlobalLevelPondByIndex(a, b), 0);
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
    EXPECT_FALSE(waterfall.HasLostSlices());
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
        const bool updated = waterfall.UpdateDataTab();
        EXPECT_TRUE(updated || filled > 0);
        Call(waterfall);
    }
}

TEST(UnluckyWaterfalls, InEveryState)
{
    for (const bool isOctave : {false, true})
        for (const std::int32_t slices : {INT32_MIN, 0, 1, 3})
            for (const std::uint32_t type : {0U, 1U, 3U, 4U, 5U, 6U, 0xFFFFFFFFU}) {
                SCOPED_TRACE(std::to_string(slices) + " slices of type " + std::to_string(type));
                const auto make = [&](std::int32_t size) -> std::unique_ptr<CWaterfall> {
                    if (isOctave) return std::make_unique<CWtfOctave>(18, 20, size, slices, nullptr, SignalType(type));
                    return std::make_unique<CWaterfall>(2, 20, size, slices, nullptr, SignalType(type), size != 0);
                };
                for (const std::int32_t size : {INT32_MIN, 0, 2}) {
                    const auto waterfall = make(size);
                    (void)waterfall->AllocateTabBlockNumber(size);
                    Steps(*waterfall);
                    const std::unique_ptr<CResult> copy(waterfall->GetCopy());
                    Steps(dynamic_cast<CWaterfall&>(*copy));
                    waterfall->ClearTab(), Call(*waterfall), waterfall->Clean(), Steps(*waterfall);
                    waterfall->SetZSize(INT32_MAX, true), Call(*waterfall); // no slices, or more than there is memory
                    waterfall->SetZSize(0, false), waterfall->SetSize(INT32_MAX - 1);
                    waterfall->SetSize(3), waterfall->SetZSize(3, true), Steps(*waterfall);
                    waterfall->AdjustSize(9), Steps(*waterfall);
                    CRefVector vector(16, 3, SignalType::Real, 0);
                    for (CResult* other : {static_cast<CResult*>(&vector), copy.get()})
                        *waterfall = other, Steps(*waterfall);
                    CWaterfall plain(2, 20, 2, 3, nullptr, SignalType::Real, true); // also into octaves
                    *waterfall = static_cast<CResult*>(&plain), Steps(*waterfall);
                    waterfall->FreeRefList(), waterfall->FreeRefList(), Steps(*waterfall);
                }
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
        axis.SetBlocNumber(point, point);
        EXPECT_EQ(axis.GetBlocNumber(point) == -1, axis.GetBlocNumberPtr(point) == nullptr || point == -1);
        axis.SetFilled(point);
        EXPECT_FALSE(axis.CopyBlocNumber(static_cast<const std::int32_t*>(nullptr), point));
    }
    EXPECT_FALSE(axis.CopyBlocNumber(kInts, 0) || axis.CopyBlocNumber(kInts, std::uint64_t{1} << 32U));
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
        for (CReferencedAxis* axis :
             {static_cast<CReferencedAxis*>(&vector), static_cast<CReferencedAxis*>(&track),
              static_cast<CReferencedAxis*>(&waterfall), static_cast<CReferencedAxis*>(series.get())})
            if (axis != nullptr) CallAxis(*axis);
        Call(waterfall);
        for (CResult* result :
             {static_cast<CResult*>(&vector), static_cast<CResult*>(&track), static_cast<CResult*>(series.get())}) {
            if (result == nullptr) continue;
            result->SetXMin(1), result->SetXMax(2), result->SetXMagnitude(nullptr), result->SetSize(5);
            if (way != 3 || result == series.get()) EXPECT_EQ(result->GetXMin(), result->GetXMax());
            EXPECT_FALSE(written(*result).empty());
            const std::unique_ptr<CResult> copy(result->GetCopy());
            copy->SetSize(2);
        }
        const CListVectorRef empty(false);
        vector.CopyReference(empty, 5, true), track.CopyVectorRef(&track), vector.AddVectorRef(nullptr);
        vector.DeleteAllRef();
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
                        (void)series.GetValueByBlocForConversion(block, value);
                        (void)reference.AddUnsortedValue(1, block), (void)reference.AddUnsortedBlockNumber(block);
                    }
                    for (const std::int32_t filled : {-1, 0, 2, INT32_MAX}) {
                        series.SetFilled(filled);
                        (void)series.UpdateTabValue();
                        EXPECT_TRUE(series.GetSize() == size || series.GetSize() > 0);
                        series.SetFilled(std::min(filled, 3)), (void)reference.UpdateTabRefValue();
                    }
                    const std::unique_ptr<CResult> copy(series.GetCopy());
                    const std::unique_ptr<CResult> other(reference.GetCopy());
                    EXPECT_EQ(dynamic_cast<CRefWaterfall&>(*copy).GetMyVecteurReference(), nullptr);
                    series.SetSize(size);
                    if (turn == 0) series.Clean(), reference.Clean();
                    if (turn == 1) series.ReInitPtrTab();
                    series.SetMyVecteurReference(u"", nullptr), series.UpdateVecteurReferencePtr();
                }
            }
}

TEST(UnluckyReferences, Lists)
{
    CListVectorRef list(true);
    for (int state = 0; state < 3; ++state) { // empty, two references, emptied
        if (state == 1) list.AddVectorRef(new CVectorRef), list.AddVectorRef(new CWaterfallRef);
        if (state == 2) list.Destroy();
        CListVectorRef::Position place = list.GetHeadPosition();
        for (const std::int32_t i : kInts) EXPECT_EQ(list.GetRef(i) != nullptr, i >= 0 && i < list.GetCount());
        for (int i = 0; i < 5; ++i) EXPECT_EQ(CListVectorRef::GetNext(place) != nullptr, i < list.GetCount());
        CListVectorRef::Position nowhere;
        EXPECT_EQ(CListVectorRef::GetNext(nowhere), nullptr);
        CVectorRef* chosen = nullptr;
        CListVectorRef other(true);
        other.CopyVectorRef(nullptr, nullptr, chosen), other.CopyVectorRef(&list, nullptr, chosen);
        other.DuplicateAllReference(list), other.CopyPrecisionFrom(list), list.CopyPrecisionFrom(other);
        other.Free(nullptr), other.UnRegister(nullptr);
        EXPECT_FALSE(other.RemoveVectorRef(static_cast<const CVectorRef*>(nullptr)) || other.RemoveVectorRef(u"none"));
        for (const std::int32_t size : {3, INT32_MIN, 0}) other.SetSize(size), list.SetSize(size);
        std::int32_t index = 7;
        for (const std::int32_t size : {INT32_MIN, 2, 1000}) { // in a file that can't be written
            EXPECT_EQ(readFrom({}, [&](CMmioFile& file) { return list.Write(&file, nullptr, index, size); }),
                      list.IsEmpty());
            EXPECT_EQ(readFrom({}, [&](CMmioFile& file) { return list.Write(&file, size); }), list.IsEmpty());
        }
        EXPECT_EQ(index, 7);
        other.DeleteAllRef();
    }
}

TEST(UnluckyTools, OctavesAndWindows)
{
    for (const std::uint32_t xn : {0U, 3U, 4U, UINT32_MAX})
        for (const float f : kFloats)
            for (const std::int16_t index : {std::int16_t(INT16_MIN), std::int16_t(0), std::int16_t(INT16_MAX)})
                for (const bool flag : {false, true}) {
                    const float result = OctaveTools::GetOctaveFrequence(f, index, xn, flag, !flag);
                    EXPECT_FALSE(f > 0 && result < 0);
                    (void)OctaveTools::ConvertOctaveCentralFreq(f, xn);
                }
    for (const int number : {INT32_MIN, -2, -1, 0, 1, 765, 766, INT32_MAX}) {
        const WeightingWindow window(number);
        EXPECT_EQ(window.toInt(), number == -1 || number == 765 ? number : 0);
        EXPECT_EQ(WeightingWindow(window.toSubmodule()), window);
        EXPECT_EQ(WeightingWindow::isWindowIdn(window.toIdn()), number == 765);
    }
}

} // namespace
} // namespace ZelmResult
