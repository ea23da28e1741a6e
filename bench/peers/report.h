#pragma once

#include "bench/peers/rounds.h"

namespace peers {

// Prints tables in Markdown: times as multiples of the limit, times at each size, memory and files.
// time: which of those that were measured.
void Report(const std::vector<Family>& families, const Files& files, const Rounds& rounds, double Measured::*time);

} // namespace peers
