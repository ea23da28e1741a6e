#include "zelmresult/support/locale.h"

#include <array>
#include <windows.h>

namespace ZelmResult {

char16_t RegionalDecimalSeparator()
{
    std::array<wchar_t, 8> separator{};
    const int length = GetLocaleInfoEx(LOCALE_NAME_USER_DEFAULT, LOCALE_SDECIMAL, separator.data(),
                                       static_cast<int>(separator.size()));
    return length > 1 ? static_cast<char16_t>(separator.front()) : u'.';
}

} // namespace ZelmResult
