#pragma once

#include "zelmresult/waterfalls/list_vector_ref.h"

#include <memory>
#include <vector>

namespace ZelmResult {

// Pointers to lists of references that may die: a list that did leaves its place empty, so that indexes stay.
class ReferenceLists {
public:
    void Add(CListVectorRef* list)
    {
        m_lists.push_back(list);
        m_lifetimes.push_back(list != nullptr ? list->Lifetime() : std::weak_ptr<const void>());
    }
    void Clear()
    {
        m_lists.clear();
        m_lifetimes.clear();
    }
    // Whether the first was null when it was added. One that died later doesn't count.
    [[nodiscard]] bool StartsWithNull() const
    {
        const std::weak_ptr<const void> none;
        return !m_lifetimes.empty() && !none.owner_before(m_lifetimes.front()) &&
               !m_lifetimes.front().owner_before(none);
    }
    // Null in the place of one that died.
    [[nodiscard]] const std::vector<CListVectorRef*>& All() const
    {
        for (std::size_t i = 0; i < m_lists.size(); ++i)
            if (m_lifetimes[i].expired()) m_lists[i] = nullptr;
        return m_lists;
    }

private:
    mutable std::vector<CListVectorRef*> m_lists;
    std::vector<std::weak_ptr<const void>> m_lifetimes;
};

} // namespace ZelmResult
