#pragma once

#include "zelmresult/support/wstring.h"

namespace ZelmResult {

// A host's translator: given the name of the table that a text belongs to, the text in UTF-8, and a comment (null),
// it returns the text in the host's language.
using TranslationHook = wstring (*)(const char* context, const char* text, const char* comment);

// Keeps a pointer to the hook for the whole process; null removes it. Call it before the host uses any text.
void ZelmResult_installTranslationHook(TranslationHook hook);

// Every fixed text of the library passes through this function on its way to the user. Without a hook the text is
// decoded from UTF-8 to 16-bit units; characters beyond 16 bits are dropped, and a form cut short ends the text. A null
// text gives an empty one without asking the hook; a null context reaches the hook as an empty text.
wstring TranslateUserString(const char* context, const char* text);

} // namespace ZelmResult
