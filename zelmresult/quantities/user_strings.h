#pragma once

#include "zelmresult/support/wstring.h"

namespace ZelmResult {

// Fills the symbols, the micro prefix, the decimal separator and the tables of names in the host's language. Call it
// once at start, after ZelmResult_installTranslationHook; every further call does nothing.
void ZelmResult_initializeUserStrings();

// A text to test a translation with: 2 and 3 hold characters beyond ASCII, 3 one that should be in no table.
wstring ZelmResult_translationExample(int number);

// The handle of the library's module, for hosts on a platform that has one; null elsewhere.
void* ZelmResult_hinstance();

} // namespace ZelmResult
