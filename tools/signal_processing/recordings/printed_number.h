#pragma once

#include <string_view>

namespace zmxf {

// A number as a file prints it.
struct PrintedNumber {
    double value = 0.0;
    int lastPlace = 0;   // the power of ten of the last digit
    int significant = 0; // digits

    // By how much two neighbours differ that are printed with as many digits.
    [[nodiscard]] double Step() const;
};

// Takes a finite number, and the blanks before it, from the front of the text. The exponent may begin with a D, or with
// its sign alone. False, and the text as it was, when there is none.
bool TakeNumber(std::string_view& text, char decimal, PrintedNumber& number);
// The whole text, with blanks around it, is one number.
bool IsNumber(std::string_view text, char decimal, PrintedNumber& number);

// The text without the blanks around it.
std::string_view Trimmed(std::string_view text);

// The number with the fewest digits in a range above 0: what was rounded when it was printed.
double ShortestWithin(double low, double high);

} // namespace zmxf
