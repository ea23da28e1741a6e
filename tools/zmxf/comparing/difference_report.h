#pragma once

#include "tools/zmxf/comparing/document_difference.h"

#include <string>

namespace zmxf {

// What differs, for people: what stands out most, then a line per result.
std::string DifferenceText(const CompareChoice& choice, const DocumentDifference& found);
// The same with all figures, in SI units.
Json DifferenceJson(const CompareChoice& choice, const DocumentDifference& found);

} // namespace zmxf
