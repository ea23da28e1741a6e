#pragma once

#include "tools/zmxf/measuring/measured_document.h"

namespace zmxf {

// Adds the sound levels of a channel.
void AddBroadBand(MeasuredDocument& document, std::size_t channel);

} // namespace zmxf
