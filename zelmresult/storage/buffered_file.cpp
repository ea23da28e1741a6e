#include "zelmresult/storage/buffered_file.h"

#include <algorithm>

namespace ZelmResult {

namespace {

constexpr std::int64_t kReadWindow = 131072;
constexpr std::int64_t kLeastDirectRead = 65536;
constexpr std::int64_t kReadAfterJump = 4096; // a reader that goes from header to header needs little at each
constexpr std::int64_t kFirstWriteWindow = 65536;
constexpr std::int64_t kLeastWriteBuffer = 4096;
constexpr std::int64_t kMostWriteBuffer = std::int64_t{16} * 1048576;

} // namespace

BufferedFile::BufferedFile(std::unique_ptr<FileHandle> handle, bool writable, std::int64_t writeBuffer)
    : m_handle(std::move(handle)), m_writable(writable),
      m_writeBuffer(std::clamp(writeBuffer, kLeastWriteBuffer, kMostWriteBuffer)),
      m_nextWrite(std::min(kFirstWriteWindow, m_writeBuffer))
{
}

BufferedFile::~BufferedFile() { (void)Close(); }

std::int64_t BufferedFile::Size()
{
    if (!m_handle) return -1;
    if (!m_writable) return m_size >= 0 ? m_size : m_size = m_handle->Size();
    const std::int64_t onDevice = m_handle->Size();
    return onDevice < 0 || m_use != Use::Writing ? onDevice : std::max(onDevice, m_start + Filled());
}

// ---- The window ----

std::int64_t BufferedFile::Filled() const
{
    return m_cursor->write != nullptr ? std::max<std::int64_t>(m_filled, m_cursor->write - m_window.get()) : m_filled;
}

void BufferedFile::Detach()
{
    m_position = Position();
    m_filled = Filled();
    *m_cursor = {};
}

// Sets the cursor when the position is in the window or at its end.
void BufferedFile::Attach()
{
    const std::int64_t offset = m_position - m_start;
    if (m_use == Use::None || m_writeFailed || offset < 0 || offset > m_filled) return;
    char* const here = m_window.get() + offset;
    if (m_use == Use::Reading)
        *m_cursor = {here, m_window.get() + m_filled, nullptr, nullptr};
    else
        *m_cursor = {nullptr, nullptr, here, m_window.get() + m_capacity};
}

bool BufferedFile::Seek(std::int64_t position)
{
    if (!m_handle || position < 0 || position > kLastPosition) return false;
    Detach();
    m_position = position;
    Attach();
    return true;
}

// Begins an empty window at the position. Its bytes aren't initialised.
void BufferedFile::BeginWindow(Use use, std::int64_t size)
{
    m_use = Use::None;
    if (m_allocated < size) {
        m_allocated = 0;
        m_window.reset();
        m_window.reset(new char[static_cast<std::size_t>(size)]);
        m_allocated = size;
    }
    m_use = use;
    m_start = m_position;
    m_filled = 0;
}

// ---- Reading ----

std::int32_t BufferedFile::ReadBeyondWindow(char* buffer, std::int32_t count)
{
    if (!m_handle || count < 0 || (m_writable && !Flush())) return -1;
    if (count == 0) return 0;
    Detach();
    const std::int64_t before = m_position;
    const std::int64_t done = ReadThroughWindow(buffer, std::min<std::int64_t>(count, kLastPosition - m_position));
    if (done < 0) m_position = before;
    Attach();
    return static_cast<std::int32_t>(done);
}

std::int64_t BufferedFile::ReadThroughWindow(char* buffer, std::int64_t count)
{
    std::int64_t done = 0;
    while (done < count) {
        const std::int64_t offset = m_position - m_start;
        if (m_use == Use::Reading && offset >= 0 && offset < m_filled) {
            const std::int64_t n = std::min(count - done, m_filled - offset);
            std::memcpy(buffer + done, m_window.get() + offset, static_cast<std::size_t>(n));
            m_position += n;
            done += n;
        } else if (count - done >= kLeastDirectRead) {
            const std::int64_t n = ReadFromDevice(buffer + done, count - done);
            if (n < 0) return -1;
            m_position += n;
            return done + n;
        } else if (!FillReadWindow()) {
            return -1;
        } else if (m_filled == 0) {
            break;
        }
    }
    return done;
}

// A read that comes short says where a file ends that another process has shortened.
std::int64_t BufferedFile::ReadFromDevice(char* buffer, std::int64_t count)
{
    const std::int64_t n = m_handle->ReadAt(m_position, buffer, static_cast<std::size_t>(count));
    if (n >= 0 && n < count && m_size > m_position + n) m_size = m_position + n;
    return n;
}

bool BufferedFile::FillReadWindow()
{
    const std::int64_t ahead = m_position - (m_start + m_filled);
    const std::int64_t wanted = ahead >= 0 && ahead < kReadWindow ? kReadWindow : kReadAfterJump;
    BeginWindow(Use::Reading, kReadWindow);
    const std::int64_t n = ReadFromDevice(m_window.get(), wanted);
    m_filled = std::clamp<std::int64_t>(n, 0, kLastPosition - m_start);
    return n >= 0;
}

// ---- Writing ----

std::int32_t BufferedFile::WriteBeyondWindow(const char* buffer, std::int32_t count)
{
    if (!m_handle || !m_writable || m_writeFailed || count < 0 || Position() + count > kLastPosition) return -1;
    if (count == 0) return 0;
    Detach();
    const std::int64_t before = m_position;
    const bool isWritten = WriteThroughWindow(buffer, count);
    if (!isWritten) m_position = before;
    Attach();
    return isWritten ? count : -1;
}

bool BufferedFile::WriteThroughWindow(const char* buffer, std::int64_t count)
{
    if (m_use == Use::Reading) m_use = Use::None; // what it holds may change
    const std::int64_t offset = m_position - m_start;
    const bool isFarBack = m_use == Use::Writing && offset + count <= 0;
    if (isFarBack) { // the window stays
        m_position += count;
        return WriteToDevice(m_start + offset, buffer, count);
    }
    const bool touchesWindow = offset >= 0 && offset <= m_filled;
    if (!touchesWindow && !Flush()) return false;
    while (count > 0) {
        const std::int64_t n = m_use == Use::Writing ? WriteIntoWindow(buffer, count) : WriteBlocks(buffer, count);
        if (n < 0) return false;
        m_position += n;
        buffer += n;
        count -= n;
    }
    return true;
}

// Gives how many bytes were taken; a full window is written out first.
std::int64_t BufferedFile::WriteIntoWindow(const char* buffer, std::int64_t count)
{
    const std::int64_t offset = m_position - m_start;
    if (offset == m_capacity) {
        m_nextWrite = std::min(2 * m_nextWrite, m_writeBuffer);
        return Flush() ? 0 : -1;
    }
    const std::int64_t n = std::min(count, m_capacity - offset);
    std::memcpy(m_window.get() + offset, buffer, static_cast<std::size_t>(n));
    m_filled = std::max(m_filled, offset + n);
    return n;
}

// Writes bytes for which a window would be too small, up to a multiple of its size. Else begins one.
std::int64_t BufferedFile::WriteBlocks(const char* buffer, std::int64_t count)
{
    if (count >= m_nextWrite) {
        const std::int64_t whole = count - (m_position + count) % m_nextWrite;
        return WriteToDevice(m_position, buffer, whole) ? whole : -1;
    }
    BeginWindow(Use::Writing, m_nextWrite);
    m_capacity = std::min(m_nextWrite - m_position % m_nextWrite, kLastPosition - m_position);
    return 0;
}

bool BufferedFile::Patch(std::int64_t position, const char* buffer, std::int64_t count)
{
    const std::int64_t offset = position - m_start;
    if (m_use == Use::Writing && !m_writeFailed && offset >= 0 && offset + count <= Filled()) {
        std::memcpy(m_window.get() + offset, buffer, static_cast<std::size_t>(count));
        return true;
    }
    const std::int64_t here = Position();
    return Seek(position) && Write(buffer, static_cast<std::int32_t>(count)) == count && Seek(here);
}

bool BufferedFile::WriteToDevice(std::int64_t position, const char* buffer, std::int64_t count)
{
    if (!m_handle->WriteAt(position, buffer, static_cast<std::size_t>(count))) m_writeFailed = true;
    return !m_writeFailed;
}

bool BufferedFile::Flush()
{
    if (!m_handle) return false;
    if (m_use != Use::Writing) return !m_writeFailed;
    Detach();
    m_use = Use::None;
    return m_writeFailed || m_filled == 0 ? !m_writeFailed : WriteToDevice(m_start, m_window.get(), m_filled);
}

bool BufferedFile::Close()
{
    if (!m_handle) return true;
    const bool flushed = Flush();
    const bool closed = m_handle->Close();
    m_handle.reset();
    Detach();
    m_use = Use::None;
    return flushed && closed;
}

} // namespace ZelmResult
