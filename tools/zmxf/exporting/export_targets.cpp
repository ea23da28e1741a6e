#include "tools/zmxf/exporting/export_targets.h"

#include "tools/zmxf/base/files.h"
#include "tools/zmxf/base/text.h"
#include "tools/zmxf/exporting/export_formats.h"

#include <filesystem>
#include <map>

namespace zmxf {

namespace {

bool IsFolder(const std::string& path)
{
    std::error_code error;
    return path.ends_with('/') || std::filesystem::is_directory(path, error);
}

std::string TargetOf(const ExportJob& job, const std::string& document)
{
    const bool isFile = !job.output.empty() && job.documents.size() == 1 && !IsFolder(job.output);
    return isFile ? job.output : InFolder(job.output, Stem(document) + EntryOf(job.choices.format).suffix);
}

} // namespace

std::string Stem(const std::string& path)
{
    const std::string name = BaseName(path);
    const std::size_t dot = name.rfind('.');
    return dot == std::string::npos || dot == 0 ? name : name.substr(0, dot);
}

std::string InFolder(const std::string& folder, const std::string& name)
{
    return folder.empty() ? name : folder + (folder.ends_with('/') ? "" : "/") + name;
}

std::vector<std::string> TargetsOf(const ExportJob& job)
{
    std::vector<std::string> targets;
    std::map<std::string, std::string> documentOf;
    for (const std::string& document : job.documents) {
        targets.push_back(TargetOf(job, document));
        const auto [former, isNew] = documentOf.emplace(targets.back(), document);
        if (!isNew)
            throw ExportRefusal("{} and {} would both become {}", Printable(former->second), Printable(document),
                                Printable(targets.back()));
    }
    return targets;
}

} // namespace zmxf
