#pragma once

#include "tools/zmxf/measuring/document_writing.h"

#include <string>

namespace zmxf {

// What analyze does with a recording: measures it, writes the document, puts warnings on standard error and gives it
// back for the report.
CalibratedRecording Analyze(CalibratedRecording recording, const SpectrumSettings& settings,
                            const std::string& document, SliceStorage storage);

} // namespace zmxf
