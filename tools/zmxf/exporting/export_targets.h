#pragma once

#include "tools/zmxf/exporting/export_job.h"

#include <string>
#include <vector>

// The names of outputs.

namespace zmxf {

// "demo" for ".../demo.zmxf"
std::string Stem(const std::string& path);
// The name of a file in a folder; the folder may be empty.
std::string InFolder(const std::string& folder, const std::string& name);

// The output of each document. Throws ExportRefusal when two are the same, or when one is a document of the job.
std::vector<std::string> TargetsOf(const ExportJob& job);

} // namespace zmxf
