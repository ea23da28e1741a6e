#include "tools/zmxf/verbs/analyze.h"

#include "tools/zmxf/base/failure.h"
#include "tools/zmxf/base/files.h"
#include "tools/zmxf/base/progress.h"
#include "tools/zmxf/base/text.h"
#include "tools/zmxf/measuring/warnings.h"
#include "tools/zmxf/showing/report.h"
#include "tools/zmxf/verbs/analyze_options.h"
#include "tools/zmxf/verbs/verbs.h"

#include <fmt/format.h>
#include <functional>
#include <iostream>
#include <map>
#include <new>

namespace zmxf {

namespace {

// What blocks that overlap by half make of a recording whose length is known.
std::size_t MostSlices(const RecordingFacts& facts, std::size_t blockSize)
{
    return facts.frames == INT64_MAX ? 0 : static_cast<std::size_t>(facts.frames) / (blockSize / 2);
}

void AnalyzeOne(const AnalyzeOptions& options, const std::string& recording, const std::string& document)
{
    auto reader = std::make_shared<RecordingReader>(SourceOf(options, recording));
    for (const std::string& tone : options.tones) CheckOutput(document, tone);
    const RecordingFacts& facts = reader->facts();
    const SpectrumSettings settings = SettingsOf(options, facts.channels);
    const auto analyzed = Analyze({reader, CalibrationsOf(options, facts), ChannelNamesOf(options, facts)}, settings,
                                  document, options.disk ? SliceStorage::Disk : SliceStorage::Memory);
    std::cout << MeasurementReport(analyzed) << "Written to " << Printable(document) << '\n';
}

bool IsFolder(const AnalyzeOptions& options) { return options.recordings.size() > 1 || NamesFolder(options.output); }

// pump.zmxf in the folder for .../pump.wav
std::string DocumentIn(const std::string& folder, const std::string& recording)
{
    std::string name = BaseName(recording);
    const std::size_t dot = name.rfind('.');
    if (dot != std::string::npos && dot != 0) name.erase(dot);
    return InFolder(folder, name + ".zmxf");
}

// The document of each recording. No two are the same, and none replaces another recording.
std::vector<std::string> Documents(const AnalyzeOptions& options)
{
    std::vector<std::string> documents;
    std::map<std::string, std::string> recordingOf;
    for (const std::string& recording : options.recordings) {
        documents.push_back(DocumentIn(options.output, recording));
        const auto [former, isNew] = recordingOf.emplace(FileKey(documents.back()), recording);
        if (!isNew)
            throw CLI::ValidationError(
                "--output", fmt::format("{} and {} would both become {}", former->second, recording, documents.back()));
    }
    for (const std::string& recording : options.recordings)
        if (recordingOf.contains(FileKey(recording)))
            throw CLI::ValidationError("--output", fmt::format("{} would be replaced", recording));
    return documents;
}

// Empty when it succeeds.
std::string WhyNot(const AnalyzeOptions& options, const std::string& recording, const std::string& document)
{
    try {
        AnalyzeOne(options, recording, document);
        return {};
    } catch (const CLI::ParseError& error) {
        return fmt::format("{}: {}", recording, error.what());
    } catch (const std::bad_alloc&) {
        return fmt::format("{}: not enough memory", recording);
    } catch (const std::runtime_error& error) {
        return error.what();
    }
}

void AnalyzeAll(const AnalyzeOptions& options)
{
    const std::vector<std::string> documents = Documents(options);
    MakeFolder(options.output);
    CheckOutputs(documents, options.recordings);
    bool isGood = true;
    for (std::size_t i = 0; i < documents.size(); ++i) {
        const std::string why = WhyNot(options, options.recordings[i], documents[i]);
        if (why.empty()) continue;
        isGood = false;
        PrintFailure(why);
    }
    if (!isGood) throw ExitStatus{1};
}

} // namespace

CalibratedRecording Analyze(CalibratedRecording recording, const SpectrumSettings& settings,
                            const std::string& document, SliceStorage storage)
{
    CheckOutput(document, recording.path());
    const std::size_t blockSize = settings.blockSize != 0 ? settings.blockSize : MeasuredRecording::kDefaultBlock;
    CheckDocumentHolds(recording.calibrations.size(), blockSize,
                       settings.tacho ? MostSlices(recording.reader->facts(), blockSize) : 0);
    {
        Progress progress(fmt::format("measuring {}", Printable(recording.path())));
        recording.measured = MeasureRecording(*recording.reader, settings, std::ref(progress));
    }
    WriteMeasuredDocument(recording, document, storage);
    for (const std::string& warning : Warnings(recording)) PrintWarning(warning);
    return recording;
}

void AddAnalyzeVerb(CLI::App& program)
{
    auto options = std::make_shared<AnalyzeOptions>();
    CLI::App* verb = program.add_subcommand(
        "analyze", "Measures levels and spectra of recordings into result documents, one for each");
    AddAnalyzeOptions(*verb, options);
    verb->footer("Example:\n  zmxf analyze pump.wav --unit m/s2 --full-scale 50 -o pump.zmxf");
    verb->callback([options] {
        if (options->output == "-")
            throw CLI::ValidationError("--output",
                                       "a document can't go to standard output; ./- is a file of that name");
        if (IsFolder(*options))
            AnalyzeAll(*options);
        else
            AnalyzeOne(*options, options->recordings.front(), options->output);
    });
}

} // namespace zmxf
