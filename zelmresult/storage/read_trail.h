#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace ZelmResult {

// Where a read came to its end before it had what it wanted.
struct ReadStop {
    std::uint32_t chunk = 0;   // the code of the chunk that was entered last, 0 before any
    std::int32_t offset = -1;  // where the file stood
    std::uint32_t missing = 0; // the code that was searched from there in vain, 0 when none was
    std::string field;         // the name of the field that could not be read, empty when it was none
};

// What the reading of a file went through last, so that a failure can say where it was.
class ReadTrail {
public:
    void NoteEntered(std::uint32_t code) { m_entered = code; }
    // A search for that code, which left the file at that position.
    void NoteMissed(std::uint32_t code, std::int32_t position)
    {
        m_missed = code;
        m_missedFrom = position;
    }
    // A field that can't be read, with the file at that position. The first counts.
    void NoteFailedField(std::string_view field, std::int32_t position)
    {
        if (m_stop) return;
        m_stop = StopAt(position);
        m_stop->field = field;
    }

    [[nodiscard]] std::uint32_t entered() const { return m_entered; } // the code of the chunk, 0 before any
    // Where the first such field stands, else the position where the file stands now.
    [[nodiscard]] ReadStop Stop(std::int32_t position) const { return m_stop ? *m_stop : StopAt(position); }

private:
    [[nodiscard]] ReadStop StopAt(std::int32_t position) const
    {
        return {m_entered, position, position == m_missedFrom ? m_missed : 0, {}};
    }

    std::uint32_t m_entered = 0;
    std::uint32_t m_missed = 0;
    std::int32_t m_missedFrom = 0;
    std::optional<ReadStop> m_stop;
};

} // namespace ZelmResult
