#include "zelmresult/results/order_track.h"

#include "tests/builders/record_check.h"
#include "zelmresult/waterfalls/list_vector_ref.h"
#include "zelmresult/waterfalls/vector_ref.h"

#include <climits>
#include <gmock/gmock.h>
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

Values Imaginary(const COrderTracking& track, std::int32_t n)
{
    Values values(static_cast<std::size_t>(n), -1);
    track.GetImValues(values.data(), 1, n);
    return values;
}

template <class Write>
Bytes Block(Write write)
{
    const std::vector<char> stored = written([&](CMmioFile& file) { return write(file); });
    return Bytes{}.raw({stored.data(), stored.size()});
}

// Two orders of three points.
template <class Track>
void Fill(Track& track)
{
    track.SetTables(2, 3, Values{1, 2, 3, 4, 5, 6}.data(), nullptr);
    track.SetYMin(-7);
    track.SetYMax(8.9F);
}

Bytes StoredTrack(COrderTracking& track)
{
    return Bytes{}
        .u16(1, "version")
        .append(Block([&](CMmioFile& file) { return track.CResult::Write(&file); }), "base")
        .i32(2, "NbOrder")
        .i32(3, "Filled")
        .f32s({1, 2, 3, 4, 5, 6}, "real table")
        .f32s({0, 0, 0, 0, 0, 0}, "imaginary table")
        .f32s({8.9F, -7, 8.9F, -7}, "limits");
}

template <class Track>
void CheckCopies(Track& track)
{
    const std::unique_ptr<CResult> copied(track.GetCopy());
    const auto& copy = dynamic_cast<Track&>(*copied);
    EXPECT_TRUE(copy.GetImMin() == 8.9F && copy.GetImMax() == 8.9F && copy.GetRealMin() == -7);
    EXPECT_TRUE(copy.GetNbOrder() == 8 && copy.COrderTracking::GetFilled() == 8);
    EXPECT_EQ(Real(copy, 6), (Values{1, 2, 3, 4, 0, 0})) << "as many as Size";
    track.SetYMax(-2.5F); // a level in decibels: minus two orders of minus two points
    const std::unique_ptr<CResult> below(track.GetCopy());
    EXPECT_TRUE(dynamic_cast<Track&>(*below).GetNbOrder() == -2 && !written(*below).empty());
    for (const float odd : {1e20F, -1e20F, 60000.0F}) {
        track.SetYMax(odd);
        const std::unique_ptr<CResult> far(track.GetCopy());
        const std::int32_t orders = odd == 60000 ? 60000 : odd > 0 ? INT_MAX : INT_MIN;
        EXPECT_EQ(dynamic_cast<Track&>(*far).GetNbOrder(), orders);
        far->SetSize(1 << 20); // no tables of that size
        EXPECT_FALSE(readFrom({}, [&](CMmioFile& file) { return far->Write(&file); }));
    }
}

TEST(RegOrderTrack, StoredAndCopied)
{
    CRegOrderTrack track(22, 4, 5, 6, 7, static_cast<SignalType>(3));
    EXPECT_TRUE(track.GetNbOrder() == 3 && track.GetXMax() == 0 && track.GetXnOctave() == 0);
    EXPECT_TRUE(track.GetComplexType() == SignalType::Real && Real(track, 13) == Values(13, 0.0F));
    track.SetXMax(100);
    static_cast<CResult&>(track).SetXMin(50);
    EXPECT_TRUE(track.GetXMax() == 100 && track.GetXMin() == 0) << "a slot that does nothing";
    EXPECT_EQ(readFrom(written(track), reading(track)), true) << "tables of no points";
    EXPECT_EQ(track.GetFilled(), 0);
    Fill(track);
    const Bytes axis = Block([&](CMmioFile& file) { return track.CRegXAxis::Write(&file); });
    expectBytes(written(track), Bytes{}.u16(1).append(StoredTrack(track)).append(axis));
    EXPECT_THAT(dumpOf(track), ::testing::ContainsRegex("COrderTracking\n(.*\n)*CRegOrderTrack\n"));
    RecordCheck<CRegOrderTrack> check{.name = "CRegOrderTrack", .lowest = 0, .silentReads = -1};
    check.expect = [](CRegOrderTrack& read, std::uint16_t version) {
        EXPECT_EQ(Real(read, 6), version == 0 ? Values(6, 0.0F) : (Values{1, 2, 3, 4, 5, 6}));
        EXPECT_EQ(read.GetXMax(), version == 0 ? 0 : 100);
    };
    checkRecord(track, check);
    for (const auto& [orders, points] : {std::pair{-1, 3}, {3, -1}, {1 << 20, 1 << 20}, {100000, 100}}) {
        const Bytes bad = Bytes{}
                              .u16(1)
                              .u16(1)
                              .append(Block([&](CMmioFile& file) { return track.CResult::Write(&file); }))
                              .i32(orders)
                              .i32(points)
                              .zeros(40);
        CRegOrderTrack read;
        EXPECT_FALSE(readFrom(bad.data(), reading(read)));
    }
    CheckCopies(track);
}

TEST(RefOrderTrack, StoredAndCopied)
{
    CRefOrderTrack track(22, 4, 9, SignalType::Complex);
    EXPECT_TRUE(Real(track, 37) == Values(37, 0.0F) && track.GetXMin() == 0 && track.GetXMagnitude() == nullptr);
    auto* speed = new CVectorRef(24, 4, u"Speed", SignalType::Real);
    track.AddVectorRef(speed);
    track.SetChosenReference(speed);
    track.SetXMax(6000);
    Fill(track);
    track.SetFilled(4); // of the axis: as many as the reference holds
    EXPECT_TRUE(track.GetFilled() == 3 && track.CReferencedAxis::GetFilled() == 4 && speed->GetRefMax() == 6000);
    const std::vector<char> stored = written(track);
    EXPECT_THAT(dumpOf(track), ::testing::HasSubstr("CRefOrderTrack\n"));
    RecordCheck<CRefOrderTrack> check{.name = "CRefOrderTrack", .lowest = 0, .silentReads = -1, .silentWrites = -1};
    check.expect = [](CRefOrderTrack& read, std::uint16_t version) {
        EXPECT_EQ(Real(read, 6), version == 0 ? Values(6, 0.0F) : (Values{1, 2, 3, 4, 5, 6}));
        EXPECT_EQ(Imaginary(read, 2), Values(2, 0.0F));
        EXPECT_EQ(read.GetXMax(), version == 0 ? 0 : 6000);
        EXPECT_EQ(read.GetFilled(), version == 0 ? 0 : 3);
    };
    checkRecord(track, check);
    track.SetLastBlockNb(17);
    track.SetSize(6);
    EXPECT_TRUE(speed->GetSize() == 6 && track.GetLastBlockNb() == 17 && Real(track, 12) == Values(12, 0.0F));
    track.SetSize(4);
    Fill(track);
    CRefOrderTrack other(22, 4, 1, SignalType::Real);
    other.CopyVectorRef(&track);
    EXPECT_TRUE(other.GetChosenReference() != speed && other.GetChosenReference()->name() == u"Speed");
    CheckCopies(track);
}

} // namespace
} // namespace ZelmResult
