#pragma once

#include "zelmresult/waterfalls/list_vector_ref.h"

#include <cstddef>
#include <optional>
#include <unordered_map>
#include <vector>

namespace ZelmResult {

// Pointers to lists of references that may die: a dead list leaves its place empty, so that indexes don't change.
class ReferenceLists {
public:
    void Add(CListVectorRef* list)
    {
        if (list != nullptr && !IndexOf(list)) m_places.insert_or_assign(list, m_entries.size());
        m_entries.push_back({list, list == nullptr});
    }
    // Adds an empty place, as a dead list leaves it: for a list that a file no longer holds.
    void AddEmptyPlace() { m_entries.push_back({}); }
    void Clear()
    {
        m_entries.clear();
        m_places.clear();
    }

    [[nodiscard]] std::size_t size() const { return m_entries.size(); }
    // Null beyond the end, and for an empty place.
    [[nodiscard]] CListVectorRef* At(std::size_t index) const
    {
        return index < m_entries.size() ? m_entries[index].list.get() : nullptr;
    }
    // The first place of a living list.
    [[nodiscard]] std::optional<std::size_t> IndexOf(const CListVectorRef* list) const
    {
        const auto known = m_places.find(list);
        if (known == m_places.end() || At(known->second) == nullptr) return std::nullopt;
        return known->second;
    }
    // Whether the first was null when it was added. One that died later is no null in this sense.
    [[nodiscard]] bool StartsWithNull() const { return !m_entries.empty() && m_entries.front().wasNull; }
    // Null for a dead list. Takes time linear in the places.
    [[nodiscard]] const std::vector<CListVectorRef*>& All() const
    {
        m_all.clear();
        for (const Entry& entry : m_entries) m_all.push_back(entry.list);
        return m_all;
    }

private:
    struct Entry {
        WatchedPointer<CListVectorRef> list;
        bool wasNull = false;
    };

    std::vector<Entry> m_entries;
    std::unordered_map<const CListVectorRef*, std::size_t> m_places; // also of dead lists
    mutable std::vector<CListVectorRef*> m_all;                      // lent by All
};

} // namespace ZelmResult
