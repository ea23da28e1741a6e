#pragma once

#include "tools/zmxf/measuring/document_writing.h"
#include "tools/zmxf/measuring/sensors.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zmxf {

// What the user asks analyze for.
struct AnalyzeOptions {
    std::vector<std::string> recordings;
    double start = 0.0;
    std::optional<double> end = {};
    CsvFormat csv;
    std::vector<std::string> channelNames;
    std::vector<std::string> units;
    std::vector<double> fullScales;
    std::vector<Sensitivity> sensitivities;
    std::vector<double> ranges; // V
    std::optional<CalibratorLevel> calibrator;
    std::vector<std::string> tones; // recordings of it, "-" where a channel has none
    std::size_t blockSize = 0;      // 0: not given
    std::int64_t averages = SpectrumMeter::kAllBlocks;
    Window window = Window::Hann;
    std::size_t reference = 1;
    std::size_t tacho = 0; // 0: not given
    double pulses = 1.0;
    std::vector<double> orders = TachoSettings().orders;
    bool disk = false;
    std::string output;
};

// Adds the options to the verb, which fills them.
void AddAnalyzeOptions(CLI::App& verb, const std::shared_ptr<AnalyzeOptions>& options);

// What the options mean for one of the recordings.
RecordingSource SourceOf(const AnalyzeOptions& options, const std::string& recording);
// These throw CLI::ValidationError when they don't suit the channels. Calibrations are measured where there are tones.
SpectrumSettings SettingsOf(const AnalyzeOptions& options, std::size_t channels);
std::vector<Calibration> CalibrationsOf(const AnalyzeOptions& options, const RecordingFacts& facts);
std::vector<std::string> ChannelNamesOf(const AnalyzeOptions& options, const RecordingFacts& facts);

} // namespace zmxf
