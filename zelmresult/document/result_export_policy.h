#pragma once

#include "zelmresult/results/result.h"

namespace ZelmResult {

class CResultHeader;

// How a stored result is to be exported, by the rule of the host application or of the toolkit. A plain value.
class ResultExportPolicy {
public:
    enum class Context : std::int32_t { Toolkit = 0, HostApplication = 1 };
    enum class ComplexPreference : std::int32_t { None = 0, Preferred = 1 };
    enum class Policy : std::int32_t { Missing = 0, First = 1, Second = 2 }; // the host defines 1 and 2

    [[nodiscard]] Context context() const { return m_context; }
    void setContext(Context context) { m_context = context; }
    [[nodiscard]] ComplexPreference complexPreference() const { return m_complexPreference; }
    void setComplexPreference(ComplexPreference preference) { m_complexPreference = preference; }

    // Either pointer may be null: the answer is then Missing.
    Policy policy(const CResultHeader* header, const CResult* result) const;
    Policy policy(const CResultHeader* header, SignalType type, std::uint32_t process) const;

private:
    static Policy policy_tavide(ComplexPreference preference, const CResultHeader& header, std::uint32_t process);
    static Policy policy_toolkit(const CResultHeader& header, std::uint32_t process);

    Context m_context = Context::Toolkit;
    ComplexPreference m_complexPreference = ComplexPreference::None;
};

} // namespace ZelmResult
