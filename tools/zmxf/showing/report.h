#pragma once

#include "tools/zmxf/measuring/calibrated_recording.h"

#include <string>

// What a person reads when a recording was measured.

namespace zmxf {

// The facts of the recording, then the tables.
std::string MeasurementReport(const CalibratedRecording& recording);

} // namespace zmxf
