#include "zelmresult/support/locale.h"

#include "zelmresult/support/text.h"

#include <langinfo.h>
#include <locale.h> // NOLINT(modernize-deprecated-headers): only this header has newlocale

namespace ZelmResult {

char16_t RegionalDecimalSeparator()
{
    // One category only: the locale of another may not exist on this machine.
    const locale_t settings = newlocale(LC_NUMERIC_MASK, "", nullptr);
    if (settings == nullptr) return u'.';
    const wstring separator = FromUtf8(nl_langinfo_l(RADIXCHAR, settings));
    freelocale(settings);
    return separator.empty() ? u'.' : separator.front();
}

} // namespace ZelmResult
