#include "tools/zmxf/verbs/analyze.h"

#include "tools/zmxf/base/files.h"
#include "tools/zmxf/base/progress.h"
#include "tools/zmxf/base/text.h"
#include "tools/zmxf/measuring/warnings.h"
#include "tools/zmxf/showing/report.h"
#include "tools/zmxf/verbs/verbs.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <fmt/format.h>
#include <functional>
#include <iostream>
#include <memory>
#include <optional>

namespace zmxf {

namespace {

struct AnalyzeOptions {
    std::string recording;
    std::vector<std::string> units;
    std::vector<double> fullScales;
    std::size_t blockSize = 0; // 0: not given
    std::int64_t averages = SpectrumMeter::kAllBlocks;
    Window window = Window::Hann;
    std::size_t reference = 1;
    std::size_t tacho = 0; // 0: not given
    double pulses = 1.0;
    std::vector<double> orders = TachoSettings().orders;
    bool disk = false;
    std::string document;
};

// A problem for CLI11 to report, or nothing.
std::string CheckPositive(const std::string& text)
{
    double value = 0.0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    const bool good = error == std::errc() && stop == end && std::isfinite(value) && value > 0.0;
    return good ? std::string() : fmt::format("{} is not a positive number", text);
}

std::string CheckBlockSize(const std::string& text)
{
    std::size_t value = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error == std::errc() && stop == end && IsBlockSize(value)) return {};
    return fmt::format("{} is not an even number from {} to {} without a prime factor above 5", text, kSmallestBlock,
                       kLargestBlock);
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
        throw CLI::ValidationError(option,
                                   fmt::format("give one value for all channels or one for each of the {}", channels));
}

void CheckReference(const AnalyzeOptions& options, std::size_t channels)
{
    if (channels == 1 && options.reference != 1)
        throw CLI::ValidationError("--reference", "the recording has one channel, so there is nothing to compare");
    if (options.reference < 1 || options.reference > channels)
        throw CLI::ValidationError("--reference", fmt::format("give a channel from 1 to {}", channels));
}

std::optional<TachoSettings> Tacho(const AnalyzeOptions& options, std::size_t channels)
{
    if (options.tacho == 0) return std::nullopt;
    if (options.tacho > channels)
        throw CLI::ValidationError("--tacho", fmt::format("give a channel from 1 to {}", channels));
    return TachoSettings{options.tacho - 1, options.pulses, options.orders};
}

std::vector<Calibration> Calibrations(const AnalyzeOptions& options, std::size_t channels)
{
    CheckCount(options.units, channels, "--unit");
    CheckCount(options.fullScales, channels, "--full-scale");
    std::vector<Calibration> calibrations(channels);
    for (std::size_t i = 0; i < channels; ++i) {
        if (!options.units.empty()) calibrations[i].unit = ForChannel(options.units, i);
        if (options.fullScales.empty()) continue;
        calibrations[i].fullScale = ForChannel(options.fullScales, i);
        calibrations[i].hasFullScale = true;
    }
    return calibrations;
}

// What blocks that overlap by half make of a recording whose length is known.
std::size_t MostSlices(const std::string& recording, std::size_t blockSize)
{
    const std::int64_t frames = RecordingReader(recording).facts().frames;
    return frames == INT64_MAX ? 0 : static_cast<std::size_t>(frames) / (blockSize / 2);
}

MeasuredRecording Measure(const std::string& recording, const SpectrumSettings& settings)
{
    Progress progress(fmt::format("measuring {}", Printable(recording)));
    return MeasureRecording(recording, settings, std::ref(progress));
}

void RunAnalyze(const AnalyzeOptions& options)
{
    const std::size_t channels = RecordingReader(options.recording).facts().channels;
    CheckReference(options, channels);
    const SpectrumSettings settings{options.blockSize, options.averages, options.reference - 1, options.window,
                                    Tacho(options, channels)};
    const auto analyzed = Analyze(options.recording, Calibrations(options, channels), settings, options.document,
                                  options.disk ? SliceStorage::Disk : SliceStorage::Memory);
    std::cout << MeasurementReport(analyzed) << "Written to " << options.document << '\n';
}

} // namespace

