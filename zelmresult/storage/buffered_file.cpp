#include "zelmresult/storage/buffered_file.h"

#include <algorithm>

namespace ZelmResult {

namespace {

constexpr std::int64_t kReadWindow = 65536;
constexpr std::int64_t kReadAfterJump = 4096; // a reader that goes from header to header needs little at each
constexpr std::int64_t kLeastWriteWindow = 4096;
constexpr std::int64_t kMostWriteWindow = std::int64_t{16} * 1048576;

} // namespace

BufferedFile::BufferedFile(std::unique_ptr<FileHandle> handle, bool writable, std::int64_t writeBuffer)
    : m_handle(std::move(handle)), m_writable(writable),
      m_writeCapacity(std::clamp(writeBuffer, kLeastWriteWindow, kMostWriteWindow))
{
    if (m_writable) m_writeWindow.reserve(static_cast<std::size_t>(m_writeCapacity));
}

BufferedFile::~BufferedFile() { (void)Close(); }

std::int64_t BufferedFile::Size()
{
    const std::int64_t onDevice = m_handle ? m_handle->Size() : -1;
    if (onDevice < 0 || m_writeWindow.empty()) return onDevice;
    return std::max(onDevice, m_writeStart + static_cast<std::int64_t>(m_writeWindow.size()));
}

std::int32_t BufferedFile::ReadBeyondWindow(char* buffer, std::int32_t count)
{
    if (!m_handle || count < 0 || (m_writable && !Flush())) return -1;
    if (count == 0) return 0;
    const std::int64_t wanted = std::min<std::int64_t>(count, kLastPosition - m_position);
    return static_cast<std::int32_t>(ReadThroughWindow(buffer, wanted));
}

std::int64_t BufferedFile::ReadThroughWindow(char* buffer, std::int64_t count)
{
    std::int64_t done = 0;
    while (done < count) {
        const std::int64_t inWindow = m_position - m_readStart;
        if (inWindow >= 0 && inWindow < m_readLength) {
            const std::int64_t n = std::min(count - done, m_readLength - inWindow);
            std::memcpy(buffer + done, m_readWindow.data() + inWindow, static_cast<std::size_t>(n));
            m_position += n;
            done += n;
        } else if (count - done >= kReadWindow) {
            const std::int64_t n = m_handle->ReadAt(m_position, buffer + done, static_cast<std::size_t>(count - done));
            if (n < 0) return -1;
            m_position += n;
            return done + n;
        } else if (!FillReadWindow()) {
            return -1;
        } else if (m_readLength == 0) {
            break;
        }
    }
    return done;
}

bool BufferedFile::FillReadWindow()
{
    const std::int64_t ahead = m_position - (m_readStart + m_readLength);
    const std::int64_t wanted = ahead >= 0 && ahead < kReadWindow ? kReadWindow : kReadAfterJump;
    if (m_readWindow.empty()) m_readWindow.resize(static_cast<std::size_t>(kReadWindow));
    const std::int64_t n = m_handle->ReadAt(m_position, m_readWindow.data(), static_cast<std::size_t>(wanted));
    m_readStart = m_position;
    m_readLength = std::clamp<std::int64_t>(n, 0, kLastPosition - m_readStart);
    return n >= 0;
}

std::int32_t BufferedFile::Write(const char* buffer, std::int32_t count)
{
    if (!m_handle || !m_writable || m_writeFailed || count < 0 || m_position + count > kLastPosition) return -1;
    if (count == 0) return 0;
    m_readLength = 0;
    if (!WriteThroughWindow(buffer, count)) return -1;
    m_position += count;
    return count;
}

bool BufferedFile::WriteThroughWindow(const char* buffer, std::int64_t count)
{
    const auto pending = static_cast<std::int64_t>(m_writeWindow.size());
    const std::int64_t offset = m_position - m_writeStart;
    if (pending > 0 && offset + count <= 0) return WriteToDevice(m_position, buffer, count); // a patch far back

    const bool touches = pending > 0 && offset >= 0 && offset <= pending;
    if (touches && offset + count <= m_writeCapacity) {
        const std::int64_t over = std::min(count, pending - offset);
        std::memcpy(m_writeWindow.data() + offset, buffer, static_cast<std::size_t>(over));
        m_writeWindow.insert(m_writeWindow.end(), buffer + over, buffer + count);
        return true;
    }
    if (!Flush()) return false;
    if (count >= m_writeCapacity) return WriteToDevice(m_position, buffer, count);
    m_writeStart = m_position;
    m_writeWindow.assign(buffer, buffer + count);
    return true;
}

bool BufferedFile::WriteToDevice(std::int64_t position, const char* buffer, std::int64_t count)
{
    if (!m_handle->WriteAt(position, buffer, static_cast<std::size_t>(count))) m_writeFailed = true;
    return !m_writeFailed;
}

bool BufferedFile::Seek(std::int64_t position)
{
    if (!m_handle || position < 0 || position > kLastPosition) return false;
    m_position = position;
    return true;
}

bool BufferedFile::Flush()
{
    if (!m_handle) return false;
    if (!m_writeWindow.empty() && !m_writeFailed)
        (void)WriteToDevice(m_writeStart, m_writeWindow.data(), static_cast<std::int64_t>(m_writeWindow.size()));
    m_writeWindow.clear();
    return !m_writeFailed;
}

bool BufferedFile::Close()
{
    if (!m_handle) return true;
    const bool flushed = Flush();
    const bool closed = m_handle->Close();
    m_handle.reset();
    m_readLength = 0;
    return flushed && closed;
}

} // namespace ZelmResult
