#include "tools/zmxf/base/found_names.h"

#include "tools/zmxf/base/paths.h"
#include "zelmresult/support/path_bytes.h"
#include "zelmresult/support/system_error.h"
#include "zelmresult/support/windows_path.h"

#include <windows.h>

namespace zmxf {

std::vector<std::string> FoundNames(const std::string& pattern, std::error_code& reason)
{
    std::vector<std::string> names;
    WIN32_FIND_DATAW found{};
    reason.clear();
    const HANDLE search = FindFirstFileW(ZelmResult::ToWindowsPath(LibraryPath(pattern)).c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) {
        if (GetLastError() != ERROR_FILE_NOT_FOUND) reason = ZelmResult::LastSystemError();
        return names;
    }
    do {
        const std::string name = ZelmResult::PathToBytes(ZelmResult::FromWindowsPath(found.cFileName));
        if (name != "." && name != "..") names.push_back(name);
    } while (FindNextFileW(search, &found) != 0);
    if (GetLastError() != ERROR_NO_MORE_FILES) reason = ZelmResult::LastSystemError();
    (void)FindClose(search);
    return names;
}

} // namespace zmxf
