#include "tools/zmxf/base/program_arguments.h"
#include "tools/zmxf/verbs/program.h"

int main(int argc, char** argv) { return zmxf::RunProgram(zmxf::ProgramArguments(argc, argv)); }
