#pragma once

#include <cstdint>
#include <map>
#include <vector>

namespace ZelmResult {

// Which raw slice each slot of a waterfall shows; most slots may be empty. Few slots, or many that are well filled, are
// an array; a map of the filled ones replaces it where an array would be too large for the number of slices.
class SortedMap {
public:
    static constexpr std::int32_t kEmpty = -1;

    [[nodiscard]] std::int32_t size() const { return m_size; }
    // New slots are empty; those beyond the end are removed. slices is the number of raw slices.
    void Resize(std::int32_t slots, std::int32_t slices);
    // Out of range the first returns kEmpty, and the second does nothing.
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
