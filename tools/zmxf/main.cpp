#include "tools/zmxf/verbs/program.h"

int main(int argc, char** argv) { return zmxf::RunProgram(argc, argv); }
