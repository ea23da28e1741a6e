#pragma once

#include <compare>
#include <cstdint>

namespace ZelmResult {

// An index that is stored as the plain number. 0 and -1 are ordinary values that the caller may take for "none" and
// "minus one".
class RRIndex {
public:
    static RRIndex generateNull() { return RRIndex(0); }
    static RRIndex generateMinusOne() { return RRIndex(-1); }
    static RRIndex generateIndex(std::int32_t index) { return RRIndex(index); }
    static RRIndex generateFromSerializedInt(std::int32_t number) { return RRIndex(number); }

    [[nodiscard]] std::int32_t index() const { return m_index; }
    [[nodiscard]] std::int32_t toSerializedInt() const { return m_index; }
    [[nodiscard]] bool isNull() const { return m_index == 0; }
    [[nodiscard]] bool isMinusOne() const { return m_index == -1; }
    auto operator<=>(const RRIndex&) const = default;

private:
    explicit RRIndex(std::int32_t index) : m_index(index) {}

    std::int32_t m_index;
};

} // namespace ZelmResult
