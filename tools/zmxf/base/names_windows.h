#pragma once

#include <string>
#include <system_error>
#include <vector>

namespace zmxf {

// The names of the files and folders that a pattern describes, whose folder has none of its marks. Empty with a reason
// when they can't be known; there is none for a pattern that describes nothing.
std::vector<std::string> NamesLike(const std::string& pattern, std::error_code& reason);

} // namespace zmxf
