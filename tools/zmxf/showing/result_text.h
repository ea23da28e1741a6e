#pragma once

#include "tools/zmxf/showing/shown_result.h"

#include <string>

namespace zmxf {

// All that is shown of a result, as tables.
std::string ResultText(const ShowOptions& options, const ShownResult& shown);

} // namespace zmxf
