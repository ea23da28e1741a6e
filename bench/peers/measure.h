#pragma once

#include "bench/peers/case.h"

namespace peers {

struct Measured {
    double seconds = 0;
    double processor = 0; // seconds of it, for machines that do something else, too
    long peak = 0;        // kB that the resident memory rose by, at most
};

// Does a case in this process: a small one first, so that the code of both is in memory, then that of n.
Measured Measure(const Family& family, const Files& files, const std::string& job, const std::string& contender, int n);

// The size of the small one, for which contenders need a file too.
inline constexpr int kWarmUp = 20;

} // namespace peers
