#pragma once

#include "zelmresult/support/wstring.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// Stored bytes written out, one field per line:
//
//     const Bytes stored = Bytes{}.u16(1, "version")
//                                 .append(resultBlock(2), "base")
//                                 .f32s({1, 2}, "values")
//                                 .f32(2, "YMax");
//     expectBytes(written(sample), stored);
//
// The optional last argument names the field for the message on a difference.

namespace ZelmResult::test {

class Bytes {
public:
    Bytes& u8(std::uint8_t value, std::string_view name = {}) { return put(value, name); }
    Bytes& u16(std::uint16_t value, std::string_view name = {}) { return put(value, name); }
    Bytes& u32(std::uint32_t value, std::string_view name = {}) { return put(value, name); }
    Bytes& i32(std::int32_t value, std::string_view name = {}) { return put(value, name); }
    Bytes& i64(std::int64_t value, std::string_view name = {}) { return put(value, name); }
    Bytes& f32(float value, std::string_view name = {}) { return put(value, name); }
    Bytes& f32s(const std::vector<float>& values, std::string_view name = {});
    Bytes& flag(bool value, std::string_view name = {}) { return put(std::uint32_t{value}, name); }
    Bytes& time(std::int64_t seconds, std::string_view name = {}) { return put(seconds, name); }
    Bytes& text(wstring_view value, std::string_view name = {});       // as it is stored today
    Bytes& narrow(std::string_view value, std::string_view name = {}); // as older files hold it
    // An identifier by its three short numbers; the null identifier is 65535 three times.
    Bytes& idn(std::uint16_t module, std::uint16_t submodule, std::uint16_t setting, std::string_view name = {});
    Bytes& idnText(wstring_view value, std::string_view name = {}); // by its text, for one without short numbers
    Bytes& zeros(std::size_t count, std::string_view name = {});
    Bytes& raw(std::string_view bytes, std::string_view name = {});
    // The names inside get this one before them.
    Bytes& append(const Bytes& other, std::string_view name = {});

    Bytes& code(std::string_view fourCharacters, std::string_view name = {});
    // Header, data and the pad byte of an odd size.
    Bytes& chunk(std::string_view fourCharacters, const Bytes& data);
    Bytes& list(std::string_view type, const Bytes& children);
    Bytes& riff(std::string_view type, const Bytes& children);
    // The chunk "VERS" that most lists begin with.
    Bytes& versionChunk(std::uint16_t version) { return chunk("VERS", Bytes{}.u16(version, "version")); }

    [[nodiscard]] const std::vector<char>& data() const { return m_data; }
    [[nodiscard]] std::size_t size() const { return m_data.size(); }
    // The name of the field that the byte at an offset belongs to.
    [[nodiscard]] std::string fieldAt(std::size_t offset) const;

private:
    template <class T>
    Bytes& put(T value, std::string_view name)
    {
        return raw({reinterpret_cast<const char*>(&value), sizeof value}, name);
    }

    std::vector<char> m_data;
    std::vector<std::pair<std::size_t, std::string>> m_names; // offset of a field, its name; ascending
};

// Fails the running test on a difference, with its offset, the bytes around it on both sides and the field's name.
void expectBytes(const std::vector<char>& actual, const Bytes& expected, const char* file = __builtin_FILE(),
                 int line = __builtin_LINE());

} // namespace ZelmResult::test
