#pragma once

#include "tools/zmxf/measuring/measured_document.h"

#include <string>

namespace zmxf {

// Adds the levels of a channel, one result each.
void AddLevels(MeasuredDocument& document, std::size_t channel);
// Adds a result that gathers levels of a channel.
void AddGlobalLevel(MeasuredDocument& document, std::size_t channel);
// The levels of AddLevels, channel by channel, in their units, for a person to read.
std::string LevelTable(const CalibratedRecording& recording);

} // namespace zmxf
