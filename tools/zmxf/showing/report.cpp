#include "tools/zmxf/showing/report.h"

#include "tools/signal_processing/orders.h"
#include "tools/signal_processing/peaks.h"
#include "tools/zmxf/base/process_names.h"
#include "tools/zmxf/base/text.h"
#include "tools/zmxf/measuring/level_results.h"
#include "tools/zmxf/showing/value_text.h"
#include "zelmresult/waterfalls/octave_tools.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace zmxf {

namespace {

std::string FactsLine(const CalibratedRecording& recording)
{
    const RecordingFacts& facts = recording.measured.facts;
    const double seconds = static_cast<double>(facts.frames) / facts.sampleRate;
    const std::string stretch = StretchText(facts);
    const std::string times =
        facts.times.empty()
            ? ""
            : fmt::format("Column 1, \"{}\", is taken as times; --time-column 0 makes a channel of it\n",
                          Printable(facts.times));
    return fmt::format("{}: {}, {} Hz, {}, {} s{}{}\n{}", Printable(recording.path()),
                       Counted(facts.channels, "channel"), ExactText(facts.sampleRate),
                       Counted(static_cast<std::size_t>(facts.frames), "sample"), NumberText(seconds),
                       stretch.empty() ? "" : ", ", stretch, times);
}

// One line when all channels are alike.
std::string CalibrationLines(const CalibratedRecording& recording)
{
    const std::vector<Calibration>& calibrations = recording.calibrations;
    std::string lines;
    for (std::size_t i = 0; i < calibrations.size(); ++i) {
        const bool alike = std::equal(calibrations.begin() + 1, calibrations.end(), calibrations.begin());
        lines += fmt::format("{}: {}\n", alike ? "All channels" : ChannelName(recording, i), calibrations[i].Text());
        if (alike) break;
    }
    return lines;
}

std::string OverloadLines(const CalibratedRecording& recording)
{
    std::string lines;
    for (std::size_t i = 0; i < recording.measured.levels.size(); ++i)
        if (IsOverloaded(recording, i))
            lines += fmt::format("{} reached full scale: its levels may be too low\n", ChannelName(recording, i));
    return lines;
}

double LineSpacing(const CalibratedRecording& recording)
{
    return recording.measured.facts.sampleRate / static_cast<double>(recording.measured.spectra.blockSize);
}

std::string BandText(int b)
{
    const auto middle = static_cast<float>(BandCentre(b));
    const float known = ZelmResult::OctaveTools::ConvertOctaveCentralFreq(middle, kThirdOctaves);
    return fmt::format("{} Hz", NumberText(static_cast<double>(known)));
}

std::string SpectraLines(const CalibratedRecording& recording)
{
    const Spectra& spectra = recording.measured.spectra;
    const OctaveBands& bands = recording.measured.octaves.front();
    const int lastBand = bands.first + static_cast<int>(bands.power.size()) - 1;
    std::string lines = fmt::format("Autospectra: {} window, {} samples ({} Hz), 50 % overlap, {}\n",
                                    WindowName(spectra.window), spectra.blockSize, NumberText(LineSpacing(recording)),
                                    Counted(static_cast<std::size_t>(spectra.blocks), "block"));
    lines += bands.power.empty()
                 ? "1/3-octave spectra: none, no band holds three lines\n"
                 : fmt::format("1/3-octave spectra: {} to {}\n", BandText(bands.first), BandText(lastBand));
    if (!spectra.cross.empty())
        lines += fmt::format("Coherence and H1: against {}\n", ChannelName(recording, spectra.reference));
    if (!spectra.cross.empty() && spectra.blocks == 1)
        lines += "With a single block the coherence is 1 by its nature and says nothing.\n";
    return lines;
}

// The frequency and the RMS value of the highest line that rises above its neighbours.
std::vector<std::string> PeakCells(const CalibratedRecording& recording, std::size_t channel, const Quantity& quantity)
{
    const std::vector<double>& power = recording.measured.spectra.power[channel];
    const auto highest = HighestPeaks(power, 1);
    if (highest.empty()) return {"none", ""};
    const double amplitude = std::sqrt(power[highest.front()]) * recording.calibrations[channel].FactorToSI();
    return {fmt::format("{} Hz", NumberText(static_cast<double>(highest.front()) * LineSpacing(recording))),
            ValueText(Stored(amplitude, channel), quantity, {}, Scale::Linear)};
}

// In decibels; function is a weighting as the library numbers them.
std::string LevelOf(double value, const CalibratedRecording& recording, std::size_t channel, const Quantity& quantity,
                    int function)
{
    ZelmResult::CPonderationUnite weighting;
    weighting.SetPonderationLabelUnite(function);
    const double si = value * recording.calibrations[channel].FactorToSI();
    return DecibelText(Stored(si, channel), quantity, &weighting);
}

// Of the channels with sound pressure, which the weightings are for. Empty without any.
std::string SoundTable(const CalibratedRecording& recording)
{
    using Align = TextTable::Align;
    constexpr int a = 1;
    constexpr int c = 3;
    TextTable table({Align::Left, Align::Right, Align::Right, Align::Right, Align::Right});
    table.AddRow({"", "Leq A", "Leq C", "Highest Leq A of 1 s", "Peak C"});
    bool hasSound = false;
    for (std::size_t channel = 0; channel < recording.calibrations.size(); ++channel) {
        if (recording.calibrations[channel].unit != "Pa") continue;
        hasSound = true;
        const auto quantity = ZelmResult::LabelledQuantity::Of(SignalQuantity(recording.calibrations[channel]).get());
        const SoundLevels& sound = recording.measured.sound[channel];
        const auto level = [&](double value, int function) {
            return LevelOf(value, recording, channel, quantity, function);
        };
        table.AddRow({ChannelName(recording, channel), level(std::sqrt(sound.a.whole), a),
                      level(std::sqrt(sound.c.whole), c), level(std::sqrt(sound.a.shorts.highest), a),
                      level(sound.cPeak.highest, c)});
    }
    return hasSound ? table.Text("  ") : std::string();
}

// What the run-up leaves out.
std::string RunUpNotes(const CalibratedRecording& recording)
{
    const RunUp& runUp = recording.measured.runUp;
    std::string lines;
    const double lowest = LowestOrderSpeed(runUp, recording.measured.facts.sampleRate);
    if (std::any_of(runUp.slices.begin(), runUp.slices.end(),
                    [lowest](const RunUpSlice& slice) { return slice.speed < lowest; }))
        lines += fmt::format("Below {} rpm the lines of orders overlap, and they have no values: a larger "
                             "--block-size separates them.\n",
                             NumberText(lowest * 60.0));
    if (runUp.tally.outside > 0)
        lines += fmt::format("{} before the first or after the last pulse without a speed, and so without a slice.\n",
                             Counted(runUp.tally.outside, "block"));
    return lines;
}

std::string RunUpLine(const CalibratedRecording& recording)
{
    const RunUp& runUp = recording.measured.runUp;
    if (runUp.slices.empty()) return {};
    const auto [slowest, fastest] =
        std::minmax_element(runUp.slices.begin(), runUp.slices.end(),
                            [](const RunUpSlice& a, const RunUpSlice& b) { return a.speed < b.speed; });
    return fmt::format("Run-up: {} of {} samples, {} to {} rpm by {}, {} {} per revolution; {} followed\n{}",
                       Counted(runUp.slices.size(), "slice"), runUp.blockSize, NumberText(slowest->speed * 60.0),
                       NumberText(fastest->speed * 60.0), ChannelName(recording, runUp.tacho), NumberText(runUp.pulses),
                       runUp.pulses == 1.0 ? "pulse" : "pulses", OrdersName(runUp.orders), RunUpNotes(recording));
}

// The highest peak of each spectrum and the global levels.
std::string SpectrumTable(const CalibratedRecording& recording)
{
    if (recording.measured.octaves.empty()) return fmt::format("No spectra: they need {} samples.\n", kSmallestBlock);
    using Align = TextTable::Align;
    TextTable table({Align::Left, Align::Right, Align::Right, Align::Right});
    table.AddRow({"", "Highest peak", "Its RMS", "Overall level"});
    for (std::size_t channel = 0; channel < recording.calibrations.size(); ++channel) {
        const auto quantity = ZelmResult::LabelledQuantity::Of(SignalQuantity(recording.calibrations[channel]).get());
        std::vector<std::string> row{ChannelName(recording, channel)};
        for (std::string& cell : PeakCells(recording, channel, quantity)) row.push_back(std::move(cell));
        const double acRms = recording.measured.levels[channel].acRms;
        row.push_back(LevelOf(acRms, recording, channel, quantity, 0));
        table.AddRow(row);
    }
    return SpectraLines(recording) + table.Text("  ");
}

} // namespace

std::string MeasurementReport(const CalibratedRecording& recording)
{
    return FactsLine(recording) + CalibrationLines(recording) + OverloadLines(recording) + LevelTable(recording) +
           SpectrumTable(recording) + SoundTable(recording) + RunUpLine(recording);
}

} // namespace zmxf
