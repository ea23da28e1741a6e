#include "tools/zmxf/base/open_document.h"
#include "tools/zmxf/base/text.h"
#include "tools/zmxf/showing/recording_json.h"
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
using ZelmResult::strEnregHeader;

std::string TrackTable(const CRecord& record)
{
    using enum TextTable::Align;
    TextTable table({Right, Left, Left, Right, Right, Right, Right, Left, Left});
    table.AddRow({"Track", "Name", "Quantity", "Rate", "Blocks", "Lowest", "Highest", "Overload", "Comment"});
    for (const auto& [key, track] : record.tracks()) {
        const auto quantity = ZelmResult::LabelledQuantity::Of(track->YMagnitude);
        table.AddRow({std::to_string(key), Printable(track->Name), quantity ? Printable(quantity->name) : "none",
                      fmt::format("{} Hz", NumberText(static_cast<double>(track->SampleFrequency))),
                      fmt::format("{} to {}", track->FirstBlock, track->LastBlock),
                      ValueText(track->Min, quantity, {}, Scale::Linear),
                      ValueText(track->Max, quantity, {}, Scale::Linear), track->Overload ? "yes" : "no",
                      Printable(track->Comment)});
    }
    return table.Text("  ");
}

std::string RecordText(const CRecord& record)
{
    const strEnregHeader& header = record.getRecordHeaderstr();
    const std::string date = DateText(header.RecordDate);
    return fmt::format("{}{}{}, {} Hz, {} s, {}\n{}", Printable(header.Name), date.empty() ? "" : ", ", date,
                       NumberText(header.SampleFrequency), NumberText(SecondsOf(header)),
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
        for (const auto& stored : all) json["systems"].push_back(RecordingJson(stored));
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
