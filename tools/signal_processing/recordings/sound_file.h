#pragma once

#include "tools/signal_processing/recordings/sample_source.h"

#include <memory>

namespace zmxf {

// WAV, FLAC and what else libsndfile knows. Keeps a pointer to the file. Gives nothing when the format is none of them;
// throws RecordingError for one that is, and can't be read. path is for messages.
std::unique_ptr<SampleSource> OpenSoundFile(ZelmResult::FileHandle& file, const std::string& path);

// Writes samples, the channels of each frame side by side, as WAV with 32-bit floating-point values. The same samples
// give the same bytes. path is for messages. Throws RecordingError.
void WriteRecording(ZelmResult::FileHandle& file, const std::string& path, std::span<const float> samples, int channels,
                    int sampleRate);

// What libsndfile was built with.
struct SoundLibrary {
    std::string version; // "libsndfile-1.2.3"
    bool readsFlac = false;
    bool readsOgg = false;
};
SoundLibrary DescribeSoundLibrary();

} // namespace zmxf
