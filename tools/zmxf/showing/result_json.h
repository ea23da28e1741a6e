#pragma once

#include "tools/zmxf/showing/description.h"
#include "tools/zmxf/showing/shown_result.h"

namespace zmxf {

// All that is shown of a result.
Json ResultJson(const ShowOptions& options, const ShownResult& shown);

} // namespace zmxf
