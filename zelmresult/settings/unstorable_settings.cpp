// Finds what a file can't hold of a tree of settings, before anything is written.

#include "zelmresult/quantities/translation.h"
#include "zelmresult/settings/config_data.h"
#include "zelmresult/settings/tableau_data.h"
#include "zelmresult/storage/nested_chunk.h"
#include "zelmresult/support/text.h"

namespace ZelmResult {

namespace {

using Reasons = std::vector<wstring>;

wstring Reason(const char* text, const wstring& first, const wstring& second = {})
{
    return FillPlaceholders(TranslateUserString("ErrorMessage", text), first, second);
}

wstring NameOf(const CReglageData& setting)
{
    const wstring idn = idn::IdnString::idnToStringT(setting.GetIdn());
    return setting.titleString().empty() ? idn : Concat(setting.titleString(), u" (", idn, u")");
}

// The settings that a setting holds; null for a class that holds none.
const std::vector<CReglageData*>* SettingsInside(const CReglageData& setting)
{
    if (const auto* table = dynamic_cast<const CTableauData*>(&setting)) return &table->GetListReglage();
    const auto* tacho = dynamic_cast<const CVirtualTachoData*>(&setting);
    return tacho != nullptr ? &tacho->GetListReglage() : nullptr;
}

bool ComesBack(const CReglageData& setting)
{
    return setting.HasKindOfItsClass() &&
           CSousModuleData::CreateReglage(new CReglageInfoData(setting.info())) != nullptr;
}

// depth counts the setting itself. A setting that is too deep is reported once, and what it holds isn't examined.
void Check(const CReglageData& setting, int depth, Reasons& out)
{
    if (!ComesBack(setting))
        out.push_back(Reason("The kind %1 of setting %2 is not one of its class: settings can't be saved",
                             ToDecimal(setting.GetType()), NameOf(setting)));
    if (depth > NestedValue::kDeepest + 1) {
        out.push_back(Reason("Setting %1 lies in more than %2 tables: settings can't be saved", NameOf(setting),
                             ToDecimal(NestedValue::kDeepest)));
        return;
    }
    const auto* table = dynamic_cast<const CTableauData*>(&setting);
    if (table != nullptr && table->GetNbrLineVisu() == CTableauData::kLinesNotStored)
        out.push_back(Reason("Table %1 shows %2 lines: it comes back with other lines and columns", NameOf(setting),
                             ToDecimal(CTableauData::kLinesNotStored)));
    const auto* inside = SettingsInside(setting);
    if (inside == nullptr) return;
    for (const CReglageData* held : *inside) Check(*held, depth + 1, out);
}

void Check(const CSousModuleData& submodule, Reasons& out)
{
    if (!CMmioFile::HasSubmoduleCode(submodule.GetIdn()))
        out.push_back(Reason("Submodule %1 has a number that no file can hold: settings can't be saved",
                             idn::IdnString::idnToStringT(submodule.GetIdn())));
    for (const CReglageData* setting : submodule.settings()) Check(*setting, 1, out);
}

} // namespace

std::vector<wstring> CConfigData::Unstorable(bool isLXFFile) const
{
    Reasons reasons;
    for (const CModuleData* module : m_modules) {
        if (!IsWritten(*module, isLXFFile)) continue;
        if (!CMmioFile::HasModuleCode(module->GetIdn()))
            reasons.push_back(Reason("Module %1 has a number that no file can hold: settings can't be saved",
                                     idn::IdnString::idnToStringT(module->GetIdn())));
        for (const CSousModuleData* submodule : module->submodules()) Check(*submodule, reasons);
    }
    return reasons;
}

} // namespace ZelmResult
