#include "tools/zmxf/base/names_windows.h"
#include "tools/zmxf/base/paths.h"
#include "zelmresult/support/path_bytes.h"
#include "zelmresult/support/system_error.h"
#include "zelmresult/support/windows_path.h"

#include <algorithm>
#include <windows.h>

namespace zmxf {

std::filesystem::path SystemPath(const std::string& path) { return ZelmResult::ToWindowsPath(LibraryPath(path)); }

std::string PathText(const std::filesystem::path& path)
{
    return ZelmResult::PathToBytes(ZelmResult::FromWindowsPath(path.native()));
}

// "C:x.wav" is in a folder too, the one where that drive is at.
std::string FolderOf(const std::string& path)
{
    const std::size_t separator = path.find_last_of("\\/");
    const std::size_t drive = path.size() > 1 && path[1] == ':' ? 2 : 0;
    return path.substr(0, separator == std::string::npos ? drive : separator + 1);
}

std::string FileKey(const std::string& path)
{
    std::wstring key = ZelmResult::ToWindowsPath(LibraryPath(path));
    const auto size = static_cast<int>(key.size());
    (void)LCMapStringEx(LOCALE_NAME_INVARIANT, LCMAP_UPPERCASE, key.data(), size, key.data(), size, nullptr, nullptr,
                        0);
    std::replace(key.begin(), key.end(), L'/', L'\\');
    return PathText(key);
}

// The iterators of the standard library see nothing in folders with long paths.
std::vector<std::string> NamesIn(const std::string& folder, std::error_code& reason)
{
    return NamesLike(InFolder(folder, "*"), reason);
}

PathFacts FactsOf(const std::string& path)
{
    constexpr DWORD shareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    PathFacts facts;
    const HANDLE file = CreateFileW(ZelmResult::ToWindowsPath(LibraryPath(path)).c_str(), FILE_READ_ATTRIBUTES,
                                    shareAll, nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        facts.reason = ZelmResult::LastSystemError();
        return facts;
    }
    BY_HANDLE_FILE_INFORMATION known{};
    facts.kind = PathFacts::Kind::Other;
    if (GetFileType(file) == FILE_TYPE_DISK && GetFileInformationByHandle(file, &known) != 0) {
        const bool isFolder = (known.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
        facts.kind = isFolder ? PathFacts::Kind::Folder : PathFacts::Kind::File;
        facts.file = {known.dwVolumeSerialNumber, std::uint64_t{known.nFileIndexHigh} << 32U | known.nFileIndexLow};
    }
    (void)CloseHandle(file);
    return facts;
}

} // namespace zmxf
