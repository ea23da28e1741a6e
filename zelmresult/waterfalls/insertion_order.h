#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace ZelmResult {

// The order in which values stand after InsertValueInSortedTabs has taken them one by one, without moving any: the
// index of each. Nothing when one is no number.
std::optional<std::vector<std::int32_t>> InsertionOrder(std::span<const float> values);

} // namespace ZelmResult
