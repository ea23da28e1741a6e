// Texts in the language of a host.

#include "zelmresult/zelmresult.h"

#include <cstdio>
#include <cstring>

using namespace ZelmResult;

namespace {

// A real translator looks the text up in a catalogue; this one knows one text.
wstring Translate(const char* /*table*/, const char* text, const char* /*comment*/)
{
    return std::strcmp(text, "Unknown") == 0 ? u"Unbekannt" : FromUtf8(text);
}

} // namespace

int main()
{
    ZelmResult_installTranslationHook(Translate); // optional
    ZelmResult_initializeUserStrings();           // once, after it

    CUnite pascal;
    pascal.SetLabelLinUnite(u"Pa");
    CGrandeur pressure;
    pressure.AjouteUniteDynamique(&pascal);
    (void)pressure.SetUniteCourante(&pascal);
    wstring digits, prefix, label;
    pressure.SI_to_string(digits, 0.0123F, 0.0001F, 0.001F, prefix, label, false, nullptr);
    CUnite::ConvertWithRegionalSeparator(digits);
    CGrandeur::concat_SI_string(digits, prefix, label, true); // "12.3 mPa", where numbers have a comma "12,3 mPa"
    std::printf("%s\n", ToUtf8(digits).c_str());
    std::printf("%s\n", ToUtf8(ResultTimeOperationString::to_translated_tstring(99)).c_str());
}
