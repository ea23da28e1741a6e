#pragma once

#include "zelmresult/reading/listed_result.h"

#include <cstddef>
#include <span>
#include <utility>
#include <vector>

namespace zmxf {

// Results of two documents that are about the same thing, by their numbers.
struct ResultPairs {
    std::vector<std::pair<std::size_t, std::size_t>> pairs; // in the order of the first document
    std::vector<std::size_t> onlyInA;
    std::vector<std::size_t> onlyInB;
};

// Those of the same system, process type, channel and reference belong together, the first with the first and so on. A
// channel is known by its name, and by its number when it has none.
ResultPairs PairResults(std::span<const ZelmResult::ListedResult> a, std::span<const std::size_t> numbersOfA,
                        std::span<const ZelmResult::ListedResult> b, std::span<const std::size_t> numbersOfB);

} // namespace zmxf
