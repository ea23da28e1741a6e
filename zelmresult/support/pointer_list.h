#pragma once

#include <cstddef>
#include <unordered_set>
#include <vector>

namespace ZelmResult {

// Pointers in the order of their addition, each once. It owns nothing. The time to add one doesn't depend on the length
// of the list.
template <class T>
class PointerList {
public:
    // False for null and for one that is there already.
    bool Add(T* pointer)
    {
        for (std::size_t i = m_known.size(); i < m_pointers.size(); ++i) m_known.insert(m_pointers[i]);
        if (pointer == nullptr || !m_known.insert(pointer).second) return false;
        m_pointers.push_back(pointer);
        return true;
    }
    // Adds one that is new for certain, such as a load makes, without the memory for finding it again.
    void AddNew(T* pointer) { m_pointers.push_back(pointer); }
    void Clear()
    {
        m_pointers.clear();
        m_known.clear();
    }
    [[nodiscard]] const std::vector<T*>& All() const { return m_pointers; }
    [[nodiscard]] std::size_t size() const { return m_pointers.size(); }
    [[nodiscard]] bool empty() const { return m_pointers.empty(); }
    [[nodiscard]] T* operator[](std::size_t index) const { return m_pointers[index]; }
    [[nodiscard]] auto begin() const { return m_pointers.begin(); }
    [[nodiscard]] auto end() const { return m_pointers.end(); }

private:
    std::vector<T*> m_pointers;
    std::unordered_set<const T*> m_known; // the pointers that were there when Add was last called
};

} // namespace ZelmResult
