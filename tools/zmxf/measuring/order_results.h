#pragma once

#include "tools/signal_processing/orders.h"
#include "tools/zmxf/measuring/measured_document.h"

namespace zmxf {

// Adds the orders of a channel along the speed of a run-up.
void AddOrderTracks(MeasuredDocument& document, std::size_t channel, const OrderTracker& tracker);

} // namespace zmxf
