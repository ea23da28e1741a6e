#pragma once

#include "zelmresult/support/wstring.h"

#include <array>
#include <cstddef>

namespace ZelmResult {

template <std::size_t count>
class PackedText;

// A fixed number of texts, one after the other in one block of memory: records of many short texts are smaller so, and
// faster to make. Setting a text moves those after it, so set them in their order.
template <std::size_t count>
class PackedTexts {
public:
    PackedTexts() = default;
    PackedTexts(const PackedTexts&) = default; // and no move, which would leave ends without a block
    PackedTexts& operator=(const PackedTexts&) = default;
    ~PackedTexts() = default;

    // A view until the next change.
    wstring_view operator[](std::size_t number) const
    {
        return wstring_view(m_block).substr(Start(number), m_ends[number] - Start(number));
    }
    PackedText<count> operator[](std::size_t number) { return {*this, number}; }
    void Set(std::size_t number, wstring_view text)
    {
        const std::size_t start = Start(number);
        const std::size_t former = m_ends[number];
        if (start == m_block.size())
            m_block.append(text); // as when they are set in their order
        else
            m_block.replace(start, former - start, text);
        const std::size_t moved = start + text.size() - former; // wraps for a shorter text
        for (std::size_t i = number; i < count; ++i) m_ends[i] += moved;
    }
    // Makes room for that many characters in all.
    void Reserve(std::size_t characters) { m_block.reserve(characters); }
    // Gives back the room that the texts don't need.
    void ShrinkToFit() { m_block.shrink_to_fit(); }

private:
    [[nodiscard]] std::size_t Start(std::size_t number) const { return number == 0 ? 0 : m_ends[number - 1]; }

    wstring m_block;
    std::array<std::size_t, count> m_ends{};
};

// One of them, to set it.
template <std::size_t count>
class PackedText {
public:
    PackedText(PackedTexts<count>& texts, std::size_t number) : m_texts(texts), m_number(number) {}
    const PackedText& operator=(wstring_view text) const
    {
        m_texts.Set(m_number, text);
        return *this;
    }

private:
    PackedTexts<count>& m_texts;
    std::size_t m_number;
};

} // namespace ZelmResult
