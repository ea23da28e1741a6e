#pragma once

#include <cstddef>
#include <unordered_set>
#include <vector>

namespace ZelmResult {

// Pointers in the order of their addition, each once. It owns nothing.
template <class T>
class PointerList {
public:
    // False for null and for one that is there already.
    bool Add(T* pointer)
    {
        if (pointer == nullptr || !m_known.insert(pointer).second) return false;
        m_pointers.push_back(pointer);
        return true;
    }
    [[nodiscard]] const std::vector<T*>& All() const { return m_pointers; }
    [[nodiscard]] std::size_t size() const { return m_pointers.size(); }
    [[nodiscard]] bool empty() const { return m_pointers.empty(); }
    [[nodiscard]] T* operator[](std::size_t index) const { return m_pointers[index]; }
    [[nodiscard]] auto begin() const { return m_pointers.begin(); }
    [[nodiscard]] auto end() const { return m_pointers.end(); }

private:
    std::vector<T*> m_pointers;
    std::unordered_set<const T*> m_known;
};

} // namespace ZelmResult
