#pragma once

#include <string>

namespace zmxf {

// "zmxf 1.2.3"
std::string ProgramVersion();

} // namespace zmxf
