#pragma once

#include <string>
#include <vector>

namespace zmxf {

// The arguments of the program, its name first, with paths as in tools/zmxf/base/paths.h. On Windows, whose shells
// leave that to programs, an argument with * or ? outside of quotes becomes the names of the files that it describes,
// sorted; it stays as it is when there are none.
std::vector<std::string> ProgramArguments(int argc, const char* const* argv);

} // namespace zmxf