CalibratedRecording Analyze(const std::string& recording, const std::vector<Calibration>& calibrations,
                            const SpectrumSettings& settings, const std::string& document, SliceStorage storage)
{
    CheckOutput(document, recording);
    const std::size_t blockSize = settings.blockSize != 0 ? settings.blockSize : MeasuredRecording::kDefaultBlock;
    CheckDocumentHolds(calibrations.size(), blockSize, settings.tacho ? MostSlices(recording, blockSize) : 0);
    CalibratedRecording analyzed{recording, Measure(recording, settings), calibrations};
    WriteMeasuredDocument(analyzed, document, storage);
    for (const std::string& warning : Warnings(analyzed)) std::cerr << "zmxf: warning: " << warning << '\n';
    return analyzed;
}

void AddAnalyzeVerb(CLI::App& program)
{
    auto options = std::make_shared<AnalyzeOptions>();
    CLI::App* verb =
        program.add_subcommand("analyze", "Measures levels and spectra of a recording into a result document");
    verb->add_option("REC", options->recording, "Recording: WAV, FLAC and what else libsndfile reads")->required();
    CLI::Option* unit = verb->add_option("--unit", options->units,
                                         "Unit of the values: one for all channels, or m/s2,m/s2,V for three. Without "
                                         "it the recording counts as uncalibrated")
                            ->delimiter(',')
                            ->allow_extra_args(false)
                            ->check(CLI::IsMember(UnitNames()));
    verb->add_option("--full-scale", options->fullScales,
                     "The value of full scale in the unit, 1 when not given; one for all channels "
                     "or one for each")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->check(CheckPositive, "NUMBER")
        ->needs(unit);
    verb->add_option("--block-size", options->blockSize,
                     fmt::format("Samples per spectrum, {} when not given; a shorter recording takes what it has",
                                 MeasuredRecording::kDefaultBlock))
        ->check(CheckBlockSize, "NUMBER");
    verb->add_option("--window", options->window,
                     "What weights blocks: hann, or uniform for a blow, which begins and ends within a block")
        ->transform(CLI::CheckedTransformer(
            std::vector<std::pair<std::string, Window>>{{"hann", Window::Hann}, {"uniform", Window::Uniform}}))
        ->option_text("hann|uniform");
    verb->add_option("--averages", options->averages, "Average at most that many blocks, all when not given")
        ->check(CheckWholeNumber(1));
    verb->add_option("--reference", options->reference, "The channel that coherence and H1 compare the others with")
        ->check(CheckWholeNumber(1))
        ->capture_default_str();
    CLI::Option* tacho =
        verb->add_option(
                "--tacho", options->tacho,
                "The channel with the pulses of a tacho: cuts the recording into slices with a speed each, and "
                "stores waterfalls of them")
            ->check(CheckWholeNumber(1));
    verb->add_option("--pulses", options->pulses, "Pulses of the tacho per revolution, a fraction too")
        ->check(CLI::Range(0.001, 100000.0))
        ->needs(tacho)
        ->capture_default_str();
    verb->add_option("--orders", options->orders,
                     "Multiples of the speed to follow, such as 0.5,1,23; 1,2,4 when not given")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->check(CheckPositive, "NUMBER")
        ->needs(tacho);
    verb->add_flag("--disk", options->disk, "Keep the slices in a temporary file while they are made, not in memory")
        ->needs(tacho);
    verb->add_option("-o,--output", options->document, "Document to write")->required();
    verb->footer("Example:\n  zmxf analyze pump.wav --unit m/s2 --full-scale 50 -o pump.zmxf");
    verb->callback([options] { RunAnalyze(*options); });
}

} // namespace zmxf
