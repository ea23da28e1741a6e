#pragma once

#include "zelmresult/storage/mmio.h"
#include "zelmresult/storage/read_bounds.h"
#include "zelmresult/support/idn.h"
#include "zelmresult/support/time.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>

namespace ZelmResult {

// The forms of values in a file, little-endian and without any framing, at the position of a backend. Shares the
// backend; without one every operation is false. False also when the backend says -1: a read that reaches the end of
// the file is a success; it doesn't change a number, and sets a time to 0, a flag to false and a text to empty.
class FieldStream {
public:
    FieldStream() = default;
    explicit FieldStream(std::shared_ptr<CMmio> backend) : m_backend(std::move(backend))
    {
        if (m_backend) m_cursor = m_backend->Cursor();
    }

    [[nodiscard]] const std::shared_ptr<CMmio>& backend() const { return m_backend; }
    void ReleaseBackend()
    {
        m_backend.reset();
        m_cursor.reset();
    }
    // Whether any write has failed, or was noted as failed.
    [[nodiscard]] bool HasFailed() const { return m_hasFailed; }
    // Returns its argument.
    bool Note(bool succeeded)
    {
        m_hasFailed = m_hasFailed || !succeeded;
        return succeeded;
    }

    template <class T>
    bool Write(T value)
    {
        return WriteBlock(&value, 1);
    }
    template <class T>
    bool Read(T& value)
    {
        return ReadBytes(&value, sizeof value) != -1;
    }
    // count elements as one block of at most 2^31-1 bytes.
    template <class T>
    bool WriteBlock(const T* data, std::size_t count)
    {
        return FitsBlock(count, sizeof(T)) ? WriteBytes(data, count * sizeof(T)) : Note(false);
    }
    template <class T>
    bool ReadBlock(T* data, std::size_t count)
    {
        return FitsBlock(count, sizeof(T)) && ReadBytes(data, count * sizeof(T)) != -1;
    }

    bool WriteTime(const OTime& value) { return Write(value.toSerializable64()); }
    bool ReadTime(OTime& value);
    bool WriteFlag(bool value) { return Write(std::uint32_t{value}); }
    bool ReadFlag(bool& value); // any nonzero value is true; false also on failure

    // Text is written as UTF-16 after a marker; the narrow form of older files is read too.
    bool WriteText(wstring_view text);
    bool ReadText(wstring& text, ReadBounds& bounds);
    // The length field of a text, kWideMarker for the marker of the wide form. False when a read fails.
    bool ReadTextLength(std::uint32_t& length);
    static constexpr std::uint32_t kWideMarker = 0xFFFFFFFF;

    // Three short numbers, or a marker and the text form for an identifier without short numbers.
    bool WriteIdentifier(const idn::Idn& idn);
    bool ReadIdentifier(idn::Idn& idn, ReadBounds& bounds);

private:
    template <class T>
    bool ReadWholeOrZero(std::uint32_t& length);
    bool ReadTextHead(std::uint32_t& length, bool& wide);
    // At most 2^31-1 bytes.
    bool WriteBytes(const void* from, std::size_t count)
    {
        return (m_cursor && m_cursor->Put(from, count)) || Note(WriteThroughBackend(from, count));
    }
    // The bytes read, -1 on failure.
    std::int32_t ReadBytes(void* to, std::size_t count)
    {
        return m_cursor && m_cursor->Take(to, count) ? static_cast<std::int32_t>(count) : ReadThroughBackend(to, count);
    }
    bool WriteThroughBackend(const void* from, std::size_t count);
    std::int32_t ReadThroughBackend(void* to, std::size_t count);
    static bool FitsBlock(std::size_t count, std::size_t elementSize)
    {
        return count <= std::size_t{0x7FFFFFFF} / elementSize;
    }

    std::shared_ptr<CMmio> m_backend;
    std::shared_ptr<ByteCursor> m_cursor; // null where the backend lends none
    bool m_hasFailed = false;
};

} // namespace ZelmResult
