#include "zelmresult/support/idn.h"

#include "zelmresult/support/text.h"

#include <string_view>

namespace idn {

namespace {

constexpr std::uint32_t kNoShortNumber = 65535;

struct KindAndInstance {
    std::uint32_t kind;
    std::uint32_t instance;
};

// kNoShortNumber without one.
std::uint32_t ToShortNumber(KindAndInstance couple)
{
    if (couple.instance == 1 && couple.kind != 0 && couple.kind <= Legacy::kLastShortNumber) return couple.kind;
    return couple.kind == 0 && couple.instance == 0 ? 0 : kNoShortNumber;
}

// Removes a decimal number from the start of the text.
bool TakeNumber(std::u16string_view& text, std::uint32_t& out)
{
    std::size_t digits = 0;
    std::uint64_t value = 0;
    while (digits < text.size() && text[digits] >= u'0' && text[digits] <= u'9') {
        value = value * 10 + (text[digits] - u'0');
        if (value > UINT32_MAX) return false;
        ++digits;
    }
    if (digits == 0) return false;
    out = static_cast<std::uint32_t>(value);
    text.remove_prefix(digits);
    return true;
}

bool TakeCharacter(std::u16string_view& text, char16_t wanted)
{
    if (text.empty() || text.front() != wanted) return false;
    text.remove_prefix(1);
    return true;
}

} // namespace

bool Legacy::convertIdnToLegacy(const Idn& idn, Legacy& out, bool /*flag*/)
{
    const std::uint32_t module = ToShortNumber({idn.m_module.kind, idn.m_module.instance});
    const std::uint32_t submodule = ToShortNumber({idn.m_submodule.kind, idn.m_submodule.instance});
    const bool isShort = idn.m_analyzer.value == 0 && module != kNoShortNumber && submodule != kNoShortNumber &&
                         idn.m_setting.value <= kLastShortNumber;
    if (!isShort || idn.isNull()) return false;
    const Legacy legacy(static_cast<std::uint16_t>(module), static_cast<std::uint16_t>(submodule),
                        static_cast<std::uint16_t>(idn.m_setting.value));
    if (legacy == formerAbsent() || legacy.isMagic()) return false;
    out.module = legacy.module; // one by one: see FieldStream::WriteIdentifier
    out.submodule = legacy.submodule;
    out.setting = legacy.setting;
    return true;
}

wstring IdnString::idnToStringT(const Idn& idn)
{
    return ZelmResult::Concat(idn.m_analyzer.value, u"/", idn.m_module.kind, u".", idn.m_module.instance, u"/",
                              idn.m_submodule.kind, u".", idn.m_submodule.instance, u"/", idn.m_setting.value);
}

bool IdnString::stringToIdnT(const wstring& text, Idn& out)
{
    std::u16string_view rest = text;
    Idn idn;
    const bool whole = TakeNumber(rest, idn.m_analyzer.value) && TakeCharacter(rest, u'/') &&
                       TakeNumber(rest, idn.m_module.kind) && TakeCharacter(rest, u'.') &&
                       TakeNumber(rest, idn.m_module.instance) && TakeCharacter(rest, u'/') &&
                       TakeNumber(rest, idn.m_submodule.kind) && TakeCharacter(rest, u'.') &&
                       TakeNumber(rest, idn.m_submodule.instance) && TakeCharacter(rest, u'/') &&
                       TakeNumber(rest, idn.m_setting.value) && rest.empty();
    if (whole) out = idn;
    return whole;
}

wstring IdnString::legacyIdnToLegacyStringT(const Legacy& legacy)
{
    return ZelmResult::Concat(legacy.module, u"/", legacy.submodule, u"/", legacy.setting);
}

} // namespace idn
