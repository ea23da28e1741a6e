#pragma once

#include <CLI/CLI.hpp>

#include <memory>
#include <string>
#include <vector>

namespace zmxf {

// The description of the command line: all verbs with their options.
std::unique_ptr<CLI::App> MakeProgram();

// Runs the verb that the arguments name, and gives the exit status: 0 when it was done, or when help was asked for, 1
// when it failed, 2 for wrong usage. A failure is one line on standard error.
int RunProgram(const std::vector<std::string>& arguments);

} // namespace zmxf
