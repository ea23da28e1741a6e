#pragma once

#include "zelmresult/support/wstring.h"

namespace zmxf {

// Whether the whole text is what the pattern describes: * any characters, ? one, [a-z] one of these, [!a-z] one of the
// others, anything else itself. A [ without its ] is itself. Takes no longer than the product of both lengths.
bool MatchesGlob(ZelmResult::wstring_view pattern, ZelmResult::wstring_view text);

} // namespace zmxf
