#pragma once

#include "zelmresult/support/wstring.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

// Which orders a track holds, which weightings a broad-band result, and which levels an overview. Their records have no
// place for that, so programs put it into the name of the process: "Orders 1, 2, 4".

namespace ZelmResult {

enum class CaptionList : std::uint8_t { Orders, BroadBand, Overview };

wstring CaptionOf(CaptionList list, std::span<const wstring> items);
// The items of a caption; none for a caption of other origin, which doesn't name that many different ones.
std::vector<wstring> ItemsOf(CaptionList list, const wstring& caption, std::size_t count);

} // namespace ZelmResult
