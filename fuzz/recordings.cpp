// A byte that says what, 'I' for a transducer and else a recording and whether its tracks are normalised; then its
// chunks.

#include "fuzz/laws.h"
#include "zelmresult/recordings/itrack.h"
#include "zelmresult/recordings/record.h"

#include <utility>

using namespace ZelmResult;
using fuzz::Subject;

namespace {

void LookAt(const CRecord& record)
{
    constexpr std::int16_t mostTracks = 100;
    if (record.getTrackCount() > mostTracks) return;
    float places[5][mostTracks];
    std::int16_t index = 0;
    (void)record.getTrackFreq(places[0], &index);
    index = 0;
    (void)record.getYUniData(places[0], places[1], places[2], places[3], places[4], &index);
    for (const auto& [key, track] : record.tracks()) {
        CZMTrackDesc copy;
        (void)copy.setData(track);
    }
}

Subject SubjectOfRecording(bool normalises)
{
    auto record = std::make_shared<CRecord>(false);
    Subject subject;
    subject.read = [record, normalises](CMmioFile& file) { return record->Load(&file, normalises, normalises); };
    subject.write = [record](CMmioFile& file) { return record->Save(&file); };
    subject.look = [record] { LookAt(*record); };
    subject.isWholeRead = false; // the last search ends anywhere
    return subject;
}

Subject SubjectOfTransducer()
{
    auto transducer = std::make_shared<CITrack>();
    Subject subject;
    subject.read = [transducer](CMmioFile& file) { return transducer->Load(&file); };
    subject.write = [transducer](CMmioFile& file) { return transducer->Save(&file); };
    return subject;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::Input input(data, size);
    const auto which = input.take<char>();
    bool normalises = which % 2 != 0;
    // A scale that was tightened is stored so, and would be tightened once more: only the first read does it.
    const auto makeRecording = [&] { return SubjectOfRecording(std::exchange(normalises, false)); };
    if (which == 'I')
        fuzz::CheckRecord(input.rest(), SubjectOfTransducer);
    else
        fuzz::CheckRecord(input.rest(), makeRecording);
    return 0;
}
