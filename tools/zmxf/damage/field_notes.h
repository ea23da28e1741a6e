#pragma once

#include "zelmresult/storage/field_observer.h"

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// The fields of the records in a file, as the library's own readers meet them.

namespace zmxf {

// A field, or a record that begins with its version.
struct ReadField {
    int depth = 0; // of records inside records
    std::string_view name;
    std::string_view form; // that of the format's pages; empty for a record
    std::int64_t offset = 0;
    std::int64_t end = 0;
    std::uint16_t version = 0; // of a record
    std::uint16_t newest = 0;  // that the library knows

    // No writer makes a record of version 0, of which nothing is read: it means that bytes were lost.
    [[nodiscard]] bool IsEmptyRecord() const { return form.empty() && version == 0; }
    [[nodiscard]] bool IsLaterRecord() const { return form.empty() && version > newest; }
    [[nodiscard]] bool IsQuantity() const { return form == "quantity"; }
};

// Notes the fields that are read from the files and documents that it observes.
class FieldNotes : public ZelmResult::FieldObserver {
public:
    enum class Keep {
        All,     // many times the bytes of the records
        Telling, // outermost records, those of no version or a later one, and fields that name a quantity
    };
    // By the offset of the outermost record, with those inside it.
    using Records = std::map<std::int64_t, std::vector<ReadField>>;

    explicit FieldNotes(Keep keep = Keep::All) : m_keep(keep) {}

    void BeginRecord(std::string_view name, std::uint16_t version, std::uint16_t newest,
                     std::int32_t position) override;
    void EndRecord() override;
    void Field(std::string_view name, std::string_view form, std::int32_t position) override;
    // What was read twice comes once.
    [[nodiscard]] const Records& records() const { return m_records; }
    // Where each of the outermost records ended at last, by its offset: one that has lost its way ends after its chunk.
    [[nodiscard]] const std::map<std::int64_t, std::int64_t>& ends() const { return m_ends; }

    // The field that was read last, or that a reader failed at; null before the first.
    [[nodiscard]] const ReadField* last() const { return m_last ? &*m_last : nullptr; }

    // Whether a record of the chunk between two offsets is empty, or continues after it.
    [[nodiscard]] bool HasLostRecord(std::int64_t from, std::int64_t to) const;

private:
    // A record that is being read. Those that lie elsewhere in the file, such as a quantity that a field names, count
    // as outermost.
    struct Open {
        std::int64_t outermost;
        std::int64_t end;
        int depth;
    };

    void Note(std::int64_t outermost, const ReadField& field);

    Keep m_keep;
    Records m_records;
    std::map<std::int64_t, std::int64_t> m_ends;
    std::vector<Open> m_open;
    std::optional<ReadField> m_last;
};

// What the bytes of a field say. bytes are those of the file.
std::string FieldText(std::span<const char> bytes, const ReadField& field);

} // namespace zmxf
