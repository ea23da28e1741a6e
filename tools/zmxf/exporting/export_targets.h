#pragma once

#include "tools/zmxf/exporting/export_job.h"
#include "zelmresult/reading/labelled_result.h"

#include <cstdint>
#include <string>
#include <vector>

// The names of outputs.

namespace zmxf {

struct ExportPlan {
    enum class Layout : std::uint8_t { FilePerDocument, FolderPerDocument, OneFile };

    Layout layout = Layout::FilePerDocument;
    std::vector<std::string> targets; // of each document; or one
};

// Throws ExportRefusal when two documents would have one output, when a document would be replaced, and when the output
// can't take what the job asks for; Failure when a file can't be made there.
ExportPlan PlanOf(const ExportJob& job);

// "0021_autospectrum_channel-1.csv", for a folder of tables.
std::string TableName(const ZelmResult::LabelledInformation& information);

} // namespace zmxf
