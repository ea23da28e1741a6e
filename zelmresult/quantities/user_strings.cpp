#include "zelmresult/quantities/user_strings.h"

#include "zelmresult/quantities/grandeur.h"
#include "zelmresult/quantities/result_strings.h"
#include "zelmresult/quantities/translation.h"
#include "zelmresult/support/locale.h"

#include <mutex>

namespace ZelmResult {

namespace {

void Initialize()
{
    constexpr const char* context = "ZelmResultGeneralUserStrings";
    CGrandeur::setSymbolMicro(TranslateUserString(context, "u"));
    CGrandeur::setSymbolRootSquare(TranslateUserString(context, "½"));
    CGrandeur::setSymbolSquare(TranslateUserString(context, "²"));
    CUnite::setPrefix_micro(CGrandeur::symbolMicro());
    CUnite::M_chRegionalSeparator = RegionalDecimalSeparator();
    ResultConstString::load();
}

} // namespace

void ZelmResult_initializeUserStrings()
{
    static std::once_flag once; // threads wait until all is there
    std::call_once(once, Initialize);
}

wstring ZelmResult_translationExample(int number)
{
    constexpr const char* context = "TranslationExample";
    if (number == 2) return TranslateUserString(context, "° ² ³ © ½ µ ¤ (8-bit characters)");
    if (number == 3)
        return TranslateUserString(context,
                                   "This text is not present in the qm file, and contains utf8: ° ² ³ © ½ µ ¤");
    return TranslateUserString(context, "This is a translation example for ZelmResult.");
}

void* ZelmResult_hinstance() { return nullptr; }

} // namespace ZelmResult
