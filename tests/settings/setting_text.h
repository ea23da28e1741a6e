#pragma once

#include "zelmresult/zelmresult.h"

#include <string>

namespace ZelmResult::test {

// All that a setting holds, with those inside it, as one line.
std::string TextOf(const CReglageData* setting);
// A tree in the same way, a line per node.
std::string TextOf(const CConfigData& config);

} // namespace ZelmResult::test
