#pragma once

#include "tools/zmxf/measuring/calibrated_recording.h"

#include <string>
#include <vector>

// What makes figures of a recording doubtful, one sentence each. They are printed when the recording is measured, and
// are in the document.

namespace zmxf {

// Of the speeds of a run-up; none without one.
std::vector<std::string> SpeedWarnings(const CalibratedRecording& recording);
// Of the recording itself, and of how much of it the spectra show.
std::vector<std::string> RecordingWarnings(const CalibratedRecording& recording);
// Both.
std::vector<std::string> Warnings(const CalibratedRecording& recording);

// "; Warning: ..." for each, to follow on a comment.
std::string AsComment(const std::vector<std::string>& warnings);

} // namespace zmxf
