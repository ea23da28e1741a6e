#include "tools/zmxf/base/names_windows.h"

#include "tools/zmxf/base/paths.h"
#include "zelmresult/support/system_error.h"
#include "zelmresult/support/windows_path.h"

#include <windows.h>

namespace zmxf {

std::vector<std::string> NamesLike(const std::string& pattern, std::error_code& reason)
{
    std::vector<std::string> names;
    WIN32_FIND_DATAW found{};
    const HANDLE search = FindFirstFileW(ZelmResult::ToWindowsPath(LibraryPath(pattern)).c_str(), &found);
    for (BOOL isFound = search != INVALID_HANDLE_VALUE; isFound != 0; isFound = FindNextFileW(search, &found)) {
        const std::string name = PathText(found.cFileName);
        if (name != "." && name != "..") names.push_back(name);
    }
    const DWORD last = GetLastError();
    if (search != INVALID_HANDLE_VALUE) (void)FindClose(search);
    SetLastError(last);
    reason =
        last == ERROR_NO_MORE_FILES || last == ERROR_FILE_NOT_FOUND ? std::error_code() : ZelmResult::LastSystemError();
    return names;
}

} // namespace zmxf
