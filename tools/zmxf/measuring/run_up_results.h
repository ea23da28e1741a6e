#pragma once

#include "tools/zmxf/measuring/measured_document.h"

namespace zmxf {

// Adds a run-up: the references of its slices, and two waterfalls and the order tracks of each channel. Reads the
// recording again. Throws Failure.
void AddRunUp(MeasuredDocument& document);

} // namespace zmxf
