#pragma once

#include "tools/zmxf/base/failure.h"
#include "tools/zmxf/base/selection.h"
#include "tools/zmxf/exporting/export_choices.h"

#include <string>
#include <vector>

namespace zmxf {

struct ExportJob {
    std::vector<std::string> documents;
    std::string output; // a file, a folder, "-" for standard output; empty: named after each document
    Selection selection;
    ExportChoices choices;
};

// The job as a whole can't be done as it was given: wrong usage.
class ExportRefusal : public Failure {
public:
    using Failure::Failure;
};

// Exports what can be exported, and says on standard error what can't, and on standard output what was written. Throws
// ExportRefusal before anything is read, Failure, and ExitStatus when something of the job failed.
void Export(const ExportJob& job);

} // namespace zmxf
