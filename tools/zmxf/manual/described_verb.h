#pragma once

#include <CLI/CLI.hpp>

#include <string>
#include <vector>

// What the program says of itself in --help, for manual pages and for the completion of shells.

namespace zmxf {

struct DescribedOption {
    std::vector<std::string> names; // "-o", "--output"; "FILE" for a word without a name
    std::string description;
    std::string value;                // "NUMBER"; empty for a flag
    std::vector<std::string> choices; // of the value; empty when it is free
    bool isFlag = false;
    bool isRepeatable = false;
    bool isRequired = false;

    [[nodiscard]] bool IsPositional() const { return names.front().front() != '-'; }
};

struct DescribedVerb {
    std::string name; // empty for the program as a whole
    std::string description;
    std::string footer;
    std::vector<DescribedOption> options; // as --help lists them, words without a name first
};

// The program, and its verbs in the order of --help.
DescribedVerb DescribeProgram(const CLI::App& program);
std::vector<DescribedVerb> DescribeVerbs(const CLI::App& program);

} // namespace zmxf
