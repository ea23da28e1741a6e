#pragma once

#include <CLI/CLI.hpp>

#include <cstdint>
#include <string>

namespace zmxf {

// Each adds its verb to the program: its options, its help, and what is done when the user names it.
void AddDemoVerb(CLI::App& program);
void AddAnalyzeVerb(CLI::App& program);
void AddInfoVerb(CLI::App& program);
void AddLsVerb(CLI::App& program);
void AddShowVerb(CLI::App& program);
void AddExportVerb(CLI::App& program);
void AddDiffVerb(CLI::App& program);
void AddReportVerb(CLI::App& program);
void AddSettingsVerb(CLI::App& program);
void AddTracksVerb(CLI::App& program);
void AddVerifyVerb(CLI::App& program);
void AddSalvageVerb(CLI::App& program);
void AddDumpVerb(CLI::App& program);

// What the user says to a verb that only shows a document.
struct DocumentOptions {
    std::string document;
    bool json = false;
};

struct DocumentVerb {
    const char* name;
    const char* help;
    const char* example; // a command line
    void (*run)(const DocumentOptions&);
};
void AddDocumentVerb(CLI::App& program, const DocumentVerb& added);

// For options that take a whole number, from least on.
CLI::Validator CheckWholeNumber(std::uint32_t least);
// For options that take what is between columns of numbers, as itself or by a name: "," or "tab".
CLI::Validator AsDelimiter();

} // namespace zmxf
