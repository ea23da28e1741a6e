#include "tools/signal_processing/recordings/line_reader.h"

#include "tools/signal_processing/recordings/sample_source.h"
#include "zelmresult/support/system_error.h"

#include <algorithm>
#include <fmt/format.h>
#include <utility>

namespace zmxf {

namespace {

constexpr std::size_t kPiece = 16384;

} // namespace

LineReader::LineReader(ZelmResult::FileHandle& file, std::string path, std::int64_t position, std::int64_t linesBefore)
    : m_file(&file), m_path(std::move(path)), m_number(linesBefore), m_bufferAt(position)
{
}

// Reads on after what is left of the buffer. False at the end of the file.
bool LineReader::Fill()
{
    m_buffer.erase(m_buffer.begin(), m_buffer.begin() + static_cast<std::ptrdiff_t>(m_next));
    m_bufferAt += static_cast<std::int64_t>(m_next);
    m_next = 0;
    const std::size_t filled = m_buffer.size();
    if (filled > kLongestLine)
        ThrowUnreadable(m_path, fmt::format("line {} is longer than {} bytes", m_number + 1, kLongestLine));
    m_buffer.resize(filled + std::max(kPiece, filled));
    const std::int64_t got = m_file->ReadAt(m_bufferAt + static_cast<std::int64_t>(filled), m_buffer.data() + filled,
                                            m_buffer.size() - filled);
    if (got < 0) ThrowUnreadable(m_path, ZelmResult::LastSystemError().message());
    m_buffer.resize(filled + static_cast<std::size_t>(got));
    return got > 0;
}

bool LineReader::Next(std::string_view& line)
{
    std::size_t searched = 0;
    while (true) {
        const auto from = m_buffer.begin() + static_cast<std::ptrdiff_t>(m_next);
        const auto feed = std::find(from + static_cast<std::ptrdiff_t>(searched), m_buffer.end(), '\n');
        searched = static_cast<std::size_t>(feed - from);
        m_isWhole = feed != m_buffer.end();
        if (m_isWhole || !Fill()) break;
    }
    if (!m_isWhole && searched == 0) return false;
    line = {m_buffer.data() + m_next, searched};
    m_next += searched + (m_isWhole ? 1 : 0);
    if (line.ends_with('\r')) line.remove_suffix(1);
    ++m_number;
    return true;
}

} // namespace zmxf
