#pragma once

#include "tools/zmxf/viewer/carried_document.h"

#include <ostream>
#include <string_view>

namespace zmxf {

// The page with the documents inside, which it opens by itself.
void WritePage(std::ostream& out, std::string_view page, const std::vector<CarriedDocument>& documents);

} // namespace zmxf
