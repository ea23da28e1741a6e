// Legal calls at the wrong time or with the oddest arguments, for recordings with their tracks and disks.

#include "tests/builders/record_check.h"
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
    std::int16_t index[4] = {};
    (void)record.getTrackFreq(floats.data(), &index[0]), expectEnd(index[0]);
    (void)record.getTrackFirstOffset(numbers.data(), &index[1]), expectEnd(index[1]);
    (void)record.getYUniData(nullptr, nullptr, nullptr, nullptr, nullptr, &index[2]), expectEnd(index[2]);
    (void)record.getTrackFormat(nullptr, numbers.data(), nullptr, nullptr, &index[3]), expectEnd(index[3]);
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
    header.NbrRecord = INT32_MAX, header.RecordLength = INT64_MIN, header.RecordDate.wMonth = 65535;
    record.setRecordHeaderstr(&header);
    for (const auto& [key, track] : record.tracks())
        for (int chunk = 0; chunk < 9; ++chunk) track->SetHasChunk(static_cast<TrackChunk>(chunk), true);
    const std::vector<char> stored = bytesOf([&](CMmioFile& file) { return record.Save(&file); });
    CRecord loaded(true);
    for (int load = 0; load < 2; ++load) { // the second one adds
        (void)readFrom(stored, [&](CMmioFile& file) { return loaded.Load(&file, true, true); });
        Call(loaded, loaded.tracks().size());
    }
    record.AddTrackDesc(nullptr, 7);
    Call(record, 5);
    std::array<std::int32_t, 8> values{};
    EXPECT_FALSE(record.updateLOCATrackDesc(values.data(), values.data(), values.data())) << "a null track ends it";
    EXPECT_FALSE(isWritten([&](CMmioFile& file) { return record.Save(&file); }));
}

TEST(UnluckyRecordings, TracksOfOddTables)
{
    CZMTrackDesc track;
    strTrackDescData data;
    data.Sensitivity = 0;
    for (const int format : {INT16_MIN, 2, 5, INT16_MAX})
        for (const std::int32_t points : {0, -1, INT32_MIN, 3}) { // null for the table, so zeros
            data.CorrFormat = static_cast<std::int16_t>(format), data.SizeCorr = points;
            EXPECT_TRUE(track.setData(&data) == 0 && track.getData(&data) == 0);
            delete[] std::exchange(data.CorrData, nullptr);
            for (int chunk = 0; chunk < 9; ++chunk) track.SetHasChunk(static_cast<TrackChunk>(chunk), true);
            EXPECT_FALSE(bytesOf([&](CMmioFile& file) { return track.Save(&file, 0) || points < 0; }).empty());
        }
}

} // namespace
} // namespace ZelmResult
