#pragma once

#include "zelmresult/storage/field_observer.h"
#include "zelmresult/storage/mmio_file.h"
#include "zelmresult/storage/record_options.h"
#include "zelmresult/support/text.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace ZelmResult {

namespace detail {

// For each entry of a vector that is read one by one: a growing vector holds its old and its new entries at once.
inline constexpr std::size_t kEntriesHeld = 3;

} // namespace detail

// The direction from file to object of a field list; see record_io.h.
class RecordReader : public detail::NoWriterWords {
public:
    explicit RecordReader(CMmioFile& file) : m_file(file) {}
    RecordReader(const RecordReader&) = delete;
    RecordReader& operator=(const RecordReader&) = delete;
    ~RecordReader()
    {
        if (m_observer != nullptr) m_observer->EndRecord();
    }

    [[nodiscard]] bool ok() const { return m_failedField.empty(); }
    // The name of the field that failed, for tests and the debugger.
    [[nodiscard]] std::string_view failedField() const { return m_failedField; }
    void fail(std::string_view field)
    {
        m_failedField = field;
        m_file.NoteFailedField(field);
    }
    CMmioFile& file() { return m_file; }
    [[nodiscard]] std::uint16_t version() const { return m_version; }

    // Reads the version. True when fields follow.
    bool record(const char* name, newest written, first lowest = {1})
    {
        if (!m_file.mmioRead_ushort(m_version)) fail("version");
        m_observer = m_file.fieldObserver();
        if (m_observer != nullptr) m_observer->BeginRecord(name, m_version, written.value, m_file.Position());
        return ok() && m_version >= lowest.value;
    }

    template <class T, class... O>
    void u16(const char* name, T& value, O... options)
    {
        static_assert(sizeof(T) == 2);
        if (holds(value, options...))
            check(name, "u16",
                  readAs<std::uint16_t>(value, [&](std::uint16_t& v) { return m_file.mmioRead_ushort(v); }));
    }
    template <detail::FourBytes T, class... O>
    void u32(const char* name, T& value, O... options)
    {
        if (holds(value, options...))
            check(name, "u32",
                  readAs<std::uint32_t>(value, [&](std::uint32_t& v) { return m_file.mmioRead_ulong(v); }));
    }
    template <detail::FourBytes T, class... O>
    void i32(const char* name, T& value, O... options)
    {
        if (holds(value, options...))
            check(name, "i32", readAs<std::int32_t>(value, [&](std::int32_t& v) { return m_file.mmioRead_int(v); }));
    }
    template <class... O>
    void f32(const char* name, float& value, O... options)
    {
        if (holds(value, options...)) check(name, "f32", m_file.mmioRead_float(value));
    }
    // A double as its 8 bytes.
    template <class... O>
    void f64(const char* name, double& value, O... options)
    {
        static_assert(sizeof(double) == sizeof(std::int64_t));
        if (holds(value, options...))
            check(name, "f64", m_file.mmioRead_byte(reinterpret_cast<std::uint8_t*>(&value), sizeof value));
    }
    template <class... O>
    void i64(const char* name, std::int64_t& value, O... options)
    {
        if (holds(value, options...)) check(name, "i64", m_file.mmioRead_int64(value));
    }
    // The eight numbers of a date.
    template <class... O>
    void systemTime(const char* name, OSYSTEMTIME& value, O... options)
    {
        static_assert(sizeof(OSYSTEMTIME) == 16);
        if (holds(value, options...))
            check(name, "system time", m_file.mmioRead_byte(reinterpret_cast<std::uint8_t*>(&value), sizeof value));
    }
    template <class... O>
    void flag(const char* name, bool& value, O... options)
    {
        if (holds(value, options...)) check(name, "flag", m_file.mmioReadBool(value));
    }
    template <class... O>
    void text(const char* name, wstring& value, O... options)
    {
        if (holds(value, options...)) check(name, "text", m_file.ReadCString(value));
    }
    template <std::size_t count, class... O>
    void text(const char* name, PackedText<count> value, O... options)
    {
        if (!holds(value, options...)) return;
        const bool done = m_file.ReadCString(m_text);
        if (done) value = m_text;
        check(name, "text", done);
    }
    // A text that is UTF-8 in memory.
    template <class... O>
    void utf8(const char* name, std::string& value, O... options)
    {
        wstring stored;
        text(name, stored, options...);
        if (detail::FieldOptions(options...).HeldBy(m_version) && ok()) value = ToUtf8(stored);
    }
    template <class... O>
    void idn(const char* name, idn::Idn& value, O... options)
    {
        if (holds(value, options...)) check(name, "identifier", m_file.mmioReadIDN(value));
    }
    template <class... O>
    void time(const char* name, OTime& value, O... options)
    {
        const bool isShort = m_version < detail::FieldOptions(options...).shortBefore;
        if (holds(value, options...))
            check(name, isShort ? "u32" : "time", isShort ? readShortTime(value) : m_file.mmioRead_OTime(value));
    }
    template <class... O>
    void fileTime(const char* name, OFILETIME& value, O... options)
    {
        if (holds(value, options...)) check(name, "file time", readFileTime(value));
    }
    template <class... O>
    void quantity(const char* name, CGrandeur*& value, O... options)
    {
        if (holds(value, options...)) check(name, "quantity", m_file.ReadGrandeur(value));
    }
    // count values into an array that holds available ones; a larger count fails.
    template <class... O>
    void f32s(const char* name, float* values, std::int32_t available, std::int32_t count, O... options)
    {
        if (holds(values, options...)) check(name, "f32 array", count <= available && readFloats(values, count));
    }
    template <class... O>
    void bytes(const char* name, std::uint8_t* values, std::size_t count, O... options)
    {
        if (holds(values, options...)) check(name, "bytes", m_file.mmioRead_byte(values, count));
    }
    // A field that is skipped, and written as 0.
    template <class... O>
    void unusedU32(const char* name, O... options)
    {
        std::uint32_t ignored = 0;
        if (holds(ignored, options...)) check(name, "u32", m_file.mmioRead_ulong(ignored));
    }
    // An identifier that older versions hold as a u32: its low 16 bits are the second number of a short identifier
    // whose first number is given.
    template <class... O>
    void formerIdn(const char* name, idn::Idn& value, std::uint16_t firstNumber, O... options)
    {
        if (!holds(value, options...)) return;
        std::uint32_t number = 0;
        check(name, "u32", m_file.mmioRead_ulong(number));
        if (ok()) value = idn::Legacy(firstNumber, static_cast<std::uint16_t>(number), 0).toIdn();
    }

