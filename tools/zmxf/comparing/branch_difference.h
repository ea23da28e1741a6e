#pragma once

#include "tools/zmxf/comparing/tolerance.h"
#include "tools/zmxf/showing/description.h"

#include <string>
#include <vector>

namespace zmxf {

// A fact of the settings or of the recording that differs.
struct BranchDifference {
    std::string place; // by titles: "System 0, Autospectra, Block size"
    Json a;            // null for what isn't there
    Json b;
};

// What differs between two trees. Entries of lists belong together by their "id", the first with the first, else
// by their order; numbers with a fraction may be apart as the tolerance says.
std::vector<BranchDifference> CompareTrees(const Json& a, const Json& b, const Tolerance& tolerance);

} // namespace zmxf
