#pragma once

#include "tools/zmxf/measuring/document_writing.h"

#include <string>
#include <vector>

namespace zmxf {

// What analyze does with a recording: measures it, writes the document, puts warnings on standard error and gives it
// back for the report.
CalibratedRecording Analyze(const std::string& recording, const std::vector<Calibration>& calibrations,
                            const SpectrumSettings& settings, const std::string& document, SliceStorage storage);

} // namespace zmxf
