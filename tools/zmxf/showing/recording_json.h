#pragma once

#include "tools/zmxf/showing/description.h"
#include "zelmresult/reading/stored_branches.h"

namespace zmxf {

double SecondsOf(const ZelmResult::strEnregHeader& header);
// Empty for no date.
std::string DateText(const ZelmResult::OSYSTEMTIME& date);

// The recording of a system, and its transducers.
Json RecordingJson(const ZelmResult::StoredRecording& stored, ValueTexts texts = ValueTexts::Without);

} // namespace zmxf
