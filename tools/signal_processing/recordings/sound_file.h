#pragma once

#include "tools/signal_processing/recordings/sample_source.h"

#include <memory>

namespace zmxf {

// WAV, FLAC and what else libsndfile knows. Keeps the descriptor, which stays the caller's. Gives nothing when the
// format is none of them; throws RecordingError for one that is, and can't be read. path is for messages.
std::unique_ptr<SampleSource> OpenSoundFile(int descriptor, const std::string& path);

// Writes samples, the channels of each frame side by side, as WAV with 32-bit floating-point values. The same samples
// give the same bytes. The descriptor stays open; path is for messages. Throws RecordingError.
void WriteRecording(int descriptor, const std::string& path, std::span<const float> samples, int channels,
                    int sampleRate);

} // namespace zmxf
