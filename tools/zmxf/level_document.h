#pragma once

#include "tools/zmxf/analysis/calibration.h"
#include "tools/zmxf/analysis/recording.h"

#include <string>
#include <vector>

// From measured levels to a result document and to the table that a person reads.

namespace zmxf {

// A recording whose values have a meaning.
struct CalibratedRecording {
    std::string path;
    MeasuredRecording measured;
    std::vector<Calibration> calibrations; // one per channel
};

// Saves one result per channel and level. Throws Failure; the document has its name only when it is whole.
void WriteLevelDocument(const CalibratedRecording& recording, const std::string& path);

// The facts of the recording and its levels, channel by channel, in their units.
std::string LevelTable(const CalibratedRecording& recording);

} // namespace zmxf
