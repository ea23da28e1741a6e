#pragma once

#include "tools/signal_processing/measured_recording.h"
#include "tools/zmxf/measuring/calibration.h"

#include <optional>
#include <string>

namespace zmxf {

// What a sensor gives.
struct Sensitivity {
    std::string text; // as the user gave it
    double voltsPerUnit = 0.0;
    std::string unit;
};
// Of "100mV/g"; nothing for what is none.
std::optional<Sensitivity> ParseSensitivity(const std::string& text);
// Volts of "10V" or "500mV".
std::optional<double> ParseVolts(const std::string& text);

// The tone that a calibrator makes.
struct CalibratorLevel {
    std::string text;
    double rms = 0.0; // in the unit
    std::string unit;
};
// Of "94dB", which is sound pressure, or an RMS value as "10m/s2".
std::optional<CalibratorLevel> ParseCalibrator(const std::string& text);

// Of a channel whose full scale is so many volts, or whose values are volts without a range.
Calibration BySensitivity(const Sensitivity& sensitivity, std::optional<double> range);
// Of a channel that recorded the tone as it does the rest. The recording of the tone has that channel, or only one.
// Throws Failure when it is no steady tone below full scale.
Calibration ByCalibrator(const CalibratorLevel& level, const RecordingSource& tone, std::size_t channel);

} // namespace zmxf
