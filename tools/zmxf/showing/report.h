#pragma once

#include "tools/zmxf/measuring/measured_document.h"

#include <string>

// What a person reads when a recording was measured.

namespace zmxf {

// All of it: the facts of the recording, then the tables.
std::string MeasurementReport(const CalibratedRecording& recording);

// The levels, channel by channel, in their units.
std::string LevelTable(const CalibratedRecording& recording);
// The highest peak of each spectrum and the global levels; a line that says so for a recording that is too short.
std::string SpectrumTable(const CalibratedRecording& recording);

} // namespace zmxf
