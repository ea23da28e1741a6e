#pragma once

#include "zelmresult/storage/mmio.h"

#include <cstdint>

namespace ZelmResult {

// Why a reader refused a file that the device could read.
struct Refusal {
    enum class Bound : std::uint8_t {
        None,
        BytesLeft, // a count asks for more than the file still holds
        Memory,    // all counts together ask for more memory than a file of this size may
        Depth,     // things are nested too deep, or in themselves
    };
    Bound bound = Bound::None;
    std::uint32_t chunk = 0;  // the code of the chunk that was entered last
    std::int32_t offset = -1; // the position of the file
};

// How much memory one open file may ask for, and how much it asked for so far. Loaders are limited to 16 times the
// file plus 64 MiB; a file that is being written counts what a load will ask for, without a limit.
class ReadBudget {
public:
    // Closed: allows nothing.
    ReadBudget() = default;
    static ReadBudget ForReading(std::int64_t fileSize) { return ReadBudget(Limit(fileSize)); }
    static ReadBudget ForWriting() { return ReadBudget(INT64_MAX); }
    static std::int64_t Limit(std::int64_t fileSize) { return kPerByte * fileSize + kAlways; }
    [[nodiscard]] bool IsUnlimited() const { return m_left + m_charged == INT64_MAX; }
    // Whether a load of a file that was just written stays within its limit. A load needs at most eight bytes of memory
    // per byte of the file, and for each chunk the object in memory; the rest was charged while it was written.
    [[nodiscard]] bool WillLoad(std::int64_t fileSize, std::int64_t chunks) const
    {
        return m_charged <= Limit(fileSize) - kForeseenPerByte * fileSize - kForeseenPerChunk * chunks;
    }

    // False, and nothing charged, when that would exceed the limit.
    bool Charge(std::uint64_t bytes)
    {
        if (m_left < 0 || bytes > static_cast<std::uint64_t>(m_left)) return false;
        m_left -= static_cast<std::int64_t>(bytes);
        m_charged += static_cast<std::int64_t>(bytes);
        return true;
    }
    [[nodiscard]] std::int64_t Charged() const { return m_charged; }

private:
    static constexpr std::int64_t kPerByte = 16;
    static constexpr std::int64_t kForeseenPerByte = 8;
    static constexpr std::int64_t kForeseenPerChunk = 256;
    static constexpr std::int64_t kAlways = std::int64_t{64} * 1048576;

    explicit ReadBudget(std::int64_t limit) : m_left(limit) {}

    std::int64_t m_left = -1;
    std::int64_t m_charged = 0;
};

// The bounds on the memory that an open file may ask for: the bytes that are left, the budget, and the first refusal.
// The backend is that of the open file.
class ReadBounds {
public:
    // Closed: allows nothing.
    ReadBounds() = default;
    explicit ReadBounds(ReadBudget budget) : m_budget(budget) {}

    // See CMmioFile for these three.
    bool RoomFor(CMmio& backend, std::uint64_t count, std::size_t elementSize);
    bool Charge(CMmio& backend, std::uint64_t bytes);
    bool Refuse(CMmio& backend, Refusal::Bound bound);

    void NoteEntered(std::uint32_t code) { m_lastEntered = code; }
    [[nodiscard]] std::uint32_t LastEntered() const { return m_lastEntered; }
    void ForgetRefusal() { m_refusal = {}; }
    void NoteCreated() { ++m_chunksCreated; }

    // Of a file that was opened for writing.
    [[nodiscard]] bool IsOfWriter() const { return m_budget.IsUnlimited(); }
    // The first refusal since the file was opened.
    [[nodiscard]] const Refusal& FirstRefusal() const { return m_refusal; }
    // All that was charged.
    [[nodiscard]] std::int64_t Charged() const { return m_budget.Charged(); }
    // Whether a load of the file that was just written, and has that size, would be within its limit.
    [[nodiscard]] bool WillLoad(std::int64_t fileSize) const { return m_budget.WillLoad(fileSize, m_chunksCreated); }

private:
    ReadBudget m_budget;
    std::int64_t m_chunksCreated = 0;
    std::uint32_t m_lastEntered = 0; // the code of the chunk
    Refusal m_refusal;
};

} // namespace ZelmResult
