#include "zelmresult/support/path_bytes.h"

#include "zelmresult/support/text.h"

namespace ZelmResult {

namespace {

constexpr char16_t kEscape = 0xDC00; // a byte of an invalid form is added to it

// How many bytes the form that begins with this byte should have.
std::size_t FormLength(unsigned char first)
{
    if (first < 0xC0) return 1;
    if (first < 0xE0) return 2;
    return first < 0xF0 ? 3 : 4;
}

bool IsEscaped(wstring_view path, std::size_t at)
{
    const bool isByte = path[at] >= kEscape + 0x80 && path[at] <= kEscape + 0xFF;
    const bool isPaired = at > 0 && path[at - 1] >= 0xD800 && path[at - 1] < kEscape;
    return isByte && !isPaired;
}

} // namespace

wstring PathFromBytes(std::string_view path)
{
    wstring text;
    for (std::size_t at = 0; at < path.size();) {
        const auto first = static_cast<unsigned char>(path[at]);
        const std::string_view form = path.substr(at, FormLength(first));
        const wstring piece = FromUtf8(form);
        const bool isSurrogate = piece.size() == 1 && piece.front() >= 0xD800 && piece.front() <= 0xDFFF;
        const bool isValid = !isSurrogate && ToUtf8(piece) == form;
        text += isValid ? piece : wstring(1, static_cast<char16_t>(kEscape + first));
        at += isValid ? form.size() : 1;
    }
    return text;
}

std::string PathToBytes(wstring_view path)
{
    std::string bytes;
    std::size_t from = 0;
    for (std::size_t at = 0; at < path.size(); ++at) {
        if (!IsEscaped(path, at)) continue;
        bytes += ToUtf8(path.substr(from, at - from));
        bytes += static_cast<char>(path[at] - kEscape);
        from = at + 1;
    }
    return bytes + ToUtf8(path.substr(from));
}

} // namespace ZelmResult
