#include "tools/zmxf/showing/recording_json.h"

namespace zmxf {

double SecondsOf(const ZelmResult::strEnregHeader& header) { return static_cast<double>(header.RecordLength) * 1e-7; }

std::string DateText(const ZelmResult::OSYSTEMTIME& date)
{
    ZelmResult::OFILETIME ticks;
    if (!ZelmResult::SystemTimeToFileTime(date, ticks)) return {};
    return ZelmResult::OTimeToDateString(ZelmResult::OFileTime::fromFILETIME(ticks).toOTime());
}

namespace {

using ZelmResult::CRecord;
using ZelmResult::CZMTrackDesc;
using ZelmResult::strEnregHeader;

Json TrackJson(std::int32_t key, const CZMTrackDesc& track, ValueTexts texts)
{
    const auto quantity = ZelmResult::LabelledQuantity::Of(track.YMagnitude);
    Json json{{"track", key},
              {"id", IdnText(track.TrackIdn)},
              {"name", JsonText(track.Name)},
              {"comment", JsonText(track.Comment)},
              {"sampleRate", JsonNumber(track.SampleFrequency)},
              {"format", track.Format},
              {"firstBlock", track.FirstBlock},
              {"lastBlock", track.LastBlock},
              {"blockSize", track.BlockSize},
              {"offset", track.Offset},
              {"disk", track.DiskIndex},
              {"overload", track.Overload},
              {"minimum", JsonNumber(track.Min)},
              {"maximum", JsonNumber(track.Max)},
              {"step", JsonNumber(track.XStep)},
              {"voltsPerCount", JsonNumber(track.ConvLogToVolt)},
              {"sensitivity", JsonNumber(track.Sensitivity)},
              {"voltOffset", JsonNumber(track.YOffset)},
              {"quantity", QuantityJson(quantity)}};
    if (texts == ValueTexts::With) {
        json["minimumText"] = ValueText(track.Min, quantity, {}, Scale::Linear);
        json["maximumText"] = ValueText(track.Max, quantity, {}, Scale::Linear);
    }
    return json;
}

Json DiskJson(const ZelmResult::CRecordInfo& disk)
{
    ZelmResult::strFileInfo counts;
    (void)disk.getFileInfo().getData(&counts);
    Json json{{"tracks", counts.NbrTracks}, {"files", Json::array()}};
    for (const ZelmResult::CFileBlockInfo* file : disk.fileBlockInfos()) {
        ZelmResult::strFileBlockInfo blocks;
        (void)file->getData(&blocks);
        json["files"].push_back({{"firstBlock", blocks.FileBlocStartNbr}, {"lastBlock", blocks.FileBlocEndNbr}});
    }
    return json;
}

Json RecordJson(const CRecord& record, ValueTexts texts)
{
    const strEnregHeader& header = record.getRecordHeaderstr();
    Json json{{"name", JsonText(header.Name)}, {"date", DateText(header.RecordDate)},
              {"seconds", SecondsOf(header)},  {"sampleRate", header.SampleFrequency},
              {"blockSize", header.BlockSize}, {"records", header.NbrRecord},
              {"markers", header.NbrMarker},   {"converted", record.getRecordHeader().IsConvertedSignal()},
              {"disks", Json::array()},        {"tracks", Json::array()}};
    for (const auto* disk : record.recordInfos()) json["disks"].push_back(DiskJson(*disk));
    for (const auto& [key, track] : record.tracks()) json["tracks"].push_back(TrackJson(key, *track, texts));
    return json;
}

} // namespace

Json RecordingJson(const ZelmResult::StoredRecording& stored, ValueTexts texts)
{
    Json json{{"system", stored.system()},
              {"whole", !stored.damage()},
              {"recording", stored.record() != nullptr ? RecordJson(*stored.record(), texts) : Json(nullptr)},
              {"transducers", Json::array()}};
    for (const ZelmResult::CITrack* track : stored.transducers())
        json["transducers"].push_back({{"id", JsonText(track->id())},
                                       {"type", JsonText(track->type())},
                                       {"serialNumber", JsonText(track->serialNb())},
                                       {"model", JsonText(track->model())},
                                       {"manufacturer", JsonText(track->manu())}});
    return json;
}

} // namespace zmxf
