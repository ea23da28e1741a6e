#pragma once

#include "zelmresult/storage/mmio_file.h"
#include "zelmresult/storage/record_options.h"
#include "zelmresult/storage/stored_versions.h"
#include "zelmresult/support/text.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace ZelmResult {

// The direction from object to file of a field list; see record_io.h.
class RecordWriter : public detail::NoReaderWords {
public:
    explicit RecordWriter(CMmioFile& file) : m_file(file) {}

    [[nodiscard]] bool ok() const { return m_failedField.empty(); }
    [[nodiscard]] std::string_view failedField() const { return m_failedField; }
    void fail(std::string_view field)
    {
        m_failedField = field;
        m_file.NoteUnreadable();
    }
    CMmioFile& file() { return m_file; }
    [[nodiscard]] std::uint16_t version() const { return m_version; }

    bool record(const char* name, newest written, first lowest = {1})
    {
        m_version = StoredVersions::Of(m_file, name, written.value);
        if (!m_file.mmioWrite_ushort(m_version)) fail("version");
        return ok() && m_version >= lowest.value;
    }

    template <class T, class... O>
    void u16(const char* name, const T& value, O... options)
    {
        static_assert(sizeof(T) == 2);
        if (holds(options...)) check(name, m_file.mmioWrite_ushort(static_cast<std::uint16_t>(value)));
    }
    template <detail::FourBytes T, class... O>
    void u32(const char* name, const T& value, O... options)
    {
        if (holds(options...)) check(name, m_file.mmioWrite_ulong(static_cast<std::uint32_t>(value)));
    }
    template <detail::FourBytes T, class... O>
    void i32(const char* name, const T& value, O... options)
    {
        if (holds(options...)) check(name, m_file.mmioWrite_int(static_cast<std::int32_t>(value)));
    }
    template <class... O>
    void f32(const char* name, float value, O... options)
    {
        if (holds(options...)) check(name, m_file.mmioWrite_float(value));
    }
    template <class... O>
    void f64(const char* name, double value, O... options)
    {
        if (holds(options...))
            check(name, m_file.mmioWrite_byte(reinterpret_cast<const std::uint8_t*>(&value), sizeof value));
    }
    template <class... O>
    void i64(const char* name, std::int64_t value, O... options)
    {
        if (holds(options...)) check(name, m_file.mmioWrite_int64(value));
    }
    template <class... O>
    void systemTime(const char* name, const OSYSTEMTIME& value, O... options)
    {
        if (holds(options...))
            check(name, m_file.mmioWrite_byte(reinterpret_cast<const std::uint8_t*>(&value), sizeof value));
    }
    template <class... O>
    void flag(const char* name, bool value, O... options)
    {
        if (holds(options...)) check(name, m_file.mmioWriteBool(value));
    }
    template <class... O>
    void text(const char* name, wstring_view value, O... options)
    {
        if (holds(options...)) check(name, m_file.WriteCString(value));
    }
    template <class... O>
    void utf8(const char* name, const std::string& value, O... options)
    {
        text(name, FromUtf8(value), options...);
    }
    template <class... O>
    void idn(const char* name, const idn::Idn& value, O... options)
    {
        if (holds(options...)) check(name, m_file.mmioWriteIDN(value));
    }
    template <class... O>
    void time(const char* name, const OTime& value, O... options)
    {
        const bool isShort = m_version < detail::FieldOptions(options...).shortBefore;
        if (holds(options...))
            check(name, isShort ? m_file.mmioWrite_ulong(static_cast<std::uint32_t>(value.GetTime()))
                                : m_file.mmioWrite_OTime(value));
    }
    template <class... O>
    void fileTime(const char* name, const OFILETIME& value, O... options)
    {
        if (holds(options...))
            check(name, m_file.mmioWrite_ulong(value.dwLowDateTime) && m_file.mmioWrite_ulong(value.dwHighDateTime));
    }
    template <class... O>
    void quantity(const char* name, const CGrandeur* value, O... options)
    {
        if (holds(options...)) check(name, m_file.WriteGrandeur(value));
    }
    // count values of an array that holds available ones, zeros beyond.
    template <class... O>
    void f32s(const char* name, const float* values, std::int32_t available, std::int32_t count, O... options)
    {
        if (holds(options...)) check(name, writeFloats(values, available, count));
    }
    template <class... O>
    void bytes(const char* name, const std::uint8_t* values, std::size_t count, O... options)
    {
        if (holds(options...)) check(name, m_file.mmioWrite_byte(values, count));
    }
    template <class... O>
    void unusedU32(const char* name, O... options)
    {
        if (holds(options...)) check(name, m_file.mmioWrite_ulong(0));
    }
    template <class... O>
    void formerIdn(const char* name, const idn::Idn& value, std::uint16_t /*firstNumber*/, O... options)
    {
        if (holds(options...)) check(name, m_file.mmioWrite_ulong(value.submodule().kind));
    }

