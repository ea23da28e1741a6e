#include "tests/builders/bytes.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <iomanip>
#include <sstream>

namespace ZelmResult::test {

namespace {

constexpr std::size_t kBytesAround = 8;

std::string HexAround(const std::vector<char>& bytes, std::size_t offset)
{
    std::ostringstream out;
    out << std::hex << std::setfill('0');
    const std::size_t first = offset > kBytesAround ? offset - kBytesAround : 0;
    const std::size_t last = std::min(bytes.size(), offset + kBytesAround);
    for (std::size_t i = first; i < last; ++i)
        out << (i == offset ? " >" : " ") << std::setw(2)
            << static_cast<unsigned>(static_cast<unsigned char>(bytes[i]));
    if (last < offset + kBytesAround) out << (last <= offset ? " >end" : " end");
    return out.str();
}

} // namespace

Bytes& Bytes::raw(std::string_view bytes, std::string_view name)
{
    m_names.emplace_back(m_data.size(), name);
    m_data.insert(m_data.end(), bytes.begin(), bytes.end());
    return *this;
}

Bytes& Bytes::f32s(const std::vector<float>& values, std::string_view name)
{
    return raw({reinterpret_cast<const char*>(values.data()), values.size() * sizeof(float)}, name);
}

Bytes& Bytes::text(wstring_view value, std::string_view name)
{
    u8(0xFF, name).u16(0xFFFE, name);
    if (value.size() < 0xFF)
        u8(static_cast<std::uint8_t>(value.size()), name);
    else if (value.size() < 0xFFFE)
        u8(0xFF, name).u16(static_cast<std::uint16_t>(value.size()), name);
    else
        u8(0xFF, name).u16(0xFFFF, name).u32(static_cast<std::uint32_t>(value.size()), name);
    return raw({reinterpret_cast<const char*>(value.data()), value.size() * sizeof(char16_t)}, name);
}

Bytes& Bytes::narrow(std::string_view value, std::string_view name)
{
    if (value.size() < 0xFF)
        u8(static_cast<std::uint8_t>(value.size()), name);
    else
        u8(0xFF, name).u16(static_cast<std::uint16_t>(value.size()), name);
    return raw(value, name);
}

Bytes& Bytes::idn(std::uint16_t module, std::uint16_t submodule, std::uint16_t setting, std::string_view name)
{
    return u16(module, name).u16(submodule, name).u16(setting, name);
}

Bytes& Bytes::idnText(wstring_view value, std::string_view name)
{
    return idn(65534, 65534, 65534, name).text(value, name);
}

Bytes& Bytes::zeros(std::size_t count, std::string_view name) { return raw(std::string(count, '\0'), name); }

Bytes& Bytes::append(const Bytes& other, std::string_view name)
{
    const std::string prefix = name.empty() ? "" : std::string(name) + ".";
    for (const auto& [offset, inner] : other.m_names) m_names.emplace_back(m_data.size() + offset, prefix + inner);
    m_data.insert(m_data.end(), other.m_data.begin(), other.m_data.end());
    return *this;
}

Bytes& Bytes::code(std::string_view fourCharacters, std::string_view name) { return raw(fourCharacters, name); }

Bytes& Bytes::chunk(std::string_view fourCharacters, const Bytes& data)
{
    const std::string label(fourCharacters);
    code(label, label + " code").u32(static_cast<std::uint32_t>(data.size()), label + " size").append(data, label);
    return data.size() % 2 == 0 ? *this : u8(0, label + " pad");
}

Bytes& Bytes::list(std::string_view type, const Bytes& children)
{
    return chunk("LIST", Bytes{}.code(type, "type").append(children, type));
}

Bytes& Bytes::riff(std::string_view type, const Bytes& children)
{
    return chunk("RIFF", Bytes{}.code(type, "type").append(children, type));
}

std::string Bytes::fieldAt(std::size_t offset) const
{
    if (offset >= m_data.size()) return "after the end";
    const auto after = std::upper_bound(m_names.begin(), m_names.end(), offset,
                                        [](std::size_t value, const auto& named) { return value < named.first; });
    if (after == m_names.begin()) return "?";
    const auto& [start, name] = *std::prev(after);
    return (name.empty() ? "field" : name) + " (from " + std::to_string(start) + ")";
}

void expectBytes(const std::vector<char>& actual, const Bytes& expected, const char* file, int line)
{
    if (actual == expected.data()) return;
    const auto mismatch =
        std::mismatch(actual.begin(), actual.end(), expected.data().begin(), expected.data().end()).first;
    const auto offset = static_cast<std::size_t>(mismatch - actual.begin());
    ADD_FAILURE_AT(file, line) << "bytes differ at offset " << offset << " of " << expected.size() << ", in "
                               << expected.fieldAt(offset) << "\n  actual  (" << actual.size()
                               << " bytes):" << HexAround(actual, offset)
                               << "\n  expected:" << HexAround(expected.data(), offset);
}

} // namespace ZelmResult::test
