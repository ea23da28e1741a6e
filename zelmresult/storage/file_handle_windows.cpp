#include "zelmresult/storage/file_handle.h"

#include "zelmresult/support/system_error.h"
#include "zelmresult/support/time.h"
#include "zelmresult/support/windows_path.h"

#include <algorithm>
#include <bit>
#include <utility>
#include <windows.h>

namespace ZelmResult {

namespace {

constexpr std::size_t kMostAtOnce = std::size_t{1} << 30U; // bytes, of a count of 32 bits

DWORD RightsFor(FileHandle::Access access)
{
    if (access == FileHandle::Access::Read) return GENERIC_READ;
    return GENERIC_READ | GENERIC_WRITE | (access == FileHandle::Access::Scratch ? DELETE : 0U);
}

DWORD FlagsFor(FileHandle::Access access)
{
    return access == FileHandle::Access::Scratch ? FILE_FLAG_OPEN_REPARSE_POINT : FILE_ATTRIBUTE_NORMAL;
}

OVERLAPPED At(std::int64_t position)
{
    OVERLAPPED place{};
    place.Offset = static_cast<DWORD>(position);
    place.OffsetHigh = static_cast<DWORD>(position >> 32U);
    return place;
}

// There is no Stamp: a write by another shows in the times of a file only when that one closes it. There is no Discard
// either: it would need a sparse file, which not every file system has.
class WindowsFileHandle final : public FileHandle {
public:
    ~WindowsFileHandle() override { (void)WindowsFileHandle::Close(); }

    bool Open(const wstring& path, Access access) override
    {
        (void)Close();
        ForgetSystemError();
        if (path.find(u'\0') != wstring::npos) return false;
        const std::wstring name = ToWindowsPath(path);
        m_handle =
            CreateFileW(name.c_str(), RightsFor(access), FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                        nullptr, access == Access::Create ? OPEN_ALWAYS : OPEN_EXISTING, FlagsFor(access), nullptr);
        const bool isFolder =
            m_handle == INVALID_HANDLE_VALUE && GetLastError() == ERROR_ACCESS_DENIED && IsFolder(name);
        if (isFolder || (m_handle != INVALID_HANDLE_VALUE && !IsUsable(access))) {
            (void)Close();
            ForgetSystemError();
        }
        if (m_handle == INVALID_HANDLE_VALUE) return false;
        const bool isReady =
            access == Access::Create ? Empty() : access != Access::Scratch || (Empty() && RemoveName());
        if (access == Access::Scratch) PreferMemory();
        if (!isReady) (void)Close();
        return isReady;
    }

    std::int64_t ReadAt(std::int64_t position, char* buffer, std::size_t count) override
    {
        std::size_t done = 0;
        while (done < count) {
            OVERLAPPED place = At(position + static_cast<std::int64_t>(done));
            DWORD got = 0;
            const auto wanted = static_cast<DWORD>((std::min)(count - done, kMostAtOnce));
            if (ReadFile(m_handle, buffer + done, wanted, &got, &place) == 0 && GetLastError() != ERROR_HANDLE_EOF)
                return -1;
            if (got == 0) break;
            done += got;
        }
        return static_cast<std::int64_t>(done);
    }

    bool WriteAt(std::int64_t position, const char* buffer, std::size_t count) override
    {
        std::size_t done = 0;
        while (done < count) {
            OVERLAPPED place = At(position + static_cast<std::int64_t>(done));
            DWORD put = 0;
            const auto wanted = static_cast<DWORD>((std::min)(count - done, kMostAtOnce));
            if (WriteFile(m_handle, buffer + done, wanted, &put, &place) == 0 || put == 0) return false;
            done += put;
        }
        return true;
    }

    std::int64_t Size() override
    {
        LARGE_INTEGER size{};
        return GetFileSizeEx(m_handle, &size) != 0 ? size.QuadPart : -1;
    }

    std::optional<std::int64_t> ModifiedAt() override
    {
        ::FILETIME time{};
        if (GetFileTime(m_handle, nullptr, nullptr, &time) == 0) return std::nullopt;
        return OFileTime::fromFILETIME(std::bit_cast<OFILETIME>(time)).toOTime().GetTime();
    }

    bool Close() override
    {
        if (m_handle == INVALID_HANDLE_VALUE) return true;
        const DWORD reason = GetLastError();
        const HANDLE handle = std::exchange(m_handle, INVALID_HANDLE_VALUE);
        if (CloseHandle(handle) == 0) return false;
        SetLastError(reason); // why it is closed
        return true;
    }

private:
    static bool IsFolder(const std::wstring& name)
    {
        const DWORD attributes = GetFileAttributesW(name.c_str());
        if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) return true;
        SetLastError(ERROR_ACCESS_DENIED);
        return false;
    }

    [[nodiscard]] bool IsUsable(Access access) const
    {
        if (GetFileType(m_handle) != FILE_TYPE_DISK) return false; // a device or a pipe
        if (access != Access::Scratch) return true;
        BY_HANDLE_FILE_INFORMATION facts{};
        return GetFileInformationByHandle(m_handle, &facts) != 0 && facts.nNumberOfLinks == 1 &&
               (facts.dwFileAttributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT)) == 0;
    }

    [[nodiscard]] bool Empty() const
    {
        FILE_END_OF_FILE_INFO end{};
        return SetFileInformationByHandle(m_handle, FileEndOfFileInfo, &end, sizeof end) != 0;
    }

    // The content goes to the disk only when memory runs short. An open of a file that exists sets no attributes.
    void PreferMemory() const
    {
        FILE_BASIC_INFO facts{};
        facts.FileAttributes = FILE_ATTRIBUTE_TEMPORARY;
        (void)SetFileInformationByHandle(m_handle, FileBasicInfo, &facts, sizeof facts);
    }

    // It stays in use until the handle is closed, whatever ends the process.
    [[nodiscard]] bool RemoveName() const
    {
        FILE_DISPOSITION_INFO disposition{};
        disposition.DeleteFile = TRUE;
        return SetFileInformationByHandle(m_handle, FileDispositionInfo, &disposition, sizeof disposition) != 0;
    }

    HANDLE m_handle = INVALID_HANDLE_VALUE;
};

} // namespace

std::unique_ptr<FileHandle> MakePlatformFileHandle() { return std::make_unique<WindowsFileHandle>(); }

} // namespace ZelmResult
