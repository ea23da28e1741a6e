#pragma once

#include "tools/zmxf/comparing/result_difference.h"

namespace zmxf {

// Of two arrays of the same type and shape. result is the one that a belongs to, whose axes say where a difference is.
// None when all values are the same.
std::optional<Difference> CompareValues(const ZelmResult::LabelledResult& result, const ZelmResult::LabelledArray& a,
                                        const ZelmResult::LabelledArray& b, const Tolerance& tolerance, bool isData);

} // namespace zmxf
