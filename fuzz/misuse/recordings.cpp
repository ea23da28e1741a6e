// Recordings that are empty, full and loaded twice, with their tracks and disks.

#include "fuzz/misuse/rooms.h"
#include "tests/builders/record_check.h"
#include "zelmresult/recordings/record.h"

#include <utility>

namespace ZelmResult::fuzz {

namespace {

class Misuse : public Room {
public:
    using Room::Room;

    void Step()
    {
        m_odd.call([&] { AddTrack(); }, [&] { AddDisk(); }, [&] { SetHeader(); }, [&] { Look(); },
                   [&] { FillArrays(); }, [&] { Reload(); }, [&] { UseTable(); });
    }

private:
    void AddTrack()
    {
        constexpr std::size_t kMost = 20;
        const std::int32_t key = m_odd.number();
        const bool isTaken = m_record.tracks().contains(key) || (key < 0 && m_record.tracks().contains(INT32_MAX));
        if (isTaken || m_record.tracks().size() >= kMost) return; // a former track would be the caller's
        const bool isNull = m_odd.choice(32) == 0;
        auto* track = isNull ? nullptr : new CZMTrackDesc;
        for (int chunk = 0; chunk < 9 && track != nullptr; ++chunk)
            track->SetHasChunk(static_cast<TrackChunk>(chunk), m_odd.flag());
        Require(m_record.AddTrackDesc(track, key), "a recording takes any track");
    }
    void AddDisk()
    {
        constexpr std::size_t kMost = 17; // that a file holds
        const std::size_t count = m_record.recordInfos().size();
        Require(m_record.AddRecordInfo(nullptr), "no disk is taken");
        Require(m_record.AddRecordInfo(m_record.getFirstRecordInfo()), "a disk is taken once");
        Require(m_record.recordInfos().size() == count, "what is there adds nothing");
        if (count == kMost) return;
        auto* disk = new CRecordInfo;
        Require(disk->AddFileBlockInfo(nullptr), "no file is taken");
        Require(disk->GetNbOfDescriptors() == 0, "without a file there are no blocks");
        Require(m_record.AddRecordInfo(disk), "a recording takes a disk");
    }
    void SetHeader()
    {
        strEnregHeader header;
        header.NbrRecord = m_odd.number();
        header.RecordLength = m_odd.pick<std::int64_t>({INT64_MIN, -1, 0, INT64_MAX});
        header.RecordDate.wMonth = static_cast<std::uint16_t>(m_odd.word());
        header.Name = m_odd.text();
        m_record.setRecordHeaderstr(&header);
    }
    void Look()
    {
        const std::int16_t i = m_odd.shortNumber();
        const auto found = m_record.tracks().find(i);
        Require(m_record.getTrackDesc(i) == (found == m_record.tracks().end() ? nullptr : found->second),
                "a track is found by its key");
        Require(m_record.getTrackData(i) == m_record.getTrackDesc(i), "the values of a track are the track");
        Require(m_record.updateFileBlocEndNbr(i, m_odd.shortNumber(), 5), "a file that isn't there changes nothing");
    }
    void FillArrays()
    {
        const std::size_t tracks = m_record.tracks().size();
        std::vector<float> floats(tracks + 1, 7);
        std::vector<std::int32_t> numbers(tracks + 1, 7);
        const auto fill = [&](auto call) {
            std::int16_t index = 0;
            (void)call(&index);
            Require(static_cast<std::size_t>(index) == tracks, "each track has a value");
            Require(floats.back() == 7 && numbers.back() == 7, "nothing is past the last track");
        };
        const CRecord& r = m_record;
        fill([&](std::int16_t* index) { return r.getTrackFreq(floats.data(), index); });
        fill([&](std::int16_t* index) { return r.getTrackFirstOffset(numbers.data(), index); });
        fill([&](std::int16_t* index) {
            return r.getYUniData(nullptr, nullptr, floats.data(), nullptr, nullptr, index);
        });
        fill([&](std::int16_t* index) { return r.getTrackFormat(nullptr, numbers.data(), nullptr, nullptr, index); });
        const bool isWhole = m_record.updateLOCATrackDesc(numbers.data(), numbers.data(), numbers.data());
        Require(isWhole != HasNullTrack(), "a null track ends an update");
    }
    [[nodiscard]] bool HasNullTrack() const
    {
        bool has = false;
        for (const auto& [key, track] : m_record.tracks()) has = has || track == nullptr;
        return has;
    }
    void Reload()
    {
        test::MemoryDisk disk;
        CMmioFile file(false, disk.backend());
        Require(file.Open(u"r", nullptr, OMMIO_WRITE | OMMIO_CREATE), "a file opens");
        Require(m_record.Save(&file) != HasNullTrack(), "a recording is stored unless it has a null track");
        (void)file.Close();
        (void)m_record.Unstorable(m_odd.flag());
        CRecord loaded(true);
        const auto load = [&](CMmioFile& stored) { return loaded.Load(&stored, true, true); };
        if (!test::readFrom(disk[u"r"], load)) return; // such as tracks without a place
        const std::size_t tracks = loaded.tracks().size();
        Require(test::readFrom(disk[u"r"], load), "what was loaded is loaded again");
        Require(loaded.tracks().size() == 2 * tracks, "a load adds to what is there");
    }
    void UseTable()
    {
        CZMTrackDesc track;
        strTrackDescData data;
        data.Sensitivity = 0;
        data.CorrFormat = m_odd.pick<std::int16_t>({INT16_MIN, 2, 5, INT16_MAX});
        data.SizeCorr = m_odd.pick<std::int32_t>({INT32_MIN, -1, 0, 3}); // null for the table, so zeros
        (void)track.setData(&data);
        (void)track.getData(&data);
        delete[] std::exchange(data.CorrData, nullptr);
        for (int chunk = 0; chunk < 9; ++chunk) track.SetHasChunk(static_cast<TrackChunk>(chunk), true);
        const bool isWritten = test::isWritten([&](CMmioFile& file) { return track.Save(&file, 0); });
        Require(isWritten || data.SizeCorr < 0, "a track is stored");
    }

    CRecord m_record{false};
};

} // namespace

void MisuseRecordings(Odd& odd) { Run<Misuse>(odd); }

} // namespace ZelmResult::fuzz
