#include "tools/zmxf/exporting/hdf5_names.h"

#include "zelmresult/support/text.h"

#include <fmt/format.h>

namespace zmxf::hdf5 {

namespace {

constexpr char16_t kReplacement = u'\uFFFD';
constexpr std::size_t kLongestName = 60; // characters; netCDF takes 256 bytes

bool IsSurrogate(char16_t c) { return c >= 0xD800 && c < 0xE000; }
bool IsHighSurrogate(char16_t c) { return IsSurrogate(c) && c < 0xDC00; }

bool IsDigit(char16_t c) { return c >= u'0' && c <= u'9'; }

// Beyond ASCII all but marks and blanks of any kind, and what isn't a character.
bool IsLetter(char16_t c)
{
    if (c < 0x80) return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z');
    constexpr char16_t ogham = 0x1680;
    return (c >= 0xC0 && c < 0x2000 && c != ogham) || (c > 0x3000 && c < 0xD800);
}

} // namespace

std::string Text(ZelmResult::wstring_view text)
{
    ZelmResult::wstring clean(text);
    for (std::size_t i = 0; i < clean.size(); ++i) {
        const bool isPair = IsHighSurrogate(clean[i]) && i + 1 < clean.size() && IsSurrogate(clean[i + 1]) &&
                            !IsHighSurrogate(clean[i + 1]);
        if (isPair)
            ++i;
        else if (IsSurrogate(clean[i]) || clean[i] == 0)
            clean[i] = kReplacement;
    }
    return ZelmResult::ToUtf8(clean);
}

std::string Names::Take(ZelmResult::wstring_view text)
{
    ZelmResult::wstring clean(text.substr(0, kLongestName));
    for (char16_t& c : clean)
        if (!IsLetter(c) && !IsDigit(c)) c = u'_';
    if (clean.empty() || !IsLetter(clean.front())) clean.insert(0, u"x");
    const std::string name = ZelmResult::ToUtf8(clean);
    std::string free = name;
    for (int& times = m_taken[name]; ++times > 1;) {
        free = fmt::format("{}_{}", name, times);
        if (m_taken.try_emplace(free, 1).second) break;
    }
    return free;
}

} // namespace zmxf::hdf5
