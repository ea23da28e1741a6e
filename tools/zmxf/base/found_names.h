#pragma once

#include <string>
#include <system_error>
#include <vector>

// What Windows finds by a pattern. Other platforms don't compile what includes this.

namespace zmxf {

// The names, without their folder, of what a path describes whose last part may hold * and ?. With reason when there
// may be more; no name at all is none.
std::vector<std::string> FoundNames(const std::string& pattern, std::error_code& reason);

} // namespace zmxf
