#pragma once

#include "fuzz/laws.h"
#include "tools/signal_processing/recordings/sample_source.h"

namespace ZelmResult::fuzz {

using OpenSource = std::function<std::unique_ptr<zmxf::SampleSource>(FileHandle& file, const std::string& path)>;

// A recording of any bytes is refused with a reason of one line, or gives the samples that it announces, and the
// same ones once more.
void CheckRecording(const Data& bytes, const OpenSource& open);

} // namespace ZelmResult::fuzz
