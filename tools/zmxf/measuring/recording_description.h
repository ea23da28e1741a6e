#pragma once

#include "tools/zmxf/measuring/measured_document.h"

namespace zmxf {

// Adds where the samples of the recording are and what they mean.
void AddRecording(MeasuredDocument& document);

} // namespace zmxf
