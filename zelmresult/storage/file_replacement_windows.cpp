#include "zelmresult/storage/file_replacement.h"

#include "zelmresult/storage/temporary_files.h"
#include "zelmresult/support/path_bytes.h"
#include "zelmresult/support/system_error.h"
#include "zelmresult/support/windows_path.h"

#include <string>
#include <system_error>
#include <windows.h>

namespace ZelmResult {

namespace {

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

class Handle {
public:
    Handle(const std::wstring& path, DWORD rights, DWORD flags)
        : m_handle(CreateFileW(path.c_str(), rights, kShareAll, nullptr, OPEN_EXISTING, flags, nullptr))
    {
    }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    ~Handle()
    {
        const DWORD reason = GetLastError();
        if (IsOpen()) (void)CloseHandle(m_handle);
        SetLastError(reason);
    }

    [[nodiscard]] bool IsOpen() const { return m_handle != INVALID_HANDLE_VALUE; }
    [[nodiscard]] HANDLE get() const { return m_handle; }

private:
    HANDLE m_handle;
};

bool Exists(const std::wstring& path) { return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES; }

// The file to which a link leads; the path itself when it is none.
std::wstring AfterLinks(const std::wstring& path)
{
    const DWORD attributes = GetFileAttributesW(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0) return path;
    const Handle file(path, 0, FILE_FLAG_BACKUP_SEMANTICS);
    if (!file.IsOpen()) return path;
    std::wstring target(GetFinalPathNameByHandleW(file.get(), nullptr, 0, 0), L'\0');
    target.resize(GetFinalPathNameByHandleW(file.get(), target.data(), static_cast<DWORD>(target.size()), 0));
    return target.empty() ? path : target;
}

// Whether the path names a part of a file, as in "file:part", beside which no other file can wait.
bool NamesStream(const std::wstring& path)
{
    const std::size_t separator = path.find_last_of(L"\\/");
    const bool mayBeDrive = separator == std::wstring::npos;
    return path.find(L':', mayBeDrive ? 2 : separator + 1) != std::wstring::npos;
}

// Empty when a file may take that name: it is free, or is that of a file that may be written, and that nobody keeps
// from being replaced.
std::error_code WhyNot(const std::wstring& path)
{
    if (NamesStream(path)) return std::make_error_code(std::errc::invalid_argument);
    const DWORD attributes = GetFileAttributesW(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES)
        return GetLastError() == ERROR_FILE_NOT_FOUND ? std::error_code() : LastSystemError();
    if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) return std::make_error_code(std::errc::is_a_directory);
    if ((attributes & FILE_ATTRIBUTE_READONLY) != 0) return std::make_error_code(std::errc::permission_denied);
    const Handle file(path, GENERIC_READ | GENERIC_WRITE | DELETE, FILE_ATTRIBUTE_NORMAL);
    if (!file.IsOpen()) return LastSystemError();
    const bool isFile = GetFileType(file.get()) == FILE_TYPE_DISK;
    return isFile ? std::error_code() : std::make_error_code(std::errc::invalid_argument);
}

// A name beside the file that nothing has, made as an empty file; empty when none can be made.
wstring MakeBeside(const std::wstring& path)
{
    const std::size_t separator = path.find_last_of(L"\\/:");
    const std::wstring folder = path.substr(0, separator == std::wstring::npos ? 0 : separator + 1);
    const std::string start = PathToBytes(FromWindowsPath(folder)) + ".zmxf-" + std::to_string(ProcessNumber()) + '-';
    for (int attempt = 0;; ++attempt) {
        const std::string name = start + std::to_string(attempt) + ".tmp";
        const Creation creation = CreateExclusively(name);
        if (creation != Creation::NameInUse) return creation == Creation::Made ? PathFromBytes(name) : wstring();
    }
}

bool Sync(const std::wstring& path)
{
    const Handle file(path, GENERIC_WRITE, FILE_ATTRIBUTE_NORMAL);
    return file.IsOpen() && FlushFileBuffers(file.get()) != 0;
}

bool Rename(const std::wstring& from, const std::wstring& to)
{
    return MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0;
}

bool IsFree(const std::wstring& path) { return !Exists(path) && GetLastError() == ERROR_FILE_NOT_FOUND; }

bool IsEmpty(const std::wstring& path)
{
    WIN32_FILE_ATTRIBUTE_DATA facts{};
    return GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &facts) != 0 && facts.nFileSizeLow == 0 &&
           facts.nFileSizeHigh == 0;
}

// The new file inherits rights, attributes and the date of making, where the file system can do that. The former one
// waits under another name, empty until then, while the new one takes its own. A replacement that fails between the two
// leaves the name free: the former file goes back, unless another has taken the name meanwhile, or else the new one
// takes it. The name may also be free because the former file was removed, or is being replaced by another.
bool Replace(const std::wstring& former, const std::wstring& temporary)
{
    const std::wstring kept = ToWindowsPath(MakeBeside(former));
    if (kept.empty()) return false;
    constexpr DWORD flags = REPLACEFILE_IGNORE_MERGE_ERRORS | REPLACEFILE_IGNORE_ACL_ERRORS;
    const bool isReplaced = ReplaceFileW(former.c_str(), temporary.c_str(), kept.c_str(), flags, nullptr, nullptr) != 0;
    DWORD reason = GetLastError();
    const bool isFree = !isReplaced && IsFree(former);
    const bool isBack =
        isFree && !IsEmpty(kept) && MoveFileExW(kept.c_str(), former.c_str(), MOVEFILE_WRITE_THROUGH) != 0;
    bool isNew = isReplaced;
    if (!isReplaced && !isBack && (isFree || reason != ERROR_SHARING_VIOLATION)) {
        isNew = Rename(temporary, former);
        reason = GetLastError();
    }
    if (isNew || Exists(former) || IsEmpty(kept)) (void)DeleteFileW(kept.c_str()); // else it is all that is left
    SetLastError(reason);
    return isNew;
}

} // namespace

FileReplacement::FileReplacement(const wstring& path)
{
    if (path.empty() || path.find(u'\0') != wstring::npos) {
        m_reason = std::make_error_code(std::errc::no_such_file_or_directory).message();
        return;
    }
    const std::wstring target = AfterLinks(ToWindowsPath(path));
    if (const std::error_code why = WhyNot(target)) {
        m_reason = why.message();
        return;
    }
    m_path = FromWindowsPath(target);
    m_temporary = MakeBeside(target);
    if (!IsMade()) (void)Fail();
}

FileReplacement::~FileReplacement()
{
    if (IsMade()) (void)DeleteFileW(ToWindowsPath(m_temporary).c_str());
}

bool FileReplacement::Commit()
{
    const std::wstring temporary = ToWindowsPath(m_temporary);
    const std::wstring path = ToWindowsPath(m_path);
    if (!IsMade() || !Sync(temporary)) return Fail();
    if (!(Exists(path) ? Replace(path, temporary) : Rename(temporary, path))) return Fail();
    m_temporary.clear();
    return true;
}

bool FileReplacement::Fail()
{
    m_reason = LastSystemError().message();
    return false;
}

} // namespace ZelmResult
