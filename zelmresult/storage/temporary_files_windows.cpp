#include "zelmresult/storage/temporary_files.h"

#include "zelmresult/support/path_bytes.h"
#include "zelmresult/support/windows_path.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <windows.h>

namespace ZelmResult {

namespace {

std::wstring WindowsPath(const std::string& path) { return ToWindowsPath(PathFromBytes(path)); }

// A file whose removal waits for those who have it open can't be made again, and refuses all access.
bool IsNameInUse(const std::wstring& path, DWORD reason)
{
    if (reason != ERROR_ACCESS_DENIED) return reason == ERROR_FILE_EXISTS;
    return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES || GetLastError() == ERROR_ACCESS_DENIED;
}

} // namespace

std::string TemporaryDirectory()
{
    std::array<wchar_t, MAX_PATH + 1> path{};
    const DWORD length = GetTempPathW(static_cast<DWORD>(path.size()), path.data());
    if (length >= path.size()) return {};
    return PathToBytes(FromWindowsPath({path.data(), length}));
}

Creation CreateExclusively(const std::string& path)
{
    const std::wstring name = WindowsPath(path);
    const HANDLE file =
        CreateFileW(name.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file != INVALID_HANDLE_VALUE) return CloseHandle(file) != 0 ? Creation::Made : Creation::Failed;
    const DWORD reason = GetLastError();
    const Creation result = IsNameInUse(name, reason) ? Creation::NameInUse : Creation::Failed;
    SetLastError(reason);
    return result;
}

bool RemoveFile(const std::string& path) { return DeleteFileW(WindowsPath(path).c_str()) != 0; }

bool FreeBytes(const std::string& directory, std::uint64_t& bytes)
{
    ULARGE_INTEGER free{};
    if (GetDiskFreeSpaceExW(WindowsPath(directory).c_str(), &free, nullptr, nullptr) == 0) return false;
    bytes = free.QuadPart;
    return true;
}

std::uint64_t ProcessNumber() { return GetCurrentProcessId(); }

std::uint64_t PhysicalMemory()
{
    MEMORYSTATUSEX memory{};
    memory.dwLength = sizeof memory;
    return GlobalMemoryStatusEx(&memory) != 0 ? memory.ullTotalPhys : UINT64_MAX;
}

} // namespace ZelmResult