    // The whole block of a base class, its version first. The observer isn't called for what it reads.
    template <class Base, class Self, class... O>
    void base(Self& value, O... options)
    {
        if (holds(value, options...) && !value.Base::Read(&m_file)) fail("base");
    }
    // The whole block of an object inside the object, its version first.
    template <class Record, class... O>
    void member(const char* name, Record& value, O... options)
    {
        if (holds(value, options...) && !value.Read(&m_file)) fail(name);
    }
    // A record inside the record, with its own version, by its reader-writer.
    template <class ReaderWriter, class Record>
    bool block(const char* name, Record& value)
    {
        if (ok() && !ReaderWriter().Read(m_file, value)) fail(name);
        return ok();
    }
    // Memory for count elements that the file doesn't fill: a writer counts it too, so that a save knows what its
    // load will ask for. A count below 0, of which there is no array, fails in both directions.
    void grows(const char* name, std::int32_t count, std::size_t elementSize)
    {
        if (!ok()) return;
        if (count < 0 || !m_file.Charge(static_cast<std::uint64_t>(count) * elementSize)) fail(name);
    }
    // count entries of one field list, appended one by one. A count that the file doesn't hold fails.
    template <class Entry, class EachFields, class... O>
    void eachOf(const char* name, std::vector<Entry>& entries, std::int32_t count, EachFields eachFields, O... options)
    {
        if (!holds(entries, options...)) return;
        for (std::int32_t i = 0; ok() && i < count; ++i) {
            const bool isHeld = m_file.hFile()->BytesLeft() > 0 || m_file.Refuse(Refusal::Bound::BytesLeft);
            if (!isHeld || !m_file.RoomFor(detail::kEntriesHeld, sizeof(Entry))) return fail(name);
            Entry entry{};
            eachFields(entry);
            if (ok()) entries.push_back(std::move(entry));
        }
    }
    // ---- What a record does between its fields; see also the words for writers. ----
    // A reader continues when accept(object, file) is true, mostly after it has made room.
    template <class Self, class Accept>
    void accepts(const char* name, Self& object, Accept accept)
    {
        if (ok() && !std::invoke(accept, object, m_file)) fail(name);
    }
    // A reader that has come so far calls use(object).
    template <class Self, class Use>
    void onRead(Self& object, Use use)
    {
        if (ok()) std::invoke(use, object);
    }
    // A reader clears what it is about to read, so that no former value is left when it fails.
    template <class T>
    void clears(T& value)
    {
        value = T();
    }
    // In both directions: a value that no file holds fails.
    void valid(const char* name, bool condition)
    {
        if (ok() && !condition) fail(name);
    }

private:
    // Whether the field is to be read; else it takes its absent value.
    template <class T, class... O>
    bool holds(T& value, const O&... options)
    {
        if (!ok()) return false;
        const bool held = detail::FieldOptions(options...).HeldBy(m_version);
        if (!held) (detail::SetAbsent(value, options), ...);
        return held;
    }
    // Nearly every field is there and nobody watches: that much is inlined.
    void check(const char* name, const char* form, bool done)
    {
        if (!done || m_observer != nullptr) note(name, form, done);
    }
    void note(const char* name, const char* form, bool done)
    {
        if (!done) fail(name);
        if (m_observer != nullptr) m_observer->Field(name, form, m_file.Position());
    }
    template <class Stored, class T, class Read>
    static bool readAs(T& value, Read read)
    {
        auto stored = static_cast<Stored>(value);
        const bool wasRead = read(stored);
        value = static_cast<T>(stored);
        return wasRead;
    }
    bool readShortTime(OTime& value)
    {
        std::uint32_t seconds = 0;
        const bool wasRead = m_file.mmioRead_ulong(seconds);
        value = OTime(seconds);
        return wasRead;
    }
    bool readFileTime(OFILETIME& value)
    {
        return m_file.mmioRead_ulong(value.dwLowDateTime) && m_file.mmioRead_ulong(value.dwHighDateTime);
    }
    bool readFloats(float* values, std::int32_t count)
    {
        return count <= 0 || m_file.mmioRead_float(values, static_cast<std::size_t>(count));
    }

    CMmioFile& m_file;
    std::uint16_t m_version = 0;
    std::string_view m_failedField;
    wstring m_text;                      // the last one of those that a record packs
    FieldObserver* m_observer = nullptr; // set once a record has begun
};

} // namespace ZelmResult
