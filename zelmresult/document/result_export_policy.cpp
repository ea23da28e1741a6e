#include "zelmresult/document/result_export_policy.h"

#include "zelmresult/document/result_header.h"
#include "zelmresult/results/kinds.h"

namespace ZelmResult {

namespace {

using Policy = ResultExportPolicy::Policy;

constexpr std::uint32_t kGeneratorModule = 400;

bool IsCandidate(const CResultHeader& header)
{
    const idn::Idn& response = header.GetIdnResponse();
    const bool nowhere = response.module() == idn::Module() && response.submodule() == idn::Submodule();
    switch (header.GetOpere()) {
    case 0: return header.GetToBeDisplayed();
    case 1: return nowhere || response.module().kind == kGeneratorModule;
    case 2: return true;
    default: return false;
    }
}

Policy ByKind(std::uint32_t process)
{
    return ResultKind::Of(process).Has(ResultKind::ExportedComplex) ? Policy::First : Policy::Second;
}

} // namespace

Policy ResultExportPolicy::policy(const CResultHeader* header, const CResult* result) const
{
    return result == nullptr ? Policy::Missing : policy(header, result->GetComplexType(), result->GetProcessType());
}

Policy ResultExportPolicy::policy(const CResultHeader* header, SignalType type, std::uint32_t process) const
{
    if (header == nullptr) return Policy::Missing;
    if (!IsCandidate(*header)) return Policy::Second;
    if (type != SignalType::Complex) return Policy::First;
    return m_context == Context::HostApplication ? policy_tavide(m_complexPreference, *header, process)
                                                 : policy_toolkit(*header, process);
}

Policy ResultExportPolicy::policy_tavide(ComplexPreference preference, const CResultHeader& header,
                                         std::uint32_t process)
{
    const bool preferred = preference == ComplexPreference::Preferred;
    if (header.GetTypeResultatOpere() == 2 && !preferred) return Policy::First;
    if (header.GetTypeResultatOpere() == 1 && preferred) return Policy::First;
    return ByKind(process);
}

Policy ResultExportPolicy::policy_toolkit(const CResultHeader& header, std::uint32_t process)
{
    return header.GetTypeResultatOpere() == 1 ? Policy::First : ByKind(process);
}

} // namespace ZelmResult
