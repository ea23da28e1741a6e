#include "tools/zmxf/measuring/recording_description.h"

#include "tools/zmxf/base/files.h"
#include "zelmresult/recordings/itrack.h"
#include "zelmresult/recordings/record.h"
#include "zelmresult/support/text.h"

#include <algorithm>

namespace zmxf {

namespace {

using ZelmResult::CRecord;
using ZelmResult::CZMTrackDesc;
using ZelmResult::FromUtf8;
using ZelmResult::TrackChunk;

constexpr std::int32_t kFormatInParts = 0x10002; // whose scale no host may tighten
constexpr double kFullScaleCount = 2147483648.0; // 2^31: samples count as 32-bit numbers
constexpr double kTicksPerSecond = 1e7;
constexpr std::int32_t kSamplesPerBlock = 1;

// A sample of the file, within the range of block numbers.
std::int32_t Block(std::int64_t frame) { return static_cast<std::int32_t>(std::min<std::int64_t>(frame, INT32_MAX)); }

std::int32_t LastBlock(const RecordingFacts& facts) { return Block(facts.firstFrame + facts.frames - 1); }

// Of the file, of which the recording may be a stretch.
std::int32_t LastBlockInFile(const RecordingFacts& facts)
{
    return facts.framesInFile.value_or(INT64_MAX) == INT64_MAX ? LastBlock(facts) : Block(*facts.framesInFile - 1);
}

std::int16_t Count(std::size_t count) { return static_cast<std::int16_t>(std::min<std::size_t>(count, INT16_MAX)); }

void FillHeader(CRecord& record, const CalibratedRecording& recording)
{
    const RecordingFacts& facts = recording.measured.facts;
    ZelmResult::strEnregHeader header;
    header.TimeDivider = 1;
    header.SampleFrequency = facts.sampleRate;
    header.BlockSize = kSamplesPerBlock;
    header.NbrChannel = static_cast<std::int32_t>(facts.channels);
    header.ReferenceTime = ZelmResult::OFileTime::fromOTime(ZelmResult::OTime(facts.modifiedAt)).toFILETIME();
    (void)ZelmResult::FileTimeToSystemTime(header.ReferenceTime, header.RecordDate);
    header.RecordLength =
        static_cast<std::int64_t>(static_cast<double>(facts.frames) / facts.sampleRate * kTicksPerSecond);
    header.NbrRecord = 1;
    header.DiskNumber = 1;
    header.Name = FromUtf8(BaseName(recording.path()));
    record.setRecordHeaderstr(&header);
}

std::unique_ptr<ZelmResult::CRecordInfo> MakeDisk(const RecordingFacts& facts)
{
    auto disk = std::make_unique<ZelmResult::CRecordInfo>();
    const ZelmResult::strFileInfo counts{Count(facts.channels), 0, 1, 1};
    (void)disk->getFileInfo().setData(&counts);
    auto file = std::make_unique<ZelmResult::CFileBlockInfo>();
    (void)file->updateFileBlocEndNbr(static_cast<std::uint32_t>(LastBlockInFile(facts)));
    disk->AddFileBlockInfo(file.release());
    return disk;
}

std::unique_ptr<CZMTrackDesc> MakeTrack(MeasuredDocument& document, std::size_t channel)
{
    const CalibratedRecording& recording = document.recording();
    const RecordingFacts& facts = recording.measured.facts;
    const Calibration& calibration = recording.calibrations[channel];
    const double factor = calibration.FactorToSI();
    const Levels& levels = recording.measured.levels[channel];
    auto track = std::make_unique<CZMTrackDesc>();
    track->TrackIdn = ChannelIdn(channel);
    track->Format = kFormatInParts;
    track->SampleFrequency = static_cast<float>(facts.sampleRate);
    track->Name = FromUtf8(ChannelName(document.recording(), channel));
    track->Comment = FromUtf8(calibration.Text());
    track->updateLOCA(Block(facts.firstFrame), LastBlock(facts), kSamplesPerBlock, 0);
    track->updateTrackOverload(Stored(levels.minimum * factor, channel), Stored(levels.maximum * factor, channel),
                               IsOverloaded(recording, channel));
    track->XMagnitude = document.Share(TimeQuantity());
    track->XStep = static_cast<float>(1.0 / facts.sampleRate);
    track->YMagnitude = document.SignalOf(channel);
    track->ConvLogToVolt = static_cast<float>(1.0 / kFullScaleCount); // full scale counts as one volt
    track->Sensitivity = static_cast<float>(1.0 / factor);
    for (const TrackChunk chunk : {TrackChunk::Info, TrackChunk::Xuni, TrackChunk::Yuni})
        track->SetHasChunk(chunk, true);
    return track;
}

std::unique_ptr<ZelmResult::CITrack> MakeTransducer(MeasuredDocument& document, std::size_t channel)
{
    auto transducer = std::make_unique<ZelmResult::CITrack>();
    transducer->setId(FromUtf8(ChannelName(document.recording(), channel)));
    transducer->setType(document.SignalOf(channel)->GetNomGrandeur());
    return transducer;
}

} // namespace

void AddRecording(MeasuredDocument& document)
{
    const CalibratedRecording& recording = document.recording();
    auto record = std::make_unique<CRecord>(false);
    FillHeader(*record, recording);
    record->AddRecordInfo(MakeDisk(recording.measured.facts).release());
    for (std::size_t channel = 0; channel < recording.calibrations.size(); ++channel) {
        record->AddTrackDesc(MakeTrack(document, channel).release(), -1);
        (void)document.document().SetITrack(MakeTransducer(document, channel).release(), 0);
    }
    (void)document.document().SetRecord(record.release(), 0);
}

} // namespace zmxf
