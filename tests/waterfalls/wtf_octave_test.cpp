// Waterfalls of octave bands, with their global levels, and the windows of an analysis.

#include "zelmresult/waterfalls/wtf_octave.h"

#include "tests/builders/record_check.h"
#include "zelmresult/results/reg_vector.h"
#include "zelmresult/waterfalls/weighting_window.h"

#include <gtest/gtest.h>

namespace ZelmResult {
namespace {

using namespace test;
using Values = std::vector<float>;

// Two steps of two bands. A value says step, dimension and place.
std::unique_ptr<CWtfOctave> NewOctave(SignalType type)
{
    auto octave = std::make_unique<CWtfOctave>(24, 2, 2, 2, nullptr, type);
    (void)octave->AllocateTabBlockNumber(2);
    for (std::int32_t block = 0; block < 2; ++block) {
        octave->SetBlocNumber(octave->AddBlock(block, -1), block);
        for (std::int32_t dimension = 0; dimension < CWaterfall::GetComplexDim(type); ++dimension) {
            const auto value = static_cast<float>(100 * block + 10 * dimension);
            octave->GetTabData(dimension, block).CopySliceFrom(Values{value + 1, value + 2}.data(), 2);
            octave->SetGlobalLevelByIndex(dimension, block, value + 3);
            octave->SetGlobalLevelPondByIndex(dimension, block, value + 4);
        }
    }
    octave->SetFilled(2);
    octave->SetXnOctave(3);
    octave->SetXMin(1000);
    return octave;
}

Values Slice(CWtfOctave& octave, std::int32_t dimension, std::int32_t slot)
{
    Values values(4);
    octave.GetValues(dimension, slot, values.data(), 4);
    return values;
}

Values Of(const float* values) { return values == nullptr ? Values{} : Values(values, values + 2); }

} // namespace

TEST(WtfOctave, KeepsLevelsAfterTheBands)
{
    using enum AvgOctaveTarget;
    const struct {
        SignalType type;
        float minimum, maximum; // the first of each in slice 1, 0 without
    } rows[] = {{SignalType::Octave, 0, 0},
                {SignalType::OctaveMinMax, 111, 121},
                {SignalType::OctaveMin, 101, 0},
                {SignalType::OctaveMax, 0, 101}};
    for (const auto& row : rows) {
        const SignalType type = row.type;
        SCOPED_TRACE(static_cast<int>(type));
        const auto octave = NewOctave(type);
        EXPECT_EQ(Slice(*octave, 0, 1), (Values{101, 102, 103, 104}));
        const bool hasThree = type == SignalType::OctaveMinMax;
        EXPECT_EQ(octave->GetGlobLevel(1, Minimum), hasThree ? 113 : 103) << "0 where there is no such dimension";
        EXPECT_EQ(octave->GetGlobalLevelPond(1, Maximum), hasThree ? 124 : 104);
        EXPECT_FLOAT_EQ(octave->GetXMinOctave(), 904.17F);

        const auto bandsOf = [](float first) { return first == 0 ? Values{} : Values{first, first + 1}; };
        auto* shown = dynamic_cast<CRegVector*>(octave->GetTempVector(1));
        EXPECT_EQ(Of(shown->GetRealValueMin()), bandsOf(row.minimum));
        EXPECT_EQ(Of(shown->GetRealValueMax()), bandsOf(row.maximum));
        EXPECT_EQ(shown->GetGlobPondLevel(Minimum), row.minimum == 0 ? 0 : row.minimum + 3);
        EXPECT_EQ(shown->GetXnOctave(), 3);
        EXPECT_EQ(shown->GetXMin(), 1000);
        EXPECT_EQ(shown->GetSize(), 2);

        RecordCheck<CWtfOctave> check{.name = "CWtfOctave", .lowest = 2, .newest = 2, .silentReads = -1};
        check.make = [] { return std::make_unique<CWtfOctave>(true); };
        check.expect = [&](CWtfOctave& read, std::uint16_t) {
            for (std::int32_t dimension = 0; dimension < CWaterfall::GetComplexDim(type); ++dimension)
                EXPECT_EQ(Slice(read, dimension, 1), Slice(*octave, dimension, 1));
        };
        checkRecord(*octave, check);
        octave->SetZSize(1, false);
        EXPECT_EQ(octave->GetTempVector(0)->GetXnOctave(), 3U);
    }
    CWtfOctave other;
    EXPECT_EQ(other.GetTempVector(0), nullptr);
    EXPECT_EQ(other.GetGlobLevel(0, Octave), 0);
    other = NewOctave(SignalType::OctaveMinMax).get();
    other = static_cast<CResult*>(std::make_unique<CWaterfall>(2, 2, 3, 2, nullptr, SignalType::Real, true).get());
    EXPECT_EQ(other.GetTempVector(0), nullptr) << "a plain waterfall has a vector of its own kind";
}

// The layout of version 1: plain vectors for slices, and no levels.
TEST(WtfOctave, ReadsItsFormerLayout)
{
    CWtfOctave source(24, 2, 2, 2, nullptr, SignalType::Octave);
    source.SetFilled(2);
    const auto slice = [](float first, float second) {
        CVector vector(24, 2, SignalType::Octave, 2, true);
        vector.GetRealValue()[0] = first;
        vector.GetRealValue()[1] = second;
        return blockOf(vector);
    };
    const Bytes stored = Bytes{}
                             .u16(1, "version")
                             .u16(77, "second version")
                             .append(baseBlockOf<CResult>(source))
                             .append(baseBlockOf<CReferencedAxis>(source))
                             .append(slice(5, 6))
                             .append(slice(7, 8))
                             .i32(1, "block numbers")
                             .i32(3)
                             .f32s({-1, 9, 0, 0, 100, 200}, "limits")
                             .raw("99999999", "quantities")
                             .u32(1, "XnOctave")
                             .u32(4)
                             .u32(5);
    CWtfOctave read(true);
    readInto(read, stored);
    EXPECT_EQ(read.GetTabPoint(0, 1, 1), 6);
    EXPECT_EQ(read.GetTabPoint(0, 3, 0), 7);
    EXPECT_EQ(read.GetZSize(), 4);
    EXPECT_EQ(read.GetRealMin(), -1);
    EXPECT_EQ(read.GetRealMax(), 9);
    EXPECT_EQ(read.GetXnOctave(), 1);
    EXPECT_EQ(read.GetGlobLevel(3, AvgOctaveTarget::Octave), 0) << "which it doesn't store";
    const std::unique_ptr<CWtfOctave> whole(read.GetWholeCopy());
    EXPECT_EQ(whole->GetTabPoint(0, 3, 0), 7);
    EXPECT_EQ(whole->GetXnOctave(), 1U);
    auto* shown = dynamic_cast<CRegVector*>(read.GetTempVector(3));
    EXPECT_EQ(shown->GetXMax(), 200);
    EXPECT_EQ(shown->GetXnOctave(), 1);
    EXPECT_EQ(Of(shown->GetRealValue()), (Values{7, 8}));
    for (std::size_t cut = 0; cut < stored.size(); ++cut) {
        CWtfOctave broken(true);
        const auto end = stored.data().begin() + static_cast<std::ptrdiff_t>(cut);
        (void)readFrom({stored.data().begin(), end}, reading(broken));
    }
}

TEST(WeightingWindow, HoldsLegalNumbersOnly)
{
    const auto& all = WeightingWindow::all();
    EXPECT_EQ(all.size(), 2 + 11 + 1 + 10 + 22 + 8);
    EXPECT_EQ(static_cast<int>(all[13]), 316);
    EXPECT_EQ(WeightingWindow(500).toInt(), 0);
    const WeightingWindow window(idn::Submodule(424, 1));
    EXPECT_TRUE(WeightingWindow::isWindowIdn(window.toIdn()));
    EXPECT_EQ(window.toIdn().submodule(), idn::Submodule(424, 1));
    for (const int number : {-1, 0}) EXPECT_FALSE(WeightingWindow::isWindowIdn(WeightingWindow(number).toIdn()));
    idn::Idn elsewhere = window.toIdn();
    elsewhere.module().kind = 8;
    EXPECT_FALSE(WeightingWindow::isWindowIdn(elsewhere));
}

} // namespace ZelmResult
