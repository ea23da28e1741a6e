#pragma once

#include "zelmresult/storage/record_options.h"
#include "zelmresult/support/idn.h"
#include "zelmresult/support/time.h"
#include "zelmresult/support/wstring.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace ZelmResult {

class CGrandeur;

// The field list of a record as rows, for the pages in docs/format; the third direction beside the reader and the
// writer of record_io.h.
class RecordOutline : public detail::NoReaderWords, public detail::NoWriterWords {
public:
    struct Row {
        std::string name;
        std::string form;
        std::string versions; // "1", "16 to 22"
        std::string absent;   // empty: not changed
        std::string when;     // empty: always
    };

    [[nodiscard]] bool ok() const { return true; }
    void fail(std::string_view /*field*/) {}
    [[nodiscard]] std::uint16_t version() const { return 0; }
    [[nodiscard]] const std::string& name() const { return m_name; }
    [[nodiscard]] const std::vector<Row>& rows() const { return m_rows; }
    // The rows as a table of Markdown, as in docs/format.
    [[nodiscard]] std::string Table() const;

    bool record(const char* name, newest written, first lowest = {1});

    // Objects are taken as const and never read.
    template <class T, class... O>
    void u16(const char* name, const T& /*value*/, O... options)
    {
        add(name, "u16", options...);
    }
    template <class T, class... O>
    void u32(const char* name, const T& /*value*/, O... options)
    {
        add(name, "u32", options...);
    }
    template <class T, class... O>
    void i32(const char* name, const T& /*value*/, O... options)
    {
        add(name, "i32", options...);
    }
    template <class... O>
    void f32(const char* name, const float& /*value*/, O... options)
    {
        add(name, "f32", options...);
    }
    template <class... O>
    void f64(const char* name, const double& /*value*/, O... options)
    {
        add(name, "f64", options...);
    }
    template <class... O>
    void i64(const char* name, const std::int64_t& /*value*/, O... options)
    {
        add(name, "i64", options...);
    }
    template <class... O>
    void systemTime(const char* name, const OSYSTEMTIME& /*value*/, O... options)
    {
        add(name, "system time", options...);
    }
    template <class... O>
    void flag(const char* name, const bool& /*value*/, O... options)
    {
        add(name, "flag", options...);
    }
    template <class... O>
    void text(const char* name, wstring_view /*value*/, O... options)
    {
        add(name, "text", options...);
    }
    template <class... O>
    void utf8(const char* name, const std::string& /*value*/, O... options)
    {
        add(name, "text", options...);
    }
    template <class... O>
    void idn(const char* name, const idn::Idn& /*value*/, O... options)
    {
        add(name, "identifier", options...);
    }
    template <class... O>
    void time(const char* name, const OTime& /*value*/, O... options)
    {
        const std::uint16_t wide = detail::FieldOptions(options...).shortBefore;
        add(name, wide == 0 ? "time" : "time, a u32 before version " + std::to_string(wide), options...);
    }
    template <class... O>
    void fileTime(const char* name, const OFILETIME& /*value*/, O... options)
    {
        add(name, "file time", options...);
    }
    template <class... O>
    void quantity(const char* name, const CGrandeur* /*value*/, O... options)
    {
        add(name, "quantity", options...);
    }
    template <class... O>
    void f32s(const char* name, const float* /*values*/, std::int32_t /*available*/, std::int32_t /*count*/,
              O... options)
    {
        add(name, "f32 array", options...);
    }
    template <class... O>
    void bytes(const char* name, const std::uint8_t* /*values*/, std::size_t count, O... options)
    {
        add(name, std::to_string(count) + " bytes", options...);
    }
    template <class... O>
    void unusedU32(const char* name, O... options)
    {
        add(name, "u32, not kept", options...);
    }
    template <class... O>
    void formerIdn(const char* name, const idn::Idn& /*value*/, std::uint16_t firstNumber, O... options)
    {
        add(name, "u32, second number after " + std::to_string(firstNumber), options...);
    }
    template <class Base, class Self, class... O>
    void base(Self& /*value*/, O... options)
    {
        add("base", std::string("block ") + Base::kRecordName, options...);
    }
    template <class Record, class... O>
    void member(const char* name, const Record& /*value*/, O... options)
    {
        add(name, std::string("block ") + Record::kRecordName, options...);
    }
    template <class ReaderWriter, class Record>
    bool block(const char* name, const Record& /*value*/)
    {
        add(name, std::string("block ") + ReaderWriter::kRecordName);
        return true;
    }
    void grows(const char* /*name*/, std::int32_t /*count*/, std::size_t /*elementSize*/) {}
    // A row for what a record with two plain functions holds.
    template <class... O>
    void nested(const char* name, const char* form, O... options)
    {
        add(name, form, options...);
    }
    template <class Entry, class EachFields, class... O>
    void eachOf(const char* name, const std::vector<Entry>& /*entries*/, std::int32_t /*count*/, EachFields eachFields,
                O... options)
    {
        add(name, "count times:", options...);
        const Entry entry{};
        eachFields(entry);
    }
    void valid(const char* /*name*/, bool /*condition*/) {}

private:
    template <class... O>
    void add(const char* name, const std::string& form, O... options)
    {
        Row row{name, form, Versions(detail::FieldOptions(options...)), {}, detail::FieldOptions(options...).when};
        (NoteAbsent(row, options), ...);
        m_rows.push_back(row);
    }
    [[nodiscard]] std::string Versions(const detail::FieldOptions& options) const;

    template <class Option>
    static void NoteAbsent(Row& /*row*/, const Option& /*option*/)
    {
    }
    template <class T>
    static void NoteAbsent(Row& row, const absent<T>& option)
    {
        row.absent = AbsentText(option.value);
    }
    static std::string AbsentText(bool value) { return value ? "true" : "false"; }
    static std::string AbsentText(std::int32_t value) { return std::to_string(value); }
    static std::string AbsentText(const char16_t* /*text*/) { return "empty"; }
    static std::string AbsentText(const idn::Idn& /*idn*/) { return "null"; }

    std::string m_name;
    std::uint16_t m_lowest = 1;
    std::vector<Row> m_rows;
};

} // namespace ZelmResult
