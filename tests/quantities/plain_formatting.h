#pragma once

#include "zelmresult/support/wstring.h"

#include <cstdint>

namespace ZelmResult::test {

// The text of a value worked out a second time, step after step and without any part of the library, to hold CUnite
// against.
struct PlainUnit {
    float slope = 1, offset = 0, ref0dB = 1, coefdB = 20;
    int id = 0, low = -3, high = 3, notation = 1, decimals = 0;
    bool noZero = true, fixedDecimals = false;
    wstring lin, level = u"dB"; // the labels, with the suffix of a weighting if there is one
};

struct PlainValue {
    float value = 0, absolute = 0, relative = 0;
    bool dB = false;
    int rounding = 1, notation = -1;
};

struct PlainText {
    wstring digits, prefix, label;
    bool operator==(const PlainText&) const = default;
};

// What isn't told by the value stays as it was in the text. Both repair the prefix limits of the unit.
void plainFromSI(PlainUnit& unit, PlainValue what, PlainText& text);
void plainFromUnit(PlainUnit& unit, const PlainValue& what, PlainText& text);
double plainAdjusted(const PlainUnit& unit, const PlainValue& what);
float plainInUnit(const PlainUnit& unit, float si, bool dB);
double plainInSI(const PlainUnit& unit, double value, bool dB);
std::int64_t plainRounded(float value, int rounding);

} // namespace ZelmResult::test
