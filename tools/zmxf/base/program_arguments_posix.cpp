#include "tools/zmxf/base/program_arguments.h"

namespace zmxf {

std::vector<std::string> ProgramArguments(int argc, const char* const* argv) { return {argv, argv + argc}; }

} // namespace zmxf
