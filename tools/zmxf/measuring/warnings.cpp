#include "tools/zmxf/measuring/warnings.h"

#include "tools/zmxf/base/text.h"

#include <algorithm>
#include <fmt/format.h>

namespace zmxf {

namespace {

using Lines = std::vector<std::string>;

void AddBlocks(std::size_t count, const std::string& what, Lines& lines)
{
    if (count != 0) lines.push_back(fmt::format("{} {}", Counted(count, "block"), what));
}

void AddJump(const std::vector<RunUpSlice>& slices, Lines& lines)
{
    constexpr double largestJump = 1.5; // between neighbours, whose blocks overlap by half
    const auto jump = std::adjacent_find(slices.begin(), slices.end(), [](const RunUpSlice& a, const RunUpSlice& b) {
        return a.speed > largestJump * b.speed || b.speed > largestJump * a.speed;
    });
    if (jump == slices.end()) return;
    lines.push_back(fmt::format("the speed jumps from {} to {} rpm at {} s: the tacho may have missed or added pulses",
                                NumberText(jump->speed * 60.0), NumberText((jump + 1)->speed * 60.0),
                                NumberText((jump + 1)->seconds)));
}

// Blocks that hold little of a channel's energy, as of a blow at their beginning.
void AddLostEnergy(const CalibratedRecording& recording, Lines& lines)
{
    const Spectra& spectra = recording.measured.spectra;
    constexpr double little = 0.1; // at least 0.375 when the energy is spread evenly
    for (std::size_t channel = 0; channel < spectra.kept.size(); ++channel) {
        if (spectra.blocks == 0 || spectra.kept[channel] >= little) continue;
        lines.push_back(
            fmt::format("the spectra miss most energy of {}, which lies {} shows it", ChannelName(recording, channel),
                        spectra.window != Window::Uniform
                            ? "where the window is near zero or after the last whole block: --window uniform or "
                              "another --block-size"
                            : "after the last whole block: another --block-size"));
    }
}

void AddUnknownUnits(const CalibratedRecording& recording, Lines& lines)
{
    const std::vector<ChannelFacts>& said = recording.measured.facts.said;
    for (std::size_t channel = 0; channel < said.size(); ++channel)
        if (!said[channel].unit.empty() && !recording.calibrations[channel].IsKnown())
            lines.push_back(fmt::format("the recording gives {} in {}, which is no unit of --unit: it counts as "
                                        "uncalibrated",
                                        ChannelName(recording, channel), Printable(said[channel].unit)));
}

} // namespace

std::vector<std::string> SpeedWarnings(const CalibratedRecording& recording)
{
    const SpeedTally& tally = recording.measured.runUp.tally;
    Lines lines;
    AddBlocks(tally.irregular, "without a speed: intervals between pulses follow none there", lines);
    AddBlocks(tally.tooFewSamples, "without a speed: pulses come or go too fast for the sample rate there", lines);
    AddBlocks(tally.noPulses, "without a speed: pulses stay away there", lines);
    AddBlocks(tally.bridged,
              "with a speed in spite of pulses that are missing or too many: it is that of the regular ones", lines);
    AddJump(recording.measured.runUp.slices, lines);
    return lines;
}

std::vector<std::string> RecordingWarnings(const CalibratedRecording& recording)
{
    Lines lines;
    if (const auto cut = recording.measured.facts.cut)
        lines.push_back(
            fmt::format("the recording is cut short: its header names {} bytes of samples, but only {} are there",
                        cut->announced, cut->present));
    AddUnknownUnits(recording, lines);
    for (const std::string& note : recording.measured.facts.notes) lines.push_back(Printable(note));
    AddLostEnergy(recording, lines);
    return lines;
}

std::vector<std::string> Warnings(const CalibratedRecording& recording)
{
    Lines lines = RecordingWarnings(recording);
    for (std::string& line : SpeedWarnings(recording)) lines.push_back(std::move(line));
    return lines;
}

std::string AsComment(const std::vector<std::string>& warnings)
{
    std::string text;
    for (const std::string& warning : warnings) text += fmt::format("; Warning: {}", warning);
    return text;
}

} // namespace zmxf
