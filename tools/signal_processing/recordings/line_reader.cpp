#include "tools/signal_processing/recordings/line_reader.h"

#include "tools/signal_processing/recordings/sample_source.h"

#include <algorithm>
#include <cerrno>
#include <fmt/format.h>
#include <system_error>
#include <unistd.h>

namespace zmxf {

namespace {

constexpr std::size_t kPiece = 16384;

} // namespace

LineReader::LineReader(int descriptor, std::string path, std::int64_t position, std::int64_t linesBefore)
    : m_descriptor(descriptor), m_path(std::move(path)), m_number(linesBefore), m_bufferAt(position)
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
    const ssize_t got = ::pread(m_descriptor, m_buffer.data() + filled, m_buffer.size() - filled,
                                m_bufferAt + static_cast<std::int64_t>(filled));
    m_buffer.resize(filled + static_cast<std::size_t>(std::max<ssize_t>(got, 0)));
    if (got < 0) ThrowUnreadable(m_path, std::generic_category().message(errno));
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
