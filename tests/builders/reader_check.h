#pragma once

#include "zelmresult/support/wstring.h"

#include <string>

namespace ZelmResult::test {

// How what a reader gives of a file differs from what a load gives, empty when it doesn't. A file that doesn't load is
// read all the same, and differs from nothing.
std::string DifferenceFromLoad(const wstring& path);

} // namespace ZelmResult::test
