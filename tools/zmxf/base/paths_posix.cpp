#include "tools/zmxf/base/paths.h"
#include "zelmresult/support/system_error.h"

#include <sys/stat.h>

namespace zmxf {

std::filesystem::path SystemPath(const std::string& path) { return path; }

std::string PathText(const std::filesystem::path& path) { return path.string(); }

std::string FolderOf(const std::string& path) { return path.substr(0, path.rfind('/') + 1); }

std::string FileKey(const std::string& path) { return path; }

std::vector<std::string> NamesIn(const std::string& folder, std::error_code& reason)
{
    std::vector<std::string> names;
    for (std::filesystem::directory_iterator entry(folder, reason), end; !reason && entry != end;
         entry.increment(reason))
        names.push_back(entry->path().filename().string());
    return names;
}

PathFacts FactsOf(const std::string& path)
{
    struct stat status {};
    PathFacts facts;
    if (::stat(path.c_str(), &status) != 0) {
        facts.reason = ZelmResult::LastSystemError();
        return facts;
    }
    facts.kind = S_ISREG(status.st_mode)   ? PathFacts::Kind::File
                 : S_ISDIR(status.st_mode) ? PathFacts::Kind::Folder
                                           : PathFacts::Kind::Other;
    facts.file = {status.st_dev, status.st_ino};
    return facts;
}

} // namespace zmxf
