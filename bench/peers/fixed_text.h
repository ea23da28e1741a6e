#pragma once

#include "bench/peers/case.h"

#include <array>
#include <cstring>
#include <string>

// A text in a row of a table, filled up with zeros.

namespace peers {

inline constexpr std::size_t kTextSize = 48;
using FixedText = std::array<char, kTextSize>;

inline void SetText(FixedText& target, const std::string& text)
{
    Require(text.size() < target.size(), "a text of that length");
    target.fill('\0');
    std::memcpy(target.data(), text.data(), text.size());
}

} // namespace peers
