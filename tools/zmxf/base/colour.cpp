#include "tools/zmxf/base/colour.h"

#include <cstdlib>
#include <fmt/format.h>

namespace zmxf {

namespace {

std::string_view Variable(const char* name)
{
    const char* const value = std::getenv(name);
    return value != nullptr ? value : "";
}

bool HasColours(Stream stream)
{
    return Variable("NO_COLOR").empty() && Variable("TERM") != "dumb" && TakesEscapes(stream);
}

int Code(Colour colour)
{
    switch (colour) {
    case Colour::Red: return 31;
    case Colour::Green: return 32;
    case Colour::Yellow: break;
    }
    return 33;
}

} // namespace

std::string Coloured(std::string_view text, Colour colour, Stream stream)
{
    return HasColours(stream) ? fmt::format("\x1B[{}m{}\x1B[0m", Code(colour), text) : std::string(text);
}

} // namespace zmxf
