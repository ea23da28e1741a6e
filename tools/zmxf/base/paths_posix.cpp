#include "tools/zmxf/base/paths.h"
#include "zelmresult/support/system_error.h"

#include <sys/stat.h>

namespace zmxf {

std::filesystem::path SystemPath(const std::string& path) { return path; }

std::string PathText(const std::filesystem::path& path) { return path.string(); }

std::string FolderOf(const std::string& path) { return path.substr(0, path.rfind('/') + 1); }

std::string FileKey(const std::string& path) { return path; }

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
