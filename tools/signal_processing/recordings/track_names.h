#pragma once

#include "tools/signal_processing/recordings/sample_source.h"

#include <span>
#include <string_view>

namespace zmxf {

// Takes the names of channels from the XML that recorders store beside the samples: tracks with the number of the
// channel they are interleaved as, or else their own, from 1 on. What isn't there stays as it is.
void NameChannels(std::string_view xml, std::span<ChannelFacts> channels);

} // namespace zmxf
