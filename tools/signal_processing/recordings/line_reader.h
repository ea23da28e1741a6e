#pragma once

#include "zelmresult/storage/file_handle.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zmxf {

// The lines of a file, from a position on, with memory for the longest of them.
class LineReader {
public:
    static constexpr std::size_t kLongestLine = 1U << 20U;

    // Keeps a pointer to the file. path is for messages.
    LineReader(ZelmResult::FileHandle& file, std::string path, std::int64_t position = 0, std::int64_t linesBefore = 0);

    // The next line without its end, a line feed with or without a carriage return before it; lent until the next call.
    // False at the end of the file. Throws RecordingError for a line that is too long, and when the file can't be read.
    bool Next(std::string_view& line);
    // Of the line that was read last, counted from 1.
    [[nodiscard]] std::int64_t number() const { return m_number; }
    // Where the next line begins.
    [[nodiscard]] std::int64_t position() const { return m_bufferAt + static_cast<std::int64_t>(m_next); }
    // Whether the last line had an end.
    [[nodiscard]] bool isWhole() const { return m_isWhole; }

private:
    bool Fill();

    ZelmResult::FileHandle* m_file;
    std::string m_path;
    std::int64_t m_number;
    std::int64_t m_bufferAt; // in the file
    std::vector<char> m_buffer;
    std::size_t m_next = 0;
    bool m_isWhole = true;
};

} // namespace zmxf
