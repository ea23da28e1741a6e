#pragma once

#include "tools/zmxf/showing/description.h"
#include "zelmresult/reading/stored_branches.h"

namespace zmxf {

double RecordedSeconds(const ZelmResult::strEnregHeader& header);
// The recording of a system with its tracks, and the transducers.
Json RecordingJson(const ZelmResult::StoredRecording& stored);

} // namespace zmxf
