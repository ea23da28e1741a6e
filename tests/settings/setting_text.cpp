#include "tests/settings/setting_text.h"

#include <sstream>

namespace ZelmResult::test {

namespace {

std::string Text(const idn::Idn& idn) { return ToUtf8(idn::IdnString::idnToStringT(idn)); }

void AddList(std::ostream& out, const std::vector<CReglageData*>& settings)
{
    for (const CReglageData* setting : settings) out << " {" << TextOf(setting) << '}';
}

// The most derived class that a setting is of comes first.
void AddValue(std::ostream& out, const CReglageData* setting)
{
    if (const auto* action = dynamic_cast<const CActionData*>(setting)) out << action->ActionFlag() << action->Locked();
    if (const auto* flag = dynamic_cast<const CBooleenData*>(setting)) out << flag->value();
    if (const auto* text = dynamic_cast<const CChaineData*>(setting)) out << ToUtf8(text->value());
    if (const auto* file = dynamic_cast<const CSelectionSignalFileData*>(setting))
        for (const wstring& part : {file->projectPath(), file->project(), file->measurement(), file->modelPath(),
                                    file->model(), file->signal()})
            out << '/' << ToUtf8(part);
    if (const auto* scalar = dynamic_cast<const CScalaireData*>(setting)) {
        out << scalar->value();
        for (const std::uint32_t word : scalar->words()) out << ' ' << word;
        out << ' ' << scalar->flag();
    }
    if (const auto* window = dynamic_cast<const CWinTuningData*>(setting)) {
        for (const float v : window->V()) out << ' ' << v;
        out << " type " << window->WinType();
    }
    if (const auto* number = dynamic_cast<const CIntegerScalarData*>(setting))
        out << number->Value() << ' ' << number->Min() << ' ' << number->Max() << ' ' << number->InHexa();
    if (const auto* list = dynamic_cast<const CListeData*>(setting)) {
        out << ToUtf8(list->defaultKey());
        for (const auto& [key, text] : list->keyValues()) out << ' ' << ToUtf8(key) << '=' << ToUtf8(text);
    }
    if (const auto* value = dynamic_cast<const CReglageIdnData*>(setting)) out << Text(value->getIdnValue());
    if (const auto* matrix = dynamic_cast<const CMatriceData*>(setting)) {
        out << matrix->GetInputProcessType();
        for (int i = 0; i < matrix->GetCount(); ++i)
            out << ' ' << Text(matrix->GetResponse(i)) << '<' << Text(matrix->GetReference(i));
    }
    if (const auto* sources = dynamic_cast<const CMultiSourcesData*>(setting)) {
        out << Text(sources->GetAssociatedList());
        for (const idn::Idn& source : sources->GetSources()) out << ' ' << Text(source);
    }
    if (const auto* source = dynamic_cast<const CWtfSourceData*>(setting)) {
        for (const idn::Idn& idn : {source->GetIdnSource(), source->GetIdnResponse(), source->GetIdnReference()})
            out << Text(idn) << ' ';
        out << source->GetSourceProcess() << ' ' << ToUtf8(source->caption());
    }
    if (const auto* table = dynamic_cast<const CTableauData*>(setting)) {
        out << table->GetNbrLineVisu() << ':';
        for (const int column : table->GetListVisu()) out << column;
        AddList(out, table->GetListReglage());
    }
    if (const auto* tacho = dynamic_cast<const CVirtualTachoData*>(setting)) AddList(out, tacho->GetListReglage());
}

} // namespace

std::string TextOf(const CReglageData* setting)
{
    if (setting == nullptr) return "none";
    std::ostringstream out;
    out << setting->GetType() << ' ' << ToUtf8(setting->titleString()) << ' ' << setting->isVisible() << ' ';
    AddValue(out, setting);
    return out.str();
}

std::string TextOf(const CConfigData& config)
{
    std::ostringstream out;
    const VersionTavide& version = config.versionTavide();
    out << version.major << '.' << version.minor << '.' << ToUtf8(version.build) << '\n';
    for (const CModuleData* module : config.modules()) {
        out << Text(module->GetIdn()) << ' ' << ToUtf8(module->debugString()) << ' ' << module->isVisible();
        if (const auto* deep = dynamic_cast<const CDeepResultGeneratorData*>(module))
            for (const CWaterfallFRFInfo* info : deep->FRFInfos())
                out << " frf " << info->GetProcessType() << ' ' << Text(info->GetIdResponse()) << ' '
                    << Text(info->GetIdReference());
        out << '\n';
        for (const CSousModuleData* submodule : module->submodules()) {
            out << "  " << Text(submodule->GetIdn()) << ' ' << ToUtf8(submodule->titleString()) << ' '
                << submodule->isVisible() << '\n';
            for (const CReglageData* setting : submodule->settings())
                out << "    " << setting->GetIdn().setting().value << ' ' << TextOf(setting) << '\n';
        }
    }
    return out.str();
}

} // namespace ZelmResult::test
