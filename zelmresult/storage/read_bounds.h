#pragma once

#include "zelmresult/storage/mmio.h"

#include <cstdint>

namespace ZelmResult {

// Why a reader turned down a file that the device delivered.
struct Refusal {
    enum class Bound : std::uint8_t {
        None,
        BytesLeft, // a count asks for more than the file still holds
        Memory,    // all counts together ask for more memory than a file of this size may
        Depth,     // things lie inside each other too deep, or in themselves
    };
    Bound bound = Bound::None;
    std::uint32_t chunk = 0;  // the code of the chunk that was entered last
    std::int32_t offset = -1; // where the file stood
};

// How much memory one open file may ask for, and how much it asked for so far. Loaders are limited to 16 times the
// file plus 64 MiB; a file that is being written counts what a load will ask for, without a limit.
class ReadBudget {
public:
    // Closed: grants nothing.
    ReadBudget() = default;
    static ReadBudget ForReading(std::int64_t fileSize) { return ReadBudget(Limit(fileSize)); }
    static ReadBudget ForWriting() { return ReadBudget(INT64_MAX); }
    static std::int64_t Limit(std::int64_t fileSize) { return kPerByte * fileSize + kAlways; }
    // Whether a load of a file that was just written stays within its limit. What it holds in bytes costs a load at
    // most eight times those, and each chunk what stands for it in memory; the rest was charged while it was written.
    [[nodiscard]] bool WillLoad(std::int64_t fileSize, std::int64_t chunks) const
    {
        return m_charged <= Limit(fileSize) - kForeseenPerByte * fileSize - kForeseenPerChunk * chunks;
    }

    // False, and nothing charged, when the limit would be passed.
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

// What keeps an open file from asking for memory out of proportion to it: the bytes that are left, the budget, and
// why the first thing was turned down. The backend is that of the open file.
class ReadBounds {
public:
    // Closed: grants nothing.
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

    // The first since the file was opened.
    [[nodiscard]] const Refusal& FirstRefusal() const { return m_refusal; }
    // All that was charged.
    [[nodiscard]] std::int64_t Charged() const { return m_budget.Charged(); }
    // Of a file that was just written and has that size: whether a load of it would be within its limit.
    [[nodiscard]] bool WillLoad(std::int64_t fileSize) const { return m_budget.WillLoad(fileSize, m_chunksCreated); }

private:
    ReadBudget m_budget;
    std::int64_t m_chunksCreated = 0;
    std::uint32_t m_lastEntered = 0; // the code of the chunk
    Refusal m_refusal;
};

} // namespace ZelmResult
