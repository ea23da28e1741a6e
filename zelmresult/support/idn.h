#pragma once

#include "zelmresult/support/wstring.h"

#include <compare>
#include <cstdint>

// Identifiers of the analyzer's modules, submodules and settings, and their two stored spellings.

namespace idn {

using ZelmResult::wstring;

// Numbers of settings and kinds of submodules. They travel as plain numbers, so every value is legal.
enum class ESetting : std::uint32_t {};
enum class ESubmoduleCollection : std::uint32_t {};

struct Analyzer {
    std::uint32_t value = 0; // 0 in every identifier that the library builds itself

    Analyzer() = default;
    explicit Analyzer(std::uint32_t number) : value(number) {}

    auto operator<=>(const Analyzer&) const = default;
};

struct Module {
    std::uint32_t kind = 0;
    std::uint32_t instance = 0;

    Module() = default;
    Module(std::uint32_t kindNumber, std::uint32_t instanceNumber) : kind(kindNumber), instance(instanceNumber) {}

    // Kind in the low 16 bits, instance above: the raw chunk code of a module without a short number.
    [[nodiscard]] std::uint32_t to_uint32() const { return (kind & 0xFFFFU) | instance << 16U; }
    auto operator<=>(const Module&) const = default;
};

struct Submodule {
    std::uint32_t kind = 0;
    std::uint32_t instance = 0; // 1 is the first

    Submodule() = default;
    Submodule(std::uint32_t kindNumber, std::uint32_t instanceNumber) : kind(kindNumber), instance(instanceNumber) {}

    [[nodiscard]] std::uint32_t to_uint32() const { return (kind & 0xFFFFU) | instance << 16U; }
    static ESubmoduleCollection intToSubmoduleCollection(int code)
    {
        return static_cast<ESubmoduleCollection>(static_cast<std::uint32_t>(code));
    }
    auto operator<=>(const Submodule&) const = default;
};

struct Setting {
    std::uint32_t value = 0;

    Setting() = default;
    explicit Setting(std::uint32_t number) : value(number) {}

    auto operator<=>(const Setting&) const = default;
};

// The identifier of a module, a submodule or a setting; the parts after the named one are null. A plain value of six
// numbers, ordered by them from left to right. Default constructed, it is the null identifier.
struct Idn {
    Analyzer m_analyzer;
    Module m_module;
    Submodule m_submodule;
    Setting m_setting;

    Idn() = default;
    Idn(Analyzer analyzer, Module module, Submodule submodule, Setting setting)
        : m_analyzer(analyzer), m_module(module), m_submodule(submodule), m_setting(setting)
    {
    }

    static const Idn s_null;

    static Idn generateModuleIdn(Analyzer analyzer, Module module)
    {
        return {analyzer, module, Submodule{}, Setting{}};
    }
    static Idn generateSubmoduleIdn(Analyzer analyzer, Module module, Submodule submodule)
    {
        return {analyzer, module, submodule, Setting{}};
    }
    static Idn generateSettingIdn(Module module, Submodule submodule, ESetting setting)
    {
        return {Analyzer{}, module, submodule, Setting{static_cast<std::uint32_t>(setting)}};
    }
    // The same place with another setting.
    [[nodiscard]] Idn settingIdn(ESetting setting) const
    {
        return {m_analyzer, m_module, m_submodule, Setting{static_cast<std::uint32_t>(setting)}};
    }

    [[nodiscard]] bool isNull() const { return *this == Idn{}; }
    [[nodiscard]] const Analyzer& analyzer() const { return m_analyzer; }
    [[nodiscard]] const Module& module() const { return m_module; }
    [[nodiscard]] const Submodule& submodule() const { return m_submodule; }
    [[nodiscard]] const Setting& setting() const { return m_setting; }
    Analyzer& analyzer() { return m_analyzer; }
    Module& module() { return m_module; }
    Submodule& submodule() { return m_submodule; }
    Setting& setting() { return m_setting; }

    auto operator<=>(const Idn&) const = default;
};

inline const Idn Idn::s_null{};

// The short identifier of older files. Number n of a module or submodule means kind n, instance 1; 0 and 65535 mean
// none.
struct Legacy {
    std::uint16_t module = 0;
    std::uint16_t submodule = 0;
    std::uint16_t setting = 0;

    Legacy() = default;
    Legacy(std::uint16_t moduleNumber, std::uint16_t submoduleNumber, std::uint16_t settingNumber)
        : module(moduleNumber), submodule(submoduleNumber), setting(settingNumber)
    {
    }

    // True when the identifier has a short form that reads back as the same identifier; out is set only then. The null
    // identifier, and one that would equal a marker value, have none. The flag has no effect.
    static bool convertIdnToLegacy(const Idn& idn, Legacy& out, bool flag);
    static std::uint16_t convertSettingToLegacy(const Setting& setting)
    {
        return static_cast<std::uint16_t>(setting.value);
    }
    // In the stored form: a text follows.
    static Legacy magic() { return {65534, 65534, 65534}; }
    [[nodiscard]] bool isMagic() const { return *this == magic(); }
    // The old and the present spelling of "no identifier".
    static Legacy formerAbsent() { return {255, 255, 255}; }
    static Legacy absent() { return {65535, 65535, 65535}; }

    [[nodiscard]] Idn toIdn() const
    {
        return {Analyzer{}, Module(KindOf(module), InstanceOf(module)),
                Submodule(KindOf(submodule), InstanceOf(submodule)), Setting{KindOf(setting)}};
    }

    bool operator==(const Legacy&) const = default;

    static constexpr std::uint32_t kLastShortNumber = 65534;

private:
    static std::uint32_t KindOf(std::uint16_t number) { return number <= kLastShortNumber ? number : 0U; }
    static std::uint32_t InstanceOf(std::uint16_t number) { return KindOf(number) != 0 ? 1 : 0; }
};

// Text forms: "analyzer/kind.instance/kind.instance/setting" in decimal, the short form "module/submodule/setting".
class IdnString {
public:
    static wstring idnToStringT(const Idn& idn);
    // True when the whole text is an identifier; out is set only then. A number past 32 bits fails.
    static bool stringToIdnT(const wstring& text, Idn& out);
    static bool stringToIdn(const wstring& text, Idn& out) { return stringToIdnT(text, out); }
    static wstring legacyIdnToLegacyStringT(const Legacy& legacy);
};

} // namespace idn
