#include "zelmresult/support/system_error.h"

#include "zelmresult/support/text.h"

#include <string>
#include <windows.h>

namespace ZelmResult {

namespace {

// The numbers of Windows in its own words, as UTF-8. The standard library's have the code page of the process.
class WindowsCategory final : public std::error_category {
public:
    [[nodiscard]] const char* name() const noexcept override { return "windows"; }

    [[nodiscard]] std::string message(int number) const override
    {
        constexpr DWORD form =
            FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK;
        std::wstring text(512, L'\0');
        text.resize(FormatMessageW(form, nullptr, static_cast<DWORD>(number), 0, text.data(),
                                   static_cast<DWORD>(text.size()), nullptr));
        while (!text.empty() && (text.back() == L' ' || text.back() == L'.')) text.pop_back();
        return text.empty() ? "error " + std::to_string(number) + " of Windows"
                            : ToUtf8(wstring(text.begin(), text.end()));
    }
};

const WindowsCategory g_category;

// The counterpart of these speaks of devices.
bool IsInUse(DWORD number) { return number == ERROR_SHARING_VIOLATION || number == ERROR_LOCK_VIOLATION; }

} // namespace

std::error_code LastSystemError()
{
    const DWORD number = GetLastError();
    const auto value = static_cast<int>(number);
    const std::error_condition counterpart = std::system_category().default_error_condition(value);
    if (number == ERROR_SUCCESS) return {};
    if (counterpart.category() == std::generic_category() && !IsInUse(number))
        return {counterpart.value(), std::generic_category()};
    return {value, g_category};
}

void ForgetSystemError() { SetLastError(ERROR_SUCCESS); }

} // namespace ZelmResult
