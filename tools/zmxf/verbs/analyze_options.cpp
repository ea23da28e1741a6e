#include "tools/zmxf/verbs/analyze_options.h"

#include "tools/zmxf/base/text.h"
#include "tools/zmxf/verbs/verbs.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <fmt/format.h>
#include <map>

namespace zmxf {

namespace {

using Options = std::shared_ptr<AnalyzeOptions>;

bool IsNumber(const std::string& text, double& value)
{
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    return error == std::errc() && stop == end && std::isfinite(value);
}

// A problem for CLI11 to report, or nothing.
std::string CheckPositive(const std::string& text)
{
    double value = 0.0;
    return IsNumber(text, value) && value > 0.0 ? std::string() : fmt::format("{} is not a positive number", text);
}

std::string CheckSeconds(const std::string& text)
{
    double value = 0.0;
    return IsNumber(text, value) && value >= 0.0 ? std::string() : fmt::format("{} is no time in seconds", text);
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

Calibration OfUnit(const AnalyzeOptions& options, std::size_t channel, const std::string& recorded)
{
    Calibration calibration{options.units.empty() ? recorded : ForChannel(options.units, channel)};
    calibration.isRecorded = options.units.empty() && calibration.IsKnown();
    if (options.fullScales.empty()) return calibration;
    calibration.fullScale = ForChannel(options.fullScales, channel);
    calibration.hasFullScale = true;
    return calibration;
}

Calibration OfSensor(const AnalyzeOptions& options, std::size_t channel, bool isInVolts)
{
    if (isInVolts && !options.ranges.empty())
        throw CLI::ValidationError("--range", "the recording says that its values are volts");
    if (!isInVolts && options.ranges.empty())
        throw CLI::ValidationError("--sensitivity", "needs --range too, the volts of full scale");
    const auto range = options.ranges.empty() ? std::nullopt : std::optional(ForChannel(options.ranges, channel));
    return BySensitivity(ForChannel(options.sensitivities, channel), range);
}

// Takes an option of many values, each of which parse reads. what says what they are.
template <class T>
CLI::Option* AddParsed(CLI::App& verb, const std::string& name, std::vector<T>& target, const std::string& help,
                       std::optional<T> (*parse)(const std::string&), const std::string& what)
{
    return verb
        .add_option_function<std::vector<std::string>>(
            name,
            [&target, name, parse, what](const std::vector<std::string>& texts) {
                for (const std::string& text : texts) {
                    const auto value = parse(text);
                    if (!value) throw CLI::ValidationError(name, fmt::format("{} is no {}", text, what));
                    target.push_back(*value);
                }
            },
            help)
        ->delimiter(',')
        ->allow_extra_args(false);
}

void AddSensorOptions(CLI::App& verb, const Options& options)
{
    CLI::Option* sensitivity =
        AddParsed(verb, "--sensitivity", options->sensitivities,
                  "What the sensor gives, such as 100mV/g, instead of a unit; one for all channels or one for each",
                  ParseSensitivity, "sensitivity, such as 100mV/g");
    AddParsed(verb, "--range", options->ranges, "The volts of full scale, such as 10V, with --sensitivity", ParseVolts,
              "voltage, such as 10V")
        ->needs(sensitivity);
    CLI::Option* calibrator = verb.add_option_function<std::string>(
        "--calibrator",
        [options](const std::string& text) {
            options->calibrator = ParseCalibrator(text);
            if (!options->calibrator)
                throw CLI::ValidationError("--calibrator",
                                           fmt::format("{} is no level, such as 94dB or an RMS value as 10m/s2", text));
        },
        "The level of the tone in --calibration, such as 94dB or an RMS value as 10m/s2, instead of a unit");
    CLI::Option* tone = verb.add_option("--calibration", options->tones,
                                        "Recording of the calibrator's tone; one for all channels or one for each, - "
                                        "for a channel without")
                            ->delimiter(',')
                            ->allow_extra_args(false)
                            ->needs(calibrator);
    calibrator->needs(tone);
    for (CLI::Option* option : {sensitivity, calibrator}) option->excludes("--unit");
    sensitivity->excludes(calibrator);
}

void AddRecordingOptions(CLI::App& verb, const Options& options)
{
    verb.add_option("REC", options->recordings,
                    "Recordings: WAV, FLAC and what else libsndfile reads, CSV, UFF 58 and 58b")
        ->required();
    verb.add_option("--start", options->start, "Measure from this time on, in seconds")->check(CheckSeconds, "SECONDS");
    verb.add_option("--end", options->end, "Measure up to this time, in seconds")->check(CheckPositive, "SECONDS");
    verb.add_option("--channel-names", options->channelNames,
                    "A name for each channel, such as bearing,casing; without them those that the recording has")
        ->delimiter(',')
        ->allow_extra_args(false);
}

void AddCsvOptions(CLI::App& verb, const Options& options)
{
    const auto asRate = [](const std::string& text) {
        double value = 0.0;
        return IsNumber(text, value) && value >= kLowestRate && value <= kHighestRate
                   ? std::string()
                   : fmt::format("{} is no rate in Hz", text);
    };
    verb.add_option("--rate", options->csv.rate, "Of CSV: samples per second")->check(asRate, "HZ");
    verb.add_option("--time-column", options->csv.timeColumn,
                    "Of CSV: the column that holds times, from 1 on; it tells the rate, and is no channel. 0 for none; "
                    "without it a first column that is called a time and is one")
        ->check(CheckWholeNumber(0));
    verb.add_option("--delimiter", options->csv.delimiter,
                    "Of CSV: what is between columns, a comma, semicolon, tab or blank; by the content when not given")
        ->transform(AsDelimiter());
    verb.add_option("--decimal", options->csv.decimal, "Of CSV: the decimal mark, by the content when not given")
        ->check(CLI::IsMember({".", ","}))
        ->option_text(".|,");
    verb.add_option("--skip", options->csv.skip, "Of CSV: lines at the start to leave out")->check(CheckWholeNumber(1));
}

void AddCalibrationOptions(CLI::App& verb, const Options& options)
{
    CLI::Option* unit = verb.add_option("--unit", options->units,
                                        "Unit of the values: one for all channels, or m/s2,m/s2,V for three. Without "
                                        "it that of the recording, if it names one")
                            ->delimiter(',')
                            ->allow_extra_args(false)
                            ->check(CLI::IsMember(UnitNames()));
    verb.add_option("--full-scale", options->fullScales,
                    "The value of full scale in the unit, 1 when not given; one for all channels "
                    "or one for each")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->check(CheckPositive, "NUMBER")
        ->needs(unit);
}

void AddSpectrumOptions(CLI::App& verb, const Options& options)
{
    verb.add_option("--block-size", options->blockSize,
                    fmt::format("Samples per spectrum, {} when not given; a shorter recording takes what it has",
                                MeasuredRecording::kDefaultBlock))
        ->check(CheckBlockSize, "NUMBER");
    const std::map<std::string, Window> windows{
        {"hann", Window::Hann}, {"uniform", Window::Uniform}, {"flattop", Window::FlatTop}};
    verb.add_option_function<std::string>(
            "--window", [options, windows](const std::string& name) { options->window = windows.at(name); },
            "What weights blocks: hann; uniform for a blow, which begins and ends within a block; flattop for "
            "the levels of tones")
        ->check(CLI::IsMember({"hann", "uniform", "flattop"}))
        ->option_text("hann|uniform|flattop");
    verb.add_option("--averages", options->averages, "Average at most that many blocks, all when not given")
        ->check(CheckWholeNumber(1));
    verb.add_option("--reference", options->reference, "The channel that coherence and H1 compare the others with")
        ->check(CheckWholeNumber(1))
        ->capture_default_str();
}

void AddRunUpOptions(CLI::App& verb, const Options& options)
{
    CLI::Option* tacho =
        verb.add_option("--tacho", options->tacho,
                        "The channel with the pulses of a tacho: cuts the recording into slices with a speed each, and "
                        "stores waterfalls of them")
            ->check(CheckWholeNumber(1));
    verb.add_option("--pulses", options->pulses, "Pulses of the tacho per revolution, a fraction too")
        ->check(CLI::Range(0.001, 100000.0))
        ->needs(tacho)
        ->capture_default_str();
    verb.add_option("--orders", options->orders,
                    "Multiples of the speed to follow, such as 0.5,1,23; 1,2,4 when not given")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->check(CheckPositive, "NUMBER")
        ->needs(tacho);
    verb.add_flag("--disk", options->disk, "Keep the slices in a temporary file while they are made, not in memory")
        ->needs(tacho);
}

} // namespace

void AddAnalyzeOptions(CLI::App& verb, const Options& options)
{
    AddRecordingOptions(verb, options);
    AddCsvOptions(verb, options);
    AddCalibrationOptions(verb, options);
    AddSensorOptions(verb, options);
    AddSpectrumOptions(verb, options);
    AddRunUpOptions(verb, options);
    verb.add_option("-o,--output", options->output,
                    "Document to write; of several recordings, or with a slash at its end, the folder for documents "
                    "that are named as the recordings")
        ->required();
}

RecordingSource SourceOf(const AnalyzeOptions& options, const std::string& recording)
{
    if (options.end && *options.end <= options.start)
        throw CLI::ValidationError("--end", "give a time after that of --start");
    if (options.csv.delimiter && options.csv.delimiter == options.csv.decimal)
        throw CLI::ValidationError("--decimal", "give another mark than --delimiter");
    return {recording, options.start, options.end, options.csv};
}

SpectrumSettings SettingsOf(const AnalyzeOptions& options, std::size_t channels)
{
    CheckReference(options, channels);
    return {options.blockSize, options.averages, options.reference - 1, options.window, Tacho(options, channels)};
}

std::vector<Calibration> CalibrationsOf(const AnalyzeOptions& options, const RecordingFacts& facts)
{
    CheckCount(options.units, facts.channels, "--unit");
    CheckCount(options.fullScales, facts.channels, "--full-scale");
    CheckCount(options.sensitivities, facts.channels, "--sensitivity");
    CheckCount(options.ranges, facts.channels, "--range");
    CheckCount(options.tones, facts.channels, "--calibration");
    std::vector<Calibration> calibrations;
    for (std::size_t i = 0; i < facts.channels; ++i) {
        const std::string recorded = RecordedUnit(facts.said[i].unit);
        if (!options.sensitivities.empty())
            calibrations.push_back(OfSensor(options, i, recorded == "V"));
        else if (options.calibrator && ForChannel(options.tones, i) != "-")
            calibrations.push_back(
                ByCalibrator(*options.calibrator, {ForChannel(options.tones, i), 0.0, {}, options.csv}, i));
        else
            calibrations.push_back(OfUnit(options, i, recorded));
    }
    return calibrations;
}

std::vector<std::string> ChannelNamesOf(const AnalyzeOptions& options, const RecordingFacts& facts)
{
    const std::vector<std::string>& given = options.channelNames;
    if (!given.empty() && given.size() != facts.channels)
        throw CLI::ValidationError("--channel-names", fmt::format("{} for {}", Counted(given.size(), "name"),
                                                                  Counted(facts.channels, "channel")));
    constexpr std::size_t longest = 200; // bytes of a name
    std::vector<std::string> names;
    for (std::size_t i = 0; i < facts.channels; ++i)
        names.push_back(Printable((given.empty() ? facts.said[i].name : given[i]).substr(0, longest)));
    return names;
}

} // namespace zmxf
