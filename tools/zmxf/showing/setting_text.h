#pragma once

#include "tools/zmxf/showing/description.h"
#include "zelmresult/settings/reglage_data.h"

#include <string>

namespace zmxf {

// What a setting is and holds.
struct DescribedSetting {
    std::string kind;                                // "text", "number" and so on
    std::string text;                                // the value on one line; without the settings inside
    Json value;                                      // the same, with what the text leaves out
    std::vector<ZelmResult::CReglageData*> children; // lent: of tables and virtual tachometers
};

DescribedSetting Describe(const ZelmResult::CReglageData& setting);

} // namespace zmxf
