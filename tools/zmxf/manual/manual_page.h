#pragma once

#include "tools/zmxf/manual/described_verb.h"

#include <string>
#include <vector>

namespace zmxf {

// Manual pages in the macros of man(7), in UTF-8: zmxf(1), and zmxf-show(1) of a verb.
std::string ProgramPage(const DescribedVerb& program, const std::vector<DescribedVerb>& verbs);
std::string VerbPage(const DescribedVerb& verb);

} // namespace zmxf
