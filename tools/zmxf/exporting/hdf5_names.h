#pragma once

#include "zelmresult/support/wstring.h"

#include <map>
#include <string>

namespace zmxf::hdf5 {

// Any text as UTF-8 that ends at its NUL: U+FFFD stands for a NUL inside, and for half a surrogate pair.
std::string Text(ZelmResult::wstring_view text);

// Names for the arrays of a group, each given once.
class Names {
public:
    // A name that netCDF and attributes that list names by blanks take: a letter first, then letters, digits and
    // underscores. What is none becomes an underscore; a number is added where the name is taken.
    std::string Take(ZelmResult::wstring_view text);

private:
    std::map<std::string, int> m_taken; // how often it was asked for
};

} // namespace zmxf::hdf5
