#pragma once

#include "tools/zmxf/measuring/measured_document.h"

namespace zmxf {

// Adds what a channel looks like as a whole: its envelope, and levels along it.
void AddOverviews(MeasuredDocument& document, std::size_t channel);

} // namespace zmxf
