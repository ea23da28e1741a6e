#include "zelmresult/support/windows_path.h"

#include <windows.h>

namespace ZelmResult {

namespace {

constexpr std::size_t kLongestPlain = MAX_PATH - 13; // a folder must have room for a short name in it
constexpr std::wstring_view kDevice = L"\\\\.\\";
constexpr std::wstring_view kUnlimited = L"\\\\?\\";

std::wstring Absolute(const std::wstring& path)
{
    std::wstring whole(GetFullPathNameW(path.c_str(), 0, nullptr, nullptr), L'\0');
    whole.resize(GetFullPathNameW(path.c_str(), static_cast<DWORD>(whole.size()), whole.data(), nullptr));
    return whole;
}

} // namespace

std::wstring ToWindowsPath(wstring_view path)
{
    const std::wstring plain(path.begin(), path.end());
    const std::wstring whole = Absolute(plain); // the folder that a short path begins in may be deep
    if (whole.size() < kLongestPlain || whole.starts_with(kUnlimited) || whole.starts_with(kDevice)) return plain;
    if (whole.starts_with(L"\\\\")) return std::wstring(kUnlimited) + L"UNC" + whole.substr(1);
    return std::wstring(kUnlimited) + whole;
}

wstring FromWindowsPath(std::wstring_view path) { return {path.begin(), path.end()}; }

} // namespace ZelmResult
