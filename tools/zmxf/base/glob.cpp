#include "tools/zmxf/base/glob.h"

#include <cstddef>
#include <optional>

namespace zmxf {

namespace {

using ZelmResult::wstring_view;

// The bracket expression at the start of the pattern: how long it is, and whether it holds the character.
struct Bracket {
    std::size_t length = 0; // 0 for none
    bool holds = false;
};

Bracket BracketFor(wstring_view pattern, char16_t character)
{
    if (!pattern.starts_with(u'[')) return {};
    const bool isNegated = pattern.substr(1).starts_with(u'!');
    const std::size_t first = isNegated ? 2 : 1;
    const std::size_t end = pattern.find(u']', first + 1); // a ] that comes first is one of the characters
    if (end == wstring_view::npos) return {};
    bool isListed = false;
    for (std::size_t i = first; i < end; ++i) {
        const bool isRange = i + 2 < end && pattern[i + 1] == u'-';
        const char16_t last = pattern[isRange ? i + 2 : i];
        isListed = isListed || (pattern[i] <= character && character <= last);
        i += isRange ? 2 : 0;
    }
    return {end + 1, isListed != isNegated};
}

// The length of what describes one character at the start of the pattern; 0 when it describes another one.
std::size_t MatchOne(wstring_view pattern, char16_t character)
{
    if (pattern.empty()) return 0;
    if (const Bracket bracket = BracketFor(pattern, character); bracket.length != 0)
        return bracket.holds ? bracket.length : 0;
    return pattern.front() == u'?' || pattern.front() == character ? 1 : 0;
}

} // namespace

bool MatchesGlob(wstring_view pattern, wstring_view text)
{
    // Where to go on when a match fails: after the last star, which then stands for one character more.
    std::optional<wstring_view> behindStar;
    wstring_view afterStar;
    while (!text.empty()) {
        if (pattern.starts_with(u'*')) {
            behindStar = pattern = pattern.substr(1);
            afterStar = text;
        } else if (const std::size_t length = MatchOne(pattern, text.front()); length != 0) {
            pattern.remove_prefix(length);
            text.remove_prefix(1);
        } else if (behindStar) {
            pattern = *behindStar;
            afterStar.remove_prefix(1);
            text = afterStar;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of(u'*') == wstring_view::npos;
}

} // namespace zmxf
