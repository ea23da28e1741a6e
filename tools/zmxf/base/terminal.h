#pragma once

#include <cstdint>

namespace zmxf {

enum class Stream : std::uint8_t { Output, Errors };

bool IsTerminal(Stream stream);
// Whether it is a terminal that understands escape sequences, which it is told where it must be.
bool TakesEscapes(Stream stream);

// To be called first. Standard streams that are closed get something in their place, since the next files that are
// opened would take their numbers and get what is printed. A file that outgrows its limit becomes a failed write like
// any other. On Windows bytes are printed as they are, and a console takes them as UTF-8 until the program ends.
void PrepareStandardStreams();

} // namespace zmxf
