#include "tools/zmxf/measuring/sensors.h"

#include "tools/signal_processing/orders.h"
#include "tools/zmxf/base/failure.h"
#include "tools/zmxf/base/files.h"
#include "tools/zmxf/base/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <utility>

namespace zmxf {

namespace {

constexpr double kSoundReference = 20e-6; // Pa

// The positive number at the front of a text, which is then what is after it.
std::optional<double> TakePositive(std::string_view& text)
{
    double value = 0.0;
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || !std::isfinite(value) || value <= 0.0) return std::nullopt;
    text.remove_prefix(static_cast<std::size_t>(stop - text.data()));
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    return value;
}

// The volts of "mV" or "V" at the front of a text.
std::optional<double> TakeVolts(std::string_view& text)
{
    constexpr std::array<std::pair<std::string_view, double>, 5> names = {
        {{"V", 1.0}, {"mV", 1e-3}, {"uV", 1e-6}, {"\u00B5V", 1e-6}, {"kV", 1e3}}};
    for (const auto& [name, volts] : names)
        if (text.starts_with(name)) {
            text.remove_prefix(name.size());
            return volts;
        }
    return std::nullopt;
}

// The mean square of the tone that the channel is.
double PowerOfTone(const MeasuredRecording& tone, const std::string& path, std::size_t channel)
{
    constexpr double steady = 1.122; // 0.5 dB
    constexpr double mostly = 0.9;   // of the power
    if (tone.spectra.blocks == 0) throw Failure("{} is too short to calibrate by", Printable(path));
    const Levels& levels = tone.levels[channel];
    if (levels.peak >= tone.facts.fullScale.value_or(INFINITY))
        throw Failure("{} reached full scale, so it can't calibrate", Printable(path));
    const std::vector<double>& lines = tone.spectra.power[channel];
    const auto highest = static_cast<double>(std::max_element(lines.begin(), lines.end()) - lines.begin());
    constexpr double lineSpacing = 1.0;
    const double power = PowerAround(lines, lineSpacing, highest, 0.0, MainLobe(Window::Hann), Window::Hann);
    if (!(power > mostly * levels.acRms * levels.acRms))
        throw Failure("{} is not the tone of a calibrator: its strongest frequency is no more than {} % of it",
                      Printable(path), NumberText(std::round(100.0 * power / (levels.acRms * levels.acRms))));
    const auto& seconds = tone.sound[channel].z.shorts;
    if (!(seconds.highest <= steady * seconds.lowest))
        throw Failure("{} is no steady tone: its level changes by {:.1f} dB", Printable(path),
                      10.0 * std::log10(seconds.highest / seconds.lowest));
    return power;
}

} // namespace

std::optional<Sensitivity> ParseSensitivity(const std::string& text)
{
    std::string_view rest = text;
    const auto number = TakePositive(rest);
    const auto volts = number ? TakeVolts(rest) : std::nullopt;
    if (!volts || !rest.starts_with('/')) return std::nullopt;
    const std::string unit = RecordedUnit(std::string(rest.substr(1)));
    if (unit.empty()) return std::nullopt;
    return Sensitivity{text, *number * *volts, unit};
}

std::optional<double> ParseVolts(const std::string& text)
{
    std::string_view rest = text;
    const auto number = TakePositive(rest);
    const auto volts = number ? TakeVolts(rest) : std::nullopt;
    return volts && rest.empty() ? std::optional(*number * *volts) : std::nullopt;
}

std::optional<CalibratorLevel> ParseCalibrator(const std::string& text)
{
    constexpr double loudest = 200.0;
    std::string_view rest = text;
    const auto number = TakePositive(rest);
    if (!number) return std::nullopt;
    if (rest == "dB")
        return *number > loudest
                   ? std::nullopt
                   : std::optional(CalibratorLevel{text, kSoundReference * std::pow(10.0, *number / 20.0), "Pa"});
    const std::string unit = RecordedUnit(std::string(rest));
    if (unit.empty()) return std::nullopt;
    return CalibratorLevel{text, *number, unit};
}

Calibration BySensitivity(const Sensitivity& sensitivity, std::optional<double> range)
{
    Calibration calibration{sensitivity.unit, range.value_or(1.0) / sensitivity.voltsPerUnit};
    calibration.hasFullScale = range.has_value();
    calibration.means = range ? fmt::format("a sensor of {} and a range of {} V", sensitivity.text, ExactText(*range))
                              : fmt::format("a sensor of {} and values in V", sensitivity.text);
    return calibration;
}

Calibration ByCalibrator(const CalibratorLevel& level, const RecordingSource& tone, std::size_t channel)
{
    RecordingReader reader(tone);
    const std::size_t channels = reader.facts().channels;
    if (channels != 1 && channel >= channels) throw Failure("{} has no channel {}", Printable(tone.path), channel + 1);
    const MeasuredRecording measured = MeasureRecording(reader, {});
    const double power = PowerOfTone(measured, tone.path, channels == 1 ? 0 : channel);
    Calibration calibration{level.unit, level.rms / std::sqrt(power)};
    calibration.means = fmt::format("a calibrator of {} in {}", level.text, Printable(BaseName(tone.path)));
    return calibration;
}

} // namespace zmxf
