// What documents and systems pass on to recordings.

#include "zelmresult/zelmresult.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>

namespace ZelmResult {
namespace {

using ::testing::ElementsAre;

// Two systems, of which the second has a recording.
struct RecordingCalls : ::testing::Test {
    CZMXFFile document{true, false};
    CSysteme* system = nullptr;

    RecordingCalls()
    {
        document.AddSysteme(new CSysteme);
        document.SetRecord(new CRecord(false), 1);
        system = document.getSystem(1);
    }
};

} // namespace

TEST_F(RecordingCalls, HeadersAreSetAndRead)
{
    strEnregHeader all;
    all.TimeDivider = 2;
    all.SampleFrequency = 3;
    all.BlockSize = 4;
    all.NbrChannelComp = 5;
    EXPECT_TRUE(document.setRecordHeaderstr(&all, 1));
    EXPECT_TRUE(document.setNbrRecord(6, 1));
    EXPECT_TRUE(document.setNbrMarker(7, 1));
    EXPECT_TRUE(document.setReferenceTime({8, 0}, 1));
    EXPECT_TRUE(document.updateRecordLength(9, 1));
    EXPECT_EQ(system->getRecordHeaderstr()->RecordLength, 9);
    const auto numbers = [](const auto& of) {
        return std::vector<double>{double(of.getTimedivider()),    of.getSampleFrequency(),   double(of.getBlockSize()),
                                   double(of.getNbrChannelComp()), double(of.getNbrRecord()), double(of.getNbrMarker()),
                                   double(of.getReferenceTime())};
    };
    EXPECT_THAT(numbers(*system), ElementsAre(2, 3, 4, 5, 6, 7, 8));
    EXPECT_THAT(numbers(document), ElementsAre(2, 3, 4, 5, 6, 7, 8)) << "the first recording's";
    EXPECT_THAT(numbers(*document.getSystem(0)), ElementsAre(0, 0, 0, 0, 0, 0, 0));
    EXPECT_TRUE(document.setRecordHeader(CRecordHeader(true), 1));
    EXPECT_TRUE(system->IsConvertedSignal());
    EXPECT_EQ(document.getRecordHeader(1), system->getRecordHeader());
}

TEST_F(RecordingCalls, TracksAndDisksAreAddedAndUpdated)
{
    auto* disk = new CRecordInfo;
    disk->AddFileBlockInfo(new CFileBlockInfo);
    EXPECT_TRUE(document.AddRecordInfo(disk, 1));
    EXPECT_EQ(document.getFirstRecordInfo(1), disk);
    EXPECT_TRUE(document.updateFileBlocEndNbr(0, 0, 5, 1));
    EXPECT_EQ(disk->GetNbOfDescriptors(), 5U);

    for (int n = 0; n < 2; ++n) EXPECT_TRUE(document.AddTrackDesc(new CZMTrackDesc, -1, 1));
    const std::int32_t first[] = {1, 2};
    const std::int32_t last[] = {3, 4};
    const std::int32_t size[] = {5, 6};
    const float low[] = {-1, -2};
    const float high[] = {1, 2};
    const bool over[] = {false, true};
    EXPECT_TRUE(document.updateLOCATrackDesc(first, last, size, 1));
    EXPECT_TRUE(document.updateTrackOverload(low, high, over, 1));
    const CZMTrackDesc* track = document.getTrackDesc(CZMXFFile::kChannelsPerSystem + 1);
    ASSERT_NE(track, nullptr);
    EXPECT_EQ(track->Max, 2);
    EXPECT_EQ(track, system->getTrackDesc(1));
    EXPECT_EQ(system->getTrackCount(), 2);
    std::int32_t numbers[3] = {};
    std::int16_t index = 1;
    EXPECT_EQ(system->getTrackBlockFirst(numbers, &index), 0);
    EXPECT_THAT(numbers, ElementsAre(0, 1, 2));
}

} // namespace ZelmResult
