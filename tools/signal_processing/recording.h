#pragma once

#include "tools/signal_processing/recordings/csv_file.h"

#include <memory>

namespace zmxf {

// Which samples to read.
struct RecordingSource {
    std::string path;
    double start = 0.0;             // s
    std::optional<double> end = {}; // s; that of the recording without one
    CsvFormat csv = {};             // for a recording in columns of numbers, and no other
};

// A recording, or a stretch of it, read from its start to its end in blocks. Values are as stored for floating-point
// formats, and in parts of full scale for integer ones: 16 bits are divided by 32768.
class RecordingReader {
public:
    // Tells the format by the content. Throws RecordingError.
    explicit RecordingReader(const RecordingSource& source);
    RecordingReader(const RecordingReader&) = delete;
    RecordingReader& operator=(const RecordingReader&) = delete;

    [[nodiscard]] const std::string& path() const { return m_path; }
    [[nodiscard]] const RecordingFacts& facts() const { return m_facts; }
    // Goes back to the first frame. Throws RecordingError.
    void Rewind();
    // The next frames, the channels of each side by side; lent until the next call. Empty at the end. Throws
    // RecordingError when the recording ends before it should.
    std::span<const double> NextBlock();

private:
    void ChooseFrames(const RecordingSource& source);

    std::string m_path;
    std::unique_ptr<ZelmResult::FileHandle> m_file;
    std::unique_ptr<SampleSource> m_source; // reads from the file
    RecordingFacts m_facts;
    std::vector<double> m_block;
    std::int64_t m_next = 0; // the frame that comes next, in the file
    std::int64_t m_end = 0;  // the one after the last
};

} // namespace zmxf
