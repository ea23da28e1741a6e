#include "tools/zmxf/base/paths.h"

#include "zelmresult/support/path_bytes.h"

namespace zmxf {

ZelmResult::wstring LibraryPath(const std::string& path) { return ZelmResult::PathFromBytes(path); }

std::string BaseName(const std::string& path) { return path.substr(FolderOf(path).size()); }

std::string InFolder(const std::string& folder, const std::string& name)
{
    return folder.empty() || NamesFolder(folder) ? folder + name : folder + '/' + name;
}

bool NamesFolder(const std::string& path) { return !path.empty() && FolderOf(path) == path; }

} // namespace zmxf
