#pragma once

#include "zelmresult/reading/labelled_result.h"

#include <cstdint>
#include <variant>
#include <vector>

namespace zmxf {

// What an export says of a result or of a quantity, by name. The names are the same in all formats.
struct ExportedAttribute {
    const char* name;
    std::variant<ZelmResult::wstring, std::int64_t, double> value;
};

// What a result is, and where it comes from.
std::vector<ExportedAttribute> AttributesOf(const ZelmResult::LabelledInformation& information);
// The quantity, the unit in which people see it, and its level of 0 dB in SI units.
std::vector<ExportedAttribute> AttributesOf(const ZelmResult::LabelledQuantity& quantity);

// "2026-11-21T07:32:06Z"
ZelmResult::wstring IsoDate(const ZelmResult::OTime& date);

} // namespace zmxf
