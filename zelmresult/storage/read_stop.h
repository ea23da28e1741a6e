#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace ZelmResult {

// Where a read stopped before it was complete.
struct ReadStop {
    std::uint32_t chunk = 0;   // the code of the chunk that was entered last, 0 before any
    std::int32_t offset = -1;  // the position of the file
    std::uint32_t missing = 0; // the code for which a search from there failed, 0 when none did
    std::string field;         // the name of the field that could not be read, empty when there was none
};

// What an open file notes while it is read, so that a failure has a place.
class ReadStops {
public:
    void NoteMissing(std::uint32_t code, std::int32_t from)
    {
        m_missing = code;
        m_missingFrom = from;
    }
    // The first counts: records end one after the other, from the innermost out.
    void NoteFailedField(std::string_view field, std::uint32_t chunk, std::int32_t offset)
    {
        if (!m_first) m_first = ReadStop{chunk, offset, MissingAt(offset), std::string(field)};
    }
    // After a failure: where the first field failed, else the given place.
    [[nodiscard]] ReadStop First(std::uint32_t chunk, std::int32_t offset) const
    {
        return m_first ? *m_first : ReadStop{chunk, offset, MissingAt(offset), {}};
    }

private:
    [[nodiscard]] std::uint32_t MissingAt(std::int32_t offset) const { return offset == m_missingFrom ? m_missing : 0; }

    std::optional<ReadStop> m_first;
    std::uint32_t m_missing = 0;     // the code of the last failed search
    std::int32_t m_missingFrom = -1; // where that search began
};

} // namespace ZelmResult
