#include "tools/zmxf/base/open_document.h"
#include "tools/zmxf/base/text.h"
#include "tools/zmxf/showing/description.h"
#include "tools/zmxf/showing/value_text.h"
#include "tools/zmxf/verbs/verbs.h"
#include "zelmresult/support/text.h"

#include <fmt/format.h>
#include <iostream>

namespace zmxf {

namespace {

using Align = TextTable::Align;
using ZelmResult::CITrack;
using ZelmResult::CRecord;
using ZelmResult::CZMTrackDesc;
using ZelmResult::StoredRecording;
using ZelmResult::strEnregHeader;

double Seconds(const strEnregHeader& header) { return static_cast<double>(header.RecordLength) * 1e-7; }

// Empty for no date.
std::string DateText(const ZelmResult::SYSTEMTIME& date)
{
    ZelmResult::FILETIME ticks;
    if (!ZelmResult::SystemTimeToFileTime(date, ticks)) return {};
    return ZelmResult::OTimeToDateString(ZelmResult::OFileTime::fromFILETIME(ticks).toOTime());
}

// ---- JSON ----

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
            {"quantity", QuantityJson(track.YMagnitude)}};
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
    Json json{{"name", JsonText(header.Name)}, {"date", DateText(header.RecordDate)},
              {"seconds", Seconds(header)},    {"sampleRate", header.SampleFrequency},
              {"blockSize", header.BlockSize}, {"records", header.NbrRecord},
              {"markers", header.NbrMarker},   {"converted", record.getRecordHeader().IsConvertedSignal()},
              {"disks", Json::array()},        {"tracks", Json::array()}};
    for (const auto* disk : record.recordInfos()) json["disks"].push_back(DiskJson(*disk));
    for (const auto& [key, track] : record.tracks()) json["tracks"].push_back(TrackJson(key, *track));
    return json;
}

Json SystemJson(const StoredRecording& stored)
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

// ---- Text ----

std::string TrackTable(const CRecord& record)
{
    using enum TextTable::Align;
    TextTable table({Right, Left, Left, Right, Right, Right, Right, Left, Left});
    table.AddRow({"Track", "Name", "Quantity", "Rate", "Blocks", "Lowest", "Highest", "Overload", "Comment"});
    for (const auto& [key, track] : record.tracks())
        table.AddRow({std::to_string(key), Printable(track->Name),
                      track->YMagnitude != nullptr ? Printable(track->YMagnitude->quantityName()) : "none",
                      fmt::format("{} Hz", NumberText(static_cast<double>(track->SampleFrequency))),
                      fmt::format("{} to {}", track->FirstBlock, track->LastBlock),
                      ValueText(track->Min, track->YMagnitude, {}, Scale::Linear),
                      ValueText(track->Max, track->YMagnitude, {}, Scale::Linear), track->Overload ? "yes" : "no",
                      Printable(track->Comment)});
    return table.Text("  ");
}

std::string RecordText(const CRecord& record)
{
    const strEnregHeader& header = record.getRecordHeaderstr();
    const std::string date = DateText(header.RecordDate);
    return fmt::format("{}{}{}, {} Hz, {} s, {}\n{}", Printable(header.Name), date.empty() ? "" : ", ", date,
                       NumberText(header.SampleFrequency), NumberText(Seconds(header)),
                       Counted(record.tracks().size(), "track"), TrackTable(record));
}

std::string TransducerTable(const std::vector<CITrack*>& transducers)
{
    if (transducers.empty()) return {};
    TextTable table(std::vector<Align>(5, Align::Left));
    table.AddRow({"Transducer", "Type", "Serial number", "Model", "Manufacturer"});
    for (const CITrack* track : transducers)
        table.AddRow({Printable(track->id()), Printable(track->type()), Printable(track->serialNb()),
                      Printable(track->model()), Printable(track->manu())});
    return table.Text("  ");
}

void RunTracks(const DocumentOptions& options)
{
    const auto all = OpenDocument(options.document).ReadRecordings();
    if (options.json) {
        Json json{{"file", options.document}, {"systems", Json::array()}};
        for (const auto& stored : all) json["systems"].push_back(SystemJson(stored));
        std::cout << JsonDocument(json);
        return;
    }
    for (const auto& stored : all)
        std::cout << "System " << stored.system() << ": "
                  << (stored.record() != nullptr ? RecordText(*stored.record()) : "no recording\n")
                  << TransducerTable(stored.transducers())
                  << (!stored.damage() ? "" : "  The rest is damaged and could not be read.\n");
}

} // namespace

void AddTracksVerb(CLI::App& program)
{
    AddDocumentVerb(program, {"tracks", "Shows the recording that the results of a document were made from",
                              "zmxf tracks pump.zmxf", RunTracks});
}

} // namespace zmxf
