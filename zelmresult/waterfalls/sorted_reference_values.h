#pragma once

#include <cstdint>
#include <stdexcept>
#include <vector>

namespace ZelmResult {

// An array that grows, with the names that hosts of references use. The caller must keep indexes within the array,
// except for InsertAt and GetAt.
template <class T>
class GrowingArray {
public:
    void Add(T value) { m_values.push_back(value); }
    // At or beyond the end the array grows to index + 1.
    void InsertAt(std::int32_t index, T value)
    {
        const auto place = static_cast<std::size_t>(index);
        if (place < m_values.size()) {
            m_values.insert(m_values.begin() + index, value);
        } else {
            m_values.resize(place + 1);
            m_values[place] = value;
        }
    }
    void RemoveAt(std::int32_t index) { m_values.erase(m_values.begin() + index); }
    void RemoveAll() { m_values.clear(); }
    void Append(const GrowingArray& other)
    {
        const std::vector<T> values = other.m_values; // other may be this one
        m_values.insert(m_values.end(), values.begin(), values.end());
    }
    void SetSize(std::int32_t size) { m_values.resize(static_cast<std::size_t>(size)); }
    [[nodiscard]] std::int32_t GetSize() const { return static_cast<std::int32_t>(m_values.size()); }
    T& operator[](std::int32_t index) { return m_values[static_cast<std::size_t>(index)]; }
    const T& operator[](std::int32_t index) const { return m_values[static_cast<std::size_t>(index)]; }

protected:
    std::vector<T> m_values;
};

// The values of a reference in ascending order.
class SortedWaterfallRefValuesArray : public GrowingArray<float> {
public:
    [[nodiscard]] std::int32_t GetCount() const { return GetSize(); }
    // Throws std::out_of_range outside of the array.
    [[nodiscard]] float GetAt(std::int32_t index) const
    {
        if (index < 0 || index >= GetSize()) throw std::out_of_range("invalid vector<T> subscript");
        return (*this)[index];
    }
    [[nodiscard]] float* GetData() { return m_values.data(); } // lends
    [[nodiscard]] const float* GetData() const { return m_values.data(); }
};

// The block of each of those values.
class SortedWaterfallRefBlocNumberArray : public GrowingArray<std::int32_t> {};

} // namespace ZelmResult
