#pragma once

#include "tools/zmxf/measuring/measured_document.h"

namespace zmxf {

// Adds how the recording was analyzed, as the settings of its document.
void AddSettings(MeasuredDocument& document);

} // namespace zmxf
