#include "tools/zmxf/base/failure.h"

#include "tools/zmxf/base/text.h"

#include <iostream>

namespace zmxf {

void PrintFailure(std::string_view what)
{
    std::cout.flush(); // so that the line stands after what was printed before, where both go to one terminal
    std::cerr << "zmxf: " << Printable(what) << '\n';
}

} // namespace zmxf
