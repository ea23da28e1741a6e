#include "zelmresult/quantities/translation.h"

#include <string_view>

namespace ZelmResult {

namespace {

TranslationHook g_hook = nullptr;

constexpr bool IsContinuation(unsigned char byte) { return (byte & 0xC0U) == 0x80U; }

// Not FromUtf8: the fixed texts hold no four-byte forms and no stray bytes, and this function skips them in its own
// way.
wstring DecodeFixedText(std::string_view text)
{
    const auto byte = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    wstring out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const unsigned char lead = byte(i);
        if (lead < 0x80) {
            out += static_cast<char16_t>(lead);
        } else if ((lead & 0xE0U) == 0xC0U) {
            if (i + 1 >= text.size()) break;
            if (!IsContinuation(byte(i + 1))) continue;
            out += static_cast<char16_t>((lead & 0x1FU) << 6U | (byte(i + 1) & 0x3FU));
            i += 1;
        } else if ((lead & 0xF0U) == 0xE0U) {
            if (i + 2 >= text.size() || !IsContinuation(byte(i + 1)) || !IsContinuation(byte(i + 2))) break;
            out += static_cast<char16_t>((lead & 0x0FU) << 12U | (byte(i + 1) & 0x3FU) << 6U | (byte(i + 2) & 0x3FU));
            i += 2;
        }
    }
    return out;
}

} // namespace

void ZelmResult_installTranslationHook(TranslationHook hook) { g_hook = hook; }

wstring TranslateUserString(const char* context, const char* text)
{
    if (text == nullptr) return {};
    return g_hook != nullptr ? g_hook(context != nullptr ? context : "", text, nullptr) : DecodeFixedText(text);
}

} // namespace ZelmResult
