#include "tools/zmxf/base/failure.h"

#include "tools/zmxf/base/colour.h"
#include "tools/zmxf/base/text.h"

#include <iostream>

namespace zmxf {

void PrintFailure(std::string_view what)
{
    std::cout.flush(); // so that the line stands after what was printed before, where both go to one terminal
    std::cerr << Coloured("zmxf:", Colour::Red, Stream::Errors) << ' ' << Printable(what) << '\n';
}

void PrintWarning(std::string_view what)
{
    std::cerr << Coloured("zmxf: warning:", Colour::Yellow, Stream::Errors) << ' ' << Printable(what) << '\n';
}

} // namespace zmxf
