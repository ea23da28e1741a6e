#pragma once

#include "tools/zmxf/showing/description.h"
#include "zelmresult/reading/stored_branches.h"

#include <string>

// What a system holds besides results, as JSON.

namespace zmxf {

// The tree of modules, submodules and settings.
Json SettingsJson(const ZelmResult::StoredSettings& stored);
// Disks, tracks and transducers.
Json RecordingJson(const ZelmResult::StoredRecording& stored);

double RecordedSeconds(const ZelmResult::strEnregHeader& header);
// Empty for no date.
std::string DateText(const ZelmResult::SYSTEMTIME& date);

} // namespace zmxf
