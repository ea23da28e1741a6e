#include "zelmresult/results/order_track.h"

#include "tests/builders/record_check.h"
#include "zelmresult/waterfalls/list_vector_ref.h"
#include "zelmresult/waterfalls/vector_ref.h"

#include <climits>
#include <gtest/gtest.h>

namespace ZelmResult {
namespace {

using namespace test;
using Values = std::vector<float>;

Values Real(const COrderTracking& track, std::int32_t n)
{
    Values values(static_cast<std::size_t>(n), -1);
    track.GetRealValues(values.data(), n, 1);
    return values;
}

// Two orders of three points.
void Fill(COrderTracking& track)
{
    track.SetTables(2, 3, Values{1, 2, 3, 4, 5, 6}.data(), nullptr);
    track.SetYMin(-7);
    track.SetYMax(8.9F);
}

Bytes StoredTrack(COrderTracking& track)
{
    return Bytes{}
        .u16(1, "version")
        .append(baseBlockOf<CResult>(track), "base")
        .i32(2, "NbOrder")
        .i32(3, "Filled")
        .f32s({1, 2, 3, 4, 5, 6}, "real table")
        .f32s({0, 0, 0, 0, 0, 0}, "imaginary table")
        .f32s({8.9F, -7, 8.9F, -7}, "limits");
}

TEST(RegOrderTrack, StoredAndCopied)
{
    CRegOrderTrack track(22, 4, 5, 6, 7, static_cast<SignalType>(3));
    EXPECT_EQ(track.GetNbOrder(), 3);
    EXPECT_EQ(track.GetXMax(), 0);
    EXPECT_EQ(track.GetXnOctave(), 0);
    EXPECT_EQ(Real(track, 13), Values(13, 0.0F));
    static_cast<CResult&>(track).SetXMin(50);
    EXPECT_EQ(track.GetXMin(), 0) << "a slot that does nothing";
    EXPECT_TRUE(readFrom(written(track), reading(track))) << "tables of no points";
    Fill(track);
    track.SetXMax(100);
    expectBytes(written(track), Bytes{}.u16(1).append(StoredTrack(track)).append(baseBlockOf<CRegXAxis>(track)));
    checkRecord(track, RecordCheck<CRegOrderTrack>{.name = "CRegOrderTrack", .lowest = 0, .silentReads = -1});
    for (const auto& [orders, points] : {std::pair{-1, 3}, {1 << 20, 1 << 20}, {100000, 100}}) {
        CRegOrderTrack read;
        const Bytes bad = Bytes{}.u16(1).u16(1).append(baseBlockOf<CResult>(track)).i32(orders).i32(points).zeros(40);
        EXPECT_FALSE(readFrom(bad.data(), reading(read)));
    }

    CRegOrderTrack flat(track), assigned;
    assigned = flat;
    EXPECT_EQ(written(assigned), written(track));
    const auto copied = [&track](float yMax) {
        track.SetYMax(yMax);
        return std::unique_ptr<CRegOrderTrack>(dynamic_cast<CRegOrderTrack*>(track.GetCopy()));
    };
    const auto copy = copied(8.9F); // whose numbers come from a limit
    EXPECT_EQ(copy->GetImMin(), 8.9F);
    EXPECT_EQ(copy->GetImMax(), 8.9F);
    EXPECT_EQ(copy->GetRealMin(), -7);
    EXPECT_EQ(copy->GetNbOrder(), 8);
    EXPECT_EQ(copy->GetFilled(), 8);
    EXPECT_EQ(copy->GetXMax(), 100);
    EXPECT_EQ(Real(*copy, 6), (Values{1, 2, 3, 4, 0, 0})) << "as many as Size";
    const auto below = copied(-2.5F); // a level in decibels: minus two orders of minus two points
    EXPECT_EQ(below->GetNbOrder(), -2);
    EXPECT_FALSE(written(*below).empty());
    for (const auto& [odd, orders] : {std::pair{1e20F, INT_MAX}, {-1e20F, INT_MIN}, {60000.0F, 60000}}) {
        const auto far = copied(odd);
        EXPECT_EQ(far->GetNbOrder(), orders);
        far->SetSize(1 << 20); // no tables of that size
        EXPECT_FALSE(isWritten(writing(*far)));
    }
}

TEST(RefOrderTrack, StoredAndCopied)
{
    CRefOrderTrack track(22, 4, 9, SignalType::Complex);
    EXPECT_EQ(Real(track, 37), Values(37, 0.0F));
    EXPECT_EQ(track.GetXMin(), 0);
    EXPECT_EQ(track.GetXMagnitude(), nullptr);
    auto* speed = new CVectorRef(24, 4, u"Speed", SignalType::Real);
    track.AddVectorRef(speed);
    track.SetChosenReference(speed);
    track.SetXMax(6000);
    Fill(track);
    track.SetFilled(4); // of the axis: as many as the reference holds
    EXPECT_EQ(track.GetFilled(), 3);
    EXPECT_EQ(track.CReferencedAxis::GetFilled(), 4);
    EXPECT_EQ(speed->GetRefMax(), 6000);
    expectBytes(written(track), Bytes{}.u16(1).append(StoredTrack(track)).append(baseBlockOf<CReferencedAxis>(track)));
    checkRecord(track, RecordCheck<CRefOrderTrack>{
                           .name = "CRefOrderTrack", .lowest = 0, .silentReads = -1, .silentWrites = -1});
    const std::unique_ptr<CResult> copy(track.GetCopy());
    EXPECT_EQ(dynamic_cast<CRefOrderTrack&>(*copy).GetNbOrder(), 8);
    CRefOrderTrack flat(track);
    EXPECT_EQ(written(flat), written(track));
    EXPECT_EQ(flat.GetChosenReference(), speed) << "shared, with the list";
    track.SetSize(6);
    EXPECT_EQ(speed->GetSize(), 6);
    EXPECT_EQ(Real(track, 12), Values(12, 0.0F));
    CRefOrderTrack other(22, 4, 1, SignalType::Real);
    other.CopyVectorRef(&track);
    EXPECT_NE(other.GetChosenReference(), speed);
    EXPECT_EQ(other.GetChosenReference()->name(), u"Speed");
}

} // namespace
} // namespace ZelmResult
