#pragma once

#include "zelmresult/support/wstring.h"

namespace ZelmResult {

// Fills the symbols, the micro prefix, the decimal separator and the tables of names in the host's language. To be
// called once at start, after ZelmResult_installTranslationHook; every further call does nothing.
void ZelmResult_initializeUserStrings();

// A text for trying a translation: 2 and 3 hold characters beyond ASCII, 3 one that no table is meant to know.
wstring ZelmResult_translationExample(int number);

// The handle of the library's module, for hosts on a platform that has one; null elsewhere.
void* ZelmResult_hinstance();

} // namespace ZelmResult
