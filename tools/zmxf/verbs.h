#pragma once

#include "tools/zmxf/level_document.h"

#include <CLI/CLI.hpp>

#include <string>

namespace zmxf {

// Each adds its verb to the program: its options, its help, and what is done when the user names it.
void AddDemoVerb(CLI::App& program);
void AddAnalyzeVerb(CLI::App& program);
void AddInfoVerb(CLI::App& program);
void AddShowVerb(CLI::App& program);

// What analyze does with a recording: measures it, writes the document and gives it back for the report.
CalibratedRecording Analyze(const std::string& recording, const std::vector<Calibration>& calibrations,
                            const std::string& document);

} // namespace zmxf
