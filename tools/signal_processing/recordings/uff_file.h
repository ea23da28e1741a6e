#pragma once

#include "tools/signal_processing/recordings/sample_source.h"

#include <memory>

namespace zmxf {

// Time signals of a Universal File, a dataset 58 or 58b per channel, all of one rate and length. Gives nothing when the
// file is no Universal File; throws RecordingError when it can't be read. Keeps a pointer to the file; path is
// for messages.
std::unique_ptr<SampleSource> OpenUffFile(ZelmResult::FileHandle& file, const std::string& path);

} // namespace zmxf
