#pragma once

#include "tools/zmxf/showing/description.h"
#include "zelmresult/reading/stored_branches.h"

namespace zmxf {

// The settings of a system as a tree.
Json SettingsJson(const ZelmResult::StoredSettings& stored, ValueTexts texts = ValueTexts::Without);

} // namespace zmxf
