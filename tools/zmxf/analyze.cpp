#include "tools/zmxf/files.h"
#include "tools/zmxf/verbs.h"

#include <charconv>
#include <cmath>
#include <iostream>
#include <memory>

namespace zmxf {

namespace {

struct AnalyzeOptions {
    std::string recording;
    std::vector<std::string> units;
    std::vector<double> fullScales;
    std::string document;
};

// A problem for CLI11 to report, or nothing.
std::string CheckFullScale(const std::string& text)
{
    double value = 0.0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    const bool good = error == std::errc() && stop == end && std::isfinite(value) && value > 0.0;
    return good ? std::string() : text + " is not a positive number";
}

// The value of a channel from a list that holds one value for all channels or one for each.
template <class T>
const T& ForChannel(const std::vector<T>& values, std::size_t channel)
{
    return values.size() == 1 ? values.front() : values[channel];
}

template <class T>
void CheckCount(const std::vector<T>& values, std::size_t channels, const std::string& option)
{
    if (values.size() > 1 && values.size() != channels)
        throw CLI::ValidationError(option, "give one value for all channels or one for each of the " +
                                               std::to_string(channels));
}

std::vector<Calibration> Calibrations(const AnalyzeOptions& options)
{
    const std::size_t channels = RecordingReader(options.recording).facts().channels;
    CheckCount(options.units, channels, "--unit");
    CheckCount(options.fullScales, channels, "--full-scale");
    std::vector<Calibration> calibrations(channels);
    for (std::size_t i = 0; i < channels; ++i) {
        if (!options.units.empty()) calibrations[i].unit = ForChannel(options.units, i);
        if (!options.fullScales.empty()) calibrations[i].fullScale = ForChannel(options.fullScales, i);
    }
    return calibrations;
}

void RunAnalyze(const AnalyzeOptions& options)
{
    std::cout << LevelTable(Analyze(options.recording, Calibrations(options), options.document)) << "Written to "
              << options.document << '\n';
}

} // namespace

CalibratedRecording Analyze(const std::string& recording, const std::vector<Calibration>& calibrations,
                            const std::string& document)
{
    CheckOutput(document, recording);
    CalibratedRecording analyzed{recording, MeasureRecording(recording), calibrations};
    WriteLevelDocument(analyzed, document);
    return analyzed;
}

void AddAnalyzeVerb(CLI::App& program)
{
    auto options = std::make_shared<AnalyzeOptions>();
    CLI::App* verb = program.add_subcommand("analyze", "Measures the levels of a recording into a result document");
    verb->add_option("REC", options->recording, "Recording: WAV, FLAC and what else libsndfile reads")->required();
    CLI::Option* unit = verb->add_option("--unit", options->units,
                                         "Unit of the values: one for all channels, or m/s2,m/s2,V for three. Without "
                                         "it the recording counts as uncalibrated")
                            ->delimiter(',')
                            ->allow_extra_args(false)
                            ->check(CLI::IsMember(UnitNames()));
    verb->add_option("--full-scale", options->fullScales,
                     "What full scale of the recording stands for in the unit, 1 when not given; one for all channels "
                     "or one for each")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->check(CheckFullScale, "NUMBER")
        ->needs(unit);
    verb->add_option("-o,--output", options->document, "Document to write")->required();
    verb->footer("Example:\n  zmxf analyze pump.wav --unit m/s2 --full-scale 50 -o pump.zmxf");
    verb->callback([options] { RunAnalyze(*options); });
}

} // namespace zmxf
