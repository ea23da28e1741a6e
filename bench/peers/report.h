#pragma once

#include "bench/peers/rounds.h"

namespace peers {

// Prints tables in Markdown: times as multiples of the limit, times at each size, memory and files.
void Report(const std::vector<Family>& families, const Files& files, const Rounds& rounds);

} // namespace peers
