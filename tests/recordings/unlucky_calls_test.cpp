// Legal calls at the wrong time or with the oddest arguments, for recordings, their tracks and disks, and transducers.

#include "tests/builders/record_check.h"
#include "zelmresult/quantities/grandeur.h"
#include "zelmresult/recordings/itrack.h"
#include "zelmresult/recordings/lidn.h"
#include "zelmresult/recordings/record.h"

#include <array>
#include <cmath>
#include <gtest/gtest.h>

namespace ZelmResult {
namespace {

using namespace test;

constexpr std::int16_t kShorts[] = {INT16_MIN, -1, 0, 1, 3, INT16_MAX};

// Every operation that asks, or changes what may be missing.
void Call(CRecord& record, std::size_t tracks)
{
    for (const std::int16_t i : kShorts) {
        EXPECT_TRUE(record.updateFileBlocEndNbr(i, i, 5) && record.updateRecordLength(i));
        EXPECT_EQ(record.getTrackData(i), record.getTrackDesc(i));
        EXPECT_EQ(record.getTrackDesc(i) != nullptr, record.tracks().contains(i));
    }
    std::vector<float> floats(tracks + 1, 7);
    std::vector<std::int32_t> numbers(tracks + 1, 7);
    const auto expectEnd = [&](std::int16_t index) {
        EXPECT_TRUE(static_cast<std::size_t>(index) == tracks && floats.back() == 7 && numbers.back() == 7);
    };
    std::int16_t index = 0;
    (void)record.getTrackFreq(floats.data(), &index), expectEnd(index);
    for (const auto get : {&CRecord::getTrackBlockSize, &CRecord::getTrackBlockFirst, &CRecord::getTrackFirstOffset}) {
        index = 0;
        (void)(record.*get)(numbers.data(), &index), expectEnd(index);
    }
    index = 0;
    (void)record.getYUniData(nullptr, nullptr, nullptr, nullptr, nullptr, &index), expectEnd(index);
    index = 0;
    (void)record.getTrackFormat(nullptr, numbers.data(), nullptr, nullptr, &index), expectEnd(index);
}

TEST(UnluckyRecordings, EmptyFullAndLoaded)
{
    CRecord record(false);
    Call(record, 0);
    EXPECT_TRUE(record.getFirstRecordInfo() == nullptr && record.updateLOCATrackDesc(nullptr, nullptr, nullptr));
    EXPECT_TRUE(record.updateTrackOverload(nullptr, nullptr, nullptr) && record.AddRecordInfo(nullptr));
    record.AddRecordInfo(new CRecordInfo), record.AddRecordInfo(record.getFirstRecordInfo());
    EXPECT_EQ(record.recordInfos().size(), 1U);
    for (const std::int32_t key : {-1, INT32_MIN, INT32_MAX, 3})
        EXPECT_TRUE(record.AddTrackDesc(new CZMTrackDesc, key));
    EXPECT_EQ(record.getTrackCount(), 4);
    Call(record, 4);
    strEnregHeader header;
    header.NbrRecord = 1, header.SampleFrequency = NAN, header.RecordLength = INT64_MIN,
    header.Name.assign(70000, u'n');
    header.NbrChannel = INT32_MAX, header.RecordDate = {65535, 65535, 65535, 65535, 65535, 65535, 65535, 65535};
    record.setRecordHeaderstr(&header);
    for (const auto& [key, track] : record.tracks()) {
        track->SetHasChunk(TrackChunk::Info, true), track->SetHasChunk(TrackChunk::Loca, true);
        track->SetHasChunk(TrackChunk::Link, true), track->SetHasChunk(TrackChunk::Corr, true);
    }
    const std::vector<char> stored = bytesOf([&](CMmioFile& file) { return record.Save(&file); });
    for (const bool normalise : {false, true}) {
        CRecord loaded(true);
        for (std::size_t tracks = 4; tracks < 9; tracks += 4) { // a second load adds
            (void)readFrom(stored, [&](CMmioFile& file) { return loaded.Load(&file, normalise, true); });
            Call(loaded, loaded.tracks().size());
        }
    }
    record.AddTrackDesc(nullptr, 7);
    Call(record, 5);
    std::array<std::int32_t, 8> values{};
    EXPECT_FALSE(record.updateLOCATrackDesc(values.data(), values.data(), values.data())) << "a null track ends it";
    EXPECT_FALSE(readFrom({}, [&](CMmioFile& file) { return record.Save(&file); }));
}

TEST(UnluckyRecordings, TracksAndDisks)
{
    CGrandeur quantity;
    CZMTrackDesc track;
    strTrackDescData data;
    for (const std::int16_t format :
         {std::int16_t(INT16_MIN), std::int16_t(2), std::int16_t(5), std::int16_t(INT16_MAX)})
        for (const std::int32_t points : {0, -1, INT32_MIN, INT32_MAX, 3}) { // null for the table, so zeros
            data.CorrFormat = format, data.SizeCorr = points < 4 ? points : 0;
            data.Sensitivity = 0, data.ConvLogToVolt = NAN, data.YOffset = INFINITY, data.YMagnitude = &quantity;
            EXPECT_TRUE(track.setData(&data) == 0 && track.getData(&data) == 0);
            delete[] std::exchange(data.CorrData, nullptr);
            const std::int16_t index = 0;
            float out[5];
            EXPECT_EQ(track.getYUniData(&out[0], &out[1], &out[2], &out[3], &out[4], &index), 0);
            for (const TrackChunk chunk : {TrackChunk::Info, TrackChunk::Loca, TrackChunk::Xuni, TrackChunk::Vuni,
                                           TrackChunk::Ovld, TrackChunk::Hard, TrackChunk::Link, TrackChunk::Corr})
                track.SetHasChunk(chunk, true);
            EXPECT_FALSE(bytesOf([&](CMmioFile& file) { return track.Save(&file, 0) || points < 0; }).empty());
        }
    EXPECT_TRUE(track.addLIDN(nullptr) && track.updateLOCA(INT32_MIN, INT32_MAX, -1, INT32_MIN));
    EXPECT_TRUE(track.updateTrackOverload(NAN, -INFINITY, true) && track.linkLists().empty());
    auto* link = new std::vector<idn::Idn>(70000);
    track.addLIDN(link), track.addLIDN(link);
    EXPECT_EQ(track.linkLists().size(), 1U);
    EXPECT_GT(bytesOf([&](CMmioFile& file) { return CLIDN::mmioSaveCLIDN(&file, *link); }).size(), 65535U);
    CRecordInfo disk;
    for (const std::int16_t i : kShorts) EXPECT_TRUE(disk.updateFileBlocEndNbr(i, 1) && disk.AddFileBlockInfo(nullptr));
    EXPECT_TRUE(disk.getFirstFileBlockinfo() == nullptr && disk.GetNbOfDescriptors() == 0);
    for (int i = 0; i < 1100; ++i) disk.AddFileBlockInfo(new CFileBlockInfo);
    for (const std::int16_t number : kShorts)
        EXPECT_EQ(
            readFrom({}, [&](CMmioFile& file) { return disk.Save(&file, number) || CFileBlockInfo().Save(&file, -1); }),
            false);
    CMmioFile closed(false, MemoryDisk().backend());
    EXPECT_FALSE(CITrack().Load(&closed) || disk.Load(&closed) || track.Load(&closed, true, true));
}

} // namespace
} // namespace ZelmResult
