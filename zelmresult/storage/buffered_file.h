#pragma once

#include "zelmresult/storage/byte_cursor.h"
#include "zelmresult/storage/file_handle.h"

#include <cstdint>
#include <memory>

namespace ZelmResult {

// An open file with a position and one window: of bytes read ahead, or of bytes not yet written. Internal to the
// storage. Positions above 2^31-1 are refused. The file closes with the object.
//
// While the position is in the window, the cursor is the position, and whoever was lent the cursor moves it: m_position
// and m_filled are then out of date. Detach brings them up to date and empties the cursor, for all that follows; Attach
// sets it again.
//
// A write window begins with 64 KiB, doubles each time it is full up to the size that was asked for, and ends at a
// multiple of its size in the file: unaligned writes cost the system more.
class BufferedFile {
public:
    static constexpr std::int64_t kLastPosition = 0x7FFFFFFF;

    // Takes an open handle. writeBuffer is the greatest size of the write window in bytes.
    BufferedFile(std::unique_ptr<FileHandle> handle, bool writable, std::int64_t writeBuffer);
    BufferedFile(const BufferedFile&) = delete;
    BufferedFile& operator=(const BufferedFile&) = delete;
    ~BufferedFile();

    [[nodiscard]] bool IsOpen() const { return m_handle != nullptr; }
    [[nodiscard]] bool IsWritable() const { return m_writable; }
    [[nodiscard]] std::int64_t Position() const
    {
        if (m_cursor->read != nullptr) return m_start + (m_cursor->read - m_window.get());
        if (m_cursor->write != nullptr) return m_start + (m_cursor->write - m_window.get());
        return m_position;
    }
    [[nodiscard]] std::int32_t WriteBufferSize() const { return static_cast<std::int32_t>(m_writeBuffer); }
    // That of a file which is only read is asked once; a read that comes short corrects it.
    std::int64_t Size();
    std::optional<FileStamp> Stamp() { return m_handle ? m_handle->Stamp() : std::nullopt; }

    // Bytes read, -1 on error.
    std::int32_t Read(char* buffer, std::int32_t count)
    {
        if (m_cursor->Take(buffer, static_cast<std::size_t>(count))) return count;
        return ReadBeyondWindow(buffer, count);
    }
    // count, or -1 with the position where it was. After one failed write to the device every further write fails.
    std::int32_t Write(const char* buffer, std::int32_t count)
    {
        if (m_cursor->Put(buffer, static_cast<std::size_t>(count))) return count;
        return WriteBeyondWindow(buffer, count);
    }
    // Writes over bytes that were written before, without moving.
    bool Patch(std::int64_t position, const char* buffer, std::int64_t count);
    // False, and no move, when the position is outside 0 to 2^31-1.
    bool Seek(std::int64_t position);
    // Writes out the window; false when this or an earlier write to the device failed.
    bool Flush();
    bool Close();

    // Lends the cursor, which is empty for ever once the file is closed.
    [[nodiscard]] const std::shared_ptr<ByteCursor>& cursor() const { return m_cursor; }

private:
    enum class Use { None, Reading, Writing };

    [[nodiscard]] std::int64_t Filled() const;
    void Detach();
    void Attach();
    void BeginWindow(Use use, std::int64_t size);
    std::int32_t ReadBeyondWindow(char* buffer, std::int32_t count);
    std::int64_t ReadThroughWindow(char* buffer, std::int64_t count);
    std::int64_t ReadFromDevice(char* buffer, std::int64_t count);
    bool FillReadWindow();
    std::int32_t WriteBeyondWindow(const char* buffer, std::int32_t count);
    bool WriteThroughWindow(const char* buffer, std::int64_t count);
    std::int64_t WriteIntoWindow(const char* buffer, std::int64_t count);
    std::int64_t WriteBlocks(const char* buffer, std::int64_t count);
    bool WriteToDevice(std::int64_t position, const char* buffer, std::int64_t count);

    std::unique_ptr<FileHandle> m_handle;
    bool m_writable;
    bool m_writeFailed = false;
    std::int64_t m_position = 0;
    std::int64_t m_size = -1; // of a file that is only read, once it was asked for

    std::shared_ptr<ByteCursor> m_cursor = std::make_shared<ByteCursor>();
    std::unique_ptr<char[]> m_window;
    std::int64_t m_allocated = 0;
    Use m_use = Use::None;
    std::int64_t m_start = 0;    // of the window in the file
    std::int64_t m_capacity = 0; // of a write window: up to a multiple of its size
    std::int64_t m_filled = 0;   // bytes of the window

    std::int64_t m_writeBuffer;
    std::int64_t m_nextWrite; // the size of the next write window
};

} // namespace ZelmResult
