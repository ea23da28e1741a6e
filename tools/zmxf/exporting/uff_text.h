#pragma once

#include "zelmresult/support/wstring.h"

#include <cstddef>
#include <cstdint>
#include <string>

// Text and numbers in the columns of Universal Files, which are ASCII.

namespace zmxf {

// One line of ASCII that looks like the text: "m/s2" for m/s², "?" for what has no likeness.
std::string AsciiText(ZelmResult::wstring_view text);

// The text to the right of its columns; 0 for a number that they can't hold.
std::string UffInteger(std::int64_t value, std::size_t columns);

// A number of 13 columns, the first of which is blank, so that numbers are also apart without counting columns. The
// usual form has six digits. One that is further than tolerance from the value gets as many as there is room for.
struct UffReal {
    UffReal() = default;
    explicit UffReal(double number, double tolerance = 0.0);

    std::string text = "  0.00000E+00";
    double value = 0.0; // what the text says
};

// A number of 20 columns: all digits of a float.
void AppendUffDouble(std::string& text, float value);

} // namespace zmxf
