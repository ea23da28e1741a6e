#pragma once

#include "zelmresult/storage/file_handle.h"
#include "zelmresult/storage/mmio.h"

#include <cstring>
#include <memory>
#include <vector>

namespace ZelmResult {

// An open file with a position, a window of bytes read ahead and a window of bytes not yet written. Internal to the
// storage. Positions above 2^31-1 are refused. The file closes with the object.
class BufferedFile {
public:
    static constexpr std::int64_t kLastPosition = 0x7FFFFFFF;

    // Takes an open handle. writeBuffer is the size of the write window in bytes.
    BufferedFile(std::unique_ptr<FileHandle> handle, bool writable, std::int64_t writeBuffer);
    BufferedFile(const BufferedFile&) = delete;
    BufferedFile& operator=(const BufferedFile&) = delete;
    ~BufferedFile();

    [[nodiscard]] bool IsOpen() const { return m_handle != nullptr; }
    [[nodiscard]] bool IsWritable() const { return m_writable; }
    [[nodiscard]] std::int64_t Position() const { return m_position; }
    [[nodiscard]] std::int32_t WriteBufferSize() const { return static_cast<std::int32_t>(m_writeCapacity); }
    std::int64_t Size();

    // Bytes read, -1 on error.
    std::int32_t Read(char* buffer, std::int32_t count)
    {
        const std::int64_t inWindow = m_position - m_readStart;
        if (count <= 0 || inWindow < 0 || inWindow + count > m_readLength) return ReadBeyondWindow(buffer, count);
        std::memcpy(buffer, m_readWindow.data() + inWindow, static_cast<std::size_t>(count));
        m_position += count;
        return count;
    }
    // count, or -1 with nothing written. After one failed write to the device every further write fails.
    std::int32_t Write(const char* buffer, std::int32_t count);
    // False, and no move, when the position is outside 0 to 2^31-1.
    bool Seek(std::int64_t position);
    // Writes out the window; false when this or an earlier write to the device failed.
    bool Flush();
    bool Close();

private:
    std::int32_t ReadBeyondWindow(char* buffer, std::int32_t count);
    std::int64_t ReadThroughWindow(char* buffer, std::int64_t count);
    bool FillReadWindow();
    bool WriteThroughWindow(const char* buffer, std::int64_t count);
    bool WriteToDevice(std::int64_t position, const char* buffer, std::int64_t count);

    std::unique_ptr<FileHandle> m_handle;
    bool m_writable;
    bool m_writeFailed = false;
    std::int64_t m_position = 0;

    std::vector<char> m_readWindow;
    std::int64_t m_readStart = 0;
    std::int64_t m_readLength = 0;

    std::vector<char> m_writeWindow;
    std::int64_t m_writeStart = 0;
    std::int64_t m_writeCapacity;
};

} // namespace ZelmResult