    template <class Base, class Self, class... O>
    void base(Self& value, O... options)
    {
        if (holds(options...)) check("base", value.Base::Write(&m_file));
    }
    template <class Record, class... O>
    void member(const char* name, Record& value, O... options)
    {
        if (holds(options...)) check(name, value.Write(&m_file));
    }
    template <class ReaderWriter, class Record>
    bool block(const char* name, const Record& value)
    {
        if (ok() && !ReaderWriter().Write(m_file, value)) fail(name);
        return ok();
    }
    void grows(const char* name, std::int32_t count, std::size_t elementSize)
    {
        if (!ok()) return;
        if (count < 0 || !m_file.Charge(static_cast<std::uint64_t>(count) * elementSize)) fail(name);
    }
    template <class Entry, class EachFields, class... O>
    void eachOf(const char* /*name*/, const std::vector<Entry>& entries, std::int32_t /*count*/, EachFields eachFields,
                O... options)
    {
        if (!holds(options...)) return;
        (void)m_file.Charge(entries.size() * detail::kEntriesHeld * sizeof(Entry));
        for (const Entry& entry : entries) eachFields(entry);
    }
    // A line of the debug dump at this place between the fields; the text is made only when the dump is on.
    template <class MakeText>
    void dump(MakeText makeText)
    {
        if (ok() && m_file.GenerateInfoFile()) m_file.AddStringToDebugFile(makeText());
    }
    // All lines that write(object, file) adds.
    template <class Self, class Write>
    void dumpLines(const Self& object, Write write)
    {
        if (ok() && m_file.GenerateInfoFile()) std::invoke(write, object, m_file);
    }
    // Notes that no read restores what the object holds, when isLost(object) is true.
    template <class Self, class IsLost>
    void loses(const Self& object, IsLost isLost)
    {
        if (std::invoke(isLost, object)) m_file.NoteUnreadable();
    }
    // A value that no file holds fails, as in a reader.
    void valid(const char* name, bool condition)
    {
        if (ok() && !condition) fail(name);
    }

private:
    template <class... O>
    [[nodiscard]] bool holds(const O&... options) const
    {
        return ok() && detail::FieldOptions(options...).HeldBy(m_version);
    }
    void check(const char* name, bool done)
    {
        if (!done) fail(name);
    }
    bool writeFloats(const float* values, std::int32_t available, std::int32_t count)
    {
        static constexpr std::int32_t kZeros = 256;
        static constexpr float zeros[kZeros] = {};
        const std::int32_t held = values == nullptr ? 0 : std::clamp(available, 0, (std::max)(count, 0));
        bool ok = m_file.mmioWrite_float(values, static_cast<std::size_t>(held));
        for (std::int32_t done = held; ok && done < count; done += (std::min)(kZeros, count - done))
            ok = m_file.mmioWrite_float(zeros, static_cast<std::size_t>(std::min(kZeros, count - done)));
        return ok;
    }

    CMmioFile& m_file;
    std::uint16_t m_version = 0;
    std::string_view m_failedField;
};

} // namespace ZelmResult
