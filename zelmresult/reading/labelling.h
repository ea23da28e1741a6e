#pragma once

#include "zelmresult/reading/labelled_result.h"

#include <cstdint>
#include <optional>

namespace ZelmResult {

class CResult;
class StoredResult;

// How results become labelled arrays. Internal to reading.

// The bytes of all coordinates that references give.
std::uint64_t ReferenceBytesOf(CResult& result);
// All of a result. Nothing for a class without values. Without slices a waterfall has its coordinates only.
std::optional<LabelledResult> Label(StoredResult& stored, std::size_t number, bool hasSlices);
// Makes a waterfall of one slice that slice: the dimension becomes the coordinate slice, a number.
void DropSlices(LabelledResult& labelled, std::int32_t index);

} // namespace ZelmResult
