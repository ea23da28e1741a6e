#pragma once

#include "tools/zmxf/manual/described_verb.h"

#include <string>
#include <vector>

namespace zmxf {

// Scripts that complete verbs, options and their choices; where a file or a free value stands, the shell completes
// names of files.
std::string BashCompletion(const DescribedVerb& program, const std::vector<DescribedVerb>& verbs);
std::string ZshCompletion(const DescribedVerb& program, const std::vector<DescribedVerb>& verbs);

} // namespace zmxf
