#pragma once

#include <string_view>

namespace zmxf {

// The page that shows documents in a browser. Empty in a program that was built without it.
std::string_view ViewerPage();

} // namespace zmxf
