#pragma once

#include <cstdint>
#include <map>
#include <vector>

namespace ZelmResult {

// Which raw slice each slot of a waterfall shows; most slots may be empty. Few slots, and many that are well filled,
// are an array; a map of what isn't empty takes its place where an array would be out of proportion to the slices.
class SortedMap {
public:
    static constexpr std::int32_t kEmpty = -1;

    [[nodiscard]] std::int32_t size() const { return m_size; }
    // New slots are empty, and those past the end go. slices is how many raw slices there are.
    void Resize(std::int32_t slots, std::int32_t slices);
    // kEmpty, and nothing, out of range.
    [[nodiscard]] std::int32_t Get(std::int32_t slot) const;
    void Set(std::int32_t slot, std::int32_t raw);
    void Empty();
    void Empty(std::int32_t from, std::int32_t count); // as far as there are slots

private:
    [[nodiscard]] bool Holds(std::int32_t slot) const { return slot >= 0 && slot < m_size; }
    static bool IsDense(std::int32_t slots, std::int32_t slices);

    std::int32_t m_size = 0;
    bool m_isDense = true;
    std::vector<std::int32_t> m_dense;
    std::map<std::int32_t, std::int32_t> m_sparse;
};

} // namespace ZelmResult
