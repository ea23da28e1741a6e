#include "tools/zmxf/exporting/export_targets.h"

#include "tools/zmxf/base/files.h"
#include "tools/zmxf/base/text.h"
#include "tools/zmxf/exporting/export_formats.h"

#include <algorithm>
#include <cctype>
#include <fmt/format.h>
#include <map>

namespace zmxf {

namespace {

using Layout = ExportPlan::Layout;

// "demo" for ".../demo.zmxf"
std::string Stem(const std::string& path)
{
    const std::string name = BaseName(path);
    const std::size_t dot = name.rfind('.');
    const bool isOfDots = name.find_first_not_of('.') >= std::min(dot, name.size()); // as "..", another folder
    return isOfDots ? name : name.substr(0, dot);
}

bool IsFolder(const std::string& path) { return NamesFolder(path) || FactsOf(path).kind == PathFacts::Kind::Folder; }

// Whether -o names a file, and not a folder for files.
bool NamesFile(const ExportJob& job)
{
    if (job.output.empty() || IsFolder(job.output)) return false;
    const ExportChoices& choices = job.choices;
    if (job.output == "-" || choices.isJoined || choices.levelsOnly) return true;
    if (choices.format != ExportFormat::Csv) return job.documents.size() == 1;
    return job.output.ends_with(".csv") || job.output.ends_with(".CSV");
}

Layout LayoutOf(const ExportJob& job)
{
    if (job.choices.format != ExportFormat::Csv) return Layout::FilePerDocument;
    return NamesFile(job) || job.choices.isJoined || job.choices.levelsOnly ? Layout::OneFile
                                                                            : Layout::FolderPerDocument;
}

std::string TargetOf(const ExportJob& job, Layout layout, const std::string& document)
{
    if (NamesFile(job)) return job.output;
    if (layout != Layout::FolderPerDocument)
        return InFolder(job.output, Stem(document) + EntryOf(job.choices.format).suffix);
    return job.documents.size() == 1 && !job.output.empty() ? job.output : InFolder(job.output, Stem(document));
}

void CheckApart(const std::vector<std::string>& targets, const std::vector<std::string>& documents)
{
    std::map<std::string, std::string> documentOf;
    for (std::size_t i = 0; i < targets.size(); ++i)
        if (const auto [former, isNew] = documentOf.emplace(FileKey(targets[i]), documents[i]); !isNew)
            throw ExportRefusal("{} and {} would both become {}", Printable(former->second), Printable(documents[i]),
                                Printable(targets[i]));
}

// Makes the folder of an output that was given as one.
void CheckFiles(const ExportJob& job, const std::vector<std::string>& targets)
{
    if (!job.output.empty() && !NamesFile(job)) MakeFolder(job.output);
    if (targets.front() != "-") CheckOutputs(targets, job.documents);
}

// As a part of the name of a file: "Channel 1" becomes "channel-1". Letters beyond ASCII stay.
std::string PartOfName(const std::string& text)
{
    constexpr std::size_t longest = 60; // bytes
    std::string part;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte >= 0x80U || std::isalnum(byte) != 0)
            part += static_cast<char>(byte < 0x80U ? std::tolower(byte) : byte);
        else if (!part.empty() && part.back() != '-')
            part += '-';
    }
    if (part.size() > longest) {
        std::size_t end = longest;
        while ((static_cast<unsigned char>(part[end]) & 0xC0U) == 0x80U) --end; // not inside of a character
        part.erase(end);
    }
    part.erase(part.find_last_not_of('-') + 1);
    return part;
}

} // namespace

ExportPlan PlanOf(const ExportJob& job)
{
    ExportPlan plan{LayoutOf(job), {}};
    for (const std::string& document : job.documents) plan.targets.push_back(TargetOf(job, plan.layout, document));
    if (plan.layout == Layout::OneFile) {
        if (job.documents.size() > 1 && !NamesFile(job))
            throw ExportRefusal("-o must name the file for the table of several documents");
        plan.targets.resize(1);
    } else if (job.output == "-" && job.documents.size() > 1) {
        throw ExportRefusal("several documents don't fit on standard output: -o must name a folder");
    }
    if (plan.layout != Layout::OneFile) CheckApart(plan.targets, job.documents);
    if (plan.layout != Layout::FolderPerDocument) CheckFiles(job, plan.targets);
    return plan;
}

std::string TableName(const ZelmResult::LabelledInformation& information)
{
    const std::string channel = PartOfName(Printable(information.channel));
    return fmt::format("{:04}_{}{}{}.csv", information.number, Printable(information.group), channel.empty() ? "" : "_",
                       channel);
}

} // namespace zmxf
