#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace ZelmResult {

// The order of the values, as indexes, after InsertValueInSortedTabs has inserted them one by one, worked out without
// moving any. Empty when one is a NaN.
std::optional<std::vector<std::int32_t>> InsertionOrder(std::span<const float> values);

} // namespace ZelmResult
