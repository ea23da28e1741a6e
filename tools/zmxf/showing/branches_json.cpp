#include "tools/zmxf/showing/branches_json.h"

#include "tools/zmxf/base/text.h"
#include "tools/zmxf/showing/setting_text.h"
#include "zelmresult/support/text.h"

namespace zmxf {

namespace {

using ZelmResult::CITrack;
using ZelmResult::CRecord;
using ZelmResult::CReglageData;
using ZelmResult::CZMTrackDesc;
using ZelmResult::StoredRecording;
using ZelmResult::StoredSettings;
using ZelmResult::strEnregHeader;

Json SettingJson(const CReglageData& setting)
{
    const DescribedSetting described = Describe(setting);
    Json json{{"id", IdnText(setting.GetIdn())},          {"kind", described.kind},         {"type", setting.GetType()},
              {"title", JsonText(setting.titleString())}, {"visible", setting.isVisible()}, {"value", described.value}};
    for (const CReglageData* child : described.children) json["settings"].push_back(SettingJson(*child));
    return json;
}

Json SubmoduleJson(const ZelmResult::CSousModuleData& submodule)
{
    Json json{{"id", IdnText(submodule.GetIdn())},
              {"title", JsonText(submodule.titleString())},
              {"visible", submodule.isVisible()},
              {"settings", Json::array()}};
    for (const CReglageData* setting : submodule.settings()) json["settings"].push_back(SettingJson(*setting));
    return json;
}

Json ModuleJson(const ZelmResult::CModuleData& module)
{
    Json json{{"id", IdnText(module.GetIdn())},
              {"title", JsonText(module.debugString())},
              {"visible", module.isVisible()},
              {"submodules", Json::array()}};
    for (const auto* submodule : module.submodules()) json["submodules"].push_back(SubmoduleJson(*submodule));
    return json;
}

} // namespace

Json SettingsJson(const StoredSettings& stored)
{
    const ZelmResult::VersionTavide& version = stored.tree->versionTavide();
    const bool isWhole = !stored.damage;
    Json json{{"system", stored.system}, {"whole", isWhole}, {"application", nullptr}, {"modules", Json::array()}};
    if (isWhole)
        json["application"] = {{"major", version.major}, {"minor", version.minor}, {"build", JsonText(version.build)}};
    for (const auto* module : stored.tree->modules()) json["modules"].push_back(ModuleJson(*module));
    return json;
}

double RecordedSeconds(const strEnregHeader& header) { return static_cast<double>(header.RecordLength) * 1e-7; }

std::string DateText(const ZelmResult::SYSTEMTIME& date)
{
    ZelmResult::FILETIME ticks;
    if (!ZelmResult::SystemTimeToFileTime(date, ticks)) return {};
    return ZelmResult::OTimeToDateString(ZelmResult::OFileTime::fromFILETIME(ticks).toOTime());
}

namespace {

Json TrackJson(std::int32_t key, const CZMTrackDesc& track)
{
    return {{"track", key},
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
            {"quantity", QuantityJson(ZelmResult::LabelledQuantity::Of(track.YMagnitude))}};
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

Json RecordJson(const CRecord& record)
{
    const strEnregHeader& header = record.getRecordHeaderstr();
    Json json{{"name", JsonText(header.Name)},
              {"date", DateText(header.RecordDate)},
              {"seconds", RecordedSeconds(header)},
              {"sampleRate", header.SampleFrequency},
              {"blockSize", header.BlockSize},
              {"records", header.NbrRecord},
              {"markers", header.NbrMarker},
              {"converted", record.getRecordHeader().IsConvertedSignal()},
              {"disks", Json::array()},
              {"tracks", Json::array()}};
    for (const auto* disk : record.recordInfos()) json["disks"].push_back(DiskJson(*disk));
    for (const auto& [key, track] : record.tracks()) json["tracks"].push_back(TrackJson(key, *track));
    return json;
}

} // namespace

Json RecordingJson(const StoredRecording& stored)
{
    Json json{{"system", stored.system()},
              {"whole", !stored.damage()},
              {"recording", stored.record() != nullptr ? RecordJson(*stored.record()) : Json(nullptr)},
              {"transducers", Json::array()}};
    for (const CITrack* track : stored.transducers())
        json["transducers"].push_back({{"id", JsonText(track->id())},
                                       {"type", JsonText(track->type())},
                                       {"serialNumber", JsonText(track->serialNb())},
                                       {"model", JsonText(track->model())},
                                       {"manufacturer", JsonText(track->manu())}});
    return json;
}

} // namespace zmxf
