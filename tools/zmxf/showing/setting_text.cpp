#include "tools/zmxf/showing/setting_text.h"

#include "tools/zmxf/base/text.h"
#include "zelmresult/settings/booleen_data.h"
#include "zelmresult/settings/chaine_data.h"
#include "zelmresult/settings/idn_data.h"
#include "zelmresult/settings/liste_data.h"
#include "zelmresult/settings/scalaire_data.h"
#include "zelmresult/settings/tableau_data.h"
#include "zelmresult/support/text.h"

#include <fmt/format.h>

namespace zmxf {

namespace {

using namespace ZelmResult;

std::string IdnOrNone(const idn::Idn& idn) { return idn.isNull() ? "none" : IdnText(idn); }
Json IdnJson(const idn::Idn& idn) { return idn.isNull() ? Json(nullptr) : Json(IdnText(idn)); }
std::string FlagText(bool flag) { return flag ? "on" : "off"; }

DescribedSetting DescribeValue(const CBooleenData& setting)
{
    return {"switch", FlagText(setting.value()), setting.value(), {}};
}

DescribedSetting DescribeValue(const CActionData& setting)
{
    return {
        "action", FlagText(setting.ActionFlag()), {{"flag", setting.ActionFlag()}, {"locked", setting.Locked()}}, {}};
}

DescribedSetting DescribeValue(const CSelectionSignalFileData& setting)
{
    const bool linked = setting.signalLinkedToModel();
    Json value{{"signal", JsonText(setting.signal())}, {"text", JsonText(setting.value())}};
    value["project"] = linked ? Json(nullptr) : Json(JsonText(setting.project()));
    value["projectPath"] = linked ? Json(nullptr) : Json(JsonText(setting.projectPath()));
    value["measurement"] = linked ? Json(nullptr) : Json(JsonText(setting.measurement()));
    value["model"] = linked ? Json(JsonText(setting.model())) : Json(nullptr);
    value["modelPath"] = linked ? Json(JsonText(setting.modelPath())) : Json(nullptr);
    return {"signal file", Printable(setting.signal()), value, {}};
}

DescribedSetting DescribeValue(const CChaineData& setting)
{
    return {"text", Printable(setting.value()), JsonText(setting.value()), {}};
}

DescribedSetting DescribeValue(const CWinTuningData& setting)
{
    Json parameters = Json::array();
    for (const float v : setting.V()) parameters.push_back(JsonNumber(v));
    const Json value{{"value", JsonNumber(setting.value())}, {"parameters", parameters}, {"type", setting.WinType()}};
    return {"window tuning", NumberText(static_cast<double>(setting.value())), value, {}};
}

DescribedSetting DescribeValue(const CScalaireData& setting)
{
    return {"number", NumberText(static_cast<double>(setting.value())), JsonNumber(setting.value()), {}};
}

DescribedSetting DescribeValue(const CIntegerScalarData& setting)
{
    const bool isBound = setting.Max() != UINT32_MAX;
    const std::string limits = fmt::format(" ({} to {})", setting.Min(), setting.Max());
    const std::string text = fmt::format("{}{}", setting.Value(), isBound ? limits : "");
    return {"integer", text, {{"value", setting.Value()}, {"minimum", setting.Min()}, {"maximum", setting.Max()}}, {}};
}

DescribedSetting DescribeValue(const CListeData& setting)
{
    Json choices = Json::object();
    for (const auto& [key, text] : setting.keyValues()) choices[JsonText(key)] = JsonText(text);
    const std::string text =
        fmt::format("{} of {}", Printable(setting.defaultKey()), Counted(setting.keyValues().size(), "choice"));
    return {"choice", text, {{"default", JsonText(setting.defaultKey())}, {"choices", choices}}, {}};
}

DescribedSetting DescribeValue(const CReglageIdnData& setting)
{
    return {"identifier", IdnOrNone(setting.getIdnValue()), IdnJson(setting.getIdnValue()), {}};
}

DescribedSetting DescribeValue(const CMatriceData& setting)
{
    Json pairs = Json::array();
    for (std::int32_t i = 0; i < setting.GetCount(); ++i)
        pairs.push_back(
            {{"response", IdnJson(setting.GetResponse(i))}, {"reference", IdnJson(setting.GetReference(i))}});
    const std::string text = Counted(static_cast<std::size_t>(setting.GetCount()), "pair");
    return {"matrix", text, {{"inputProcessType", setting.GetInputProcessType()}, {"pairs", pairs}}, {}};
}

DescribedSetting DescribeValue(const CMultiSourcesData& setting)
{
    Json sources = Json::array();
    for (const idn::Idn& source : setting.GetSources()) sources.push_back(IdnJson(source));
    const Json value{{"associatedList", IdnJson(setting.GetAssociatedList())}, {"sources", sources}};
    return {"sources", Counted(setting.GetSources().size(), "source"), value, {}};
}

DescribedSetting DescribeValue(const CWtfSourceData& setting)
{
    const Json value{{"source", IdnJson(setting.GetIdnSource())},
                     {"response", IdnJson(setting.GetIdnResponse())},
                     {"reference", IdnJson(setting.GetIdnReference())},
                     {"process", setting.GetSourceProcess()},
                     {"caption", JsonText(setting.caption())}};
    return {"waterfall source", Printable(setting.caption()), value, {}};
}

DescribedSetting DescribeValue(const CTableauData& setting)
{
    const Json value{{"linesShown", setting.GetNbrLineVisu()}, {"columnsShown", setting.GetListVisu()}};
    return {"table", Counted(setting.GetListReglage().size(), "setting"), value, setting.GetListReglage()};
}

DescribedSetting DescribeValue(const CVirtualTachoData& setting)
{
    const std::string text = Counted(setting.GetListReglage().size(), "setting");
    return {"virtual tachometer", text, nullptr, setting.GetListReglage()};
}

// The first of the classes that the setting is of.
template <class First, class... Others>
DescribedSetting DescribeAs(const CReglageData& setting)
{
    if (const auto* known = dynamic_cast<const First*>(&setting)) return DescribeValue(*known);
    if constexpr (sizeof...(Others) != 0)
        return DescribeAs<Others...>(setting);
    else
        return {"other", "", nullptr, {}};
}

} // namespace

DescribedSetting Describe(const CReglageData& setting)
{
    // Derived classes come before their bases.
    return DescribeAs<CBooleenData, CActionData, CSelectionSignalFileData, CChaineData, CWinTuningData, CScalaireData,
                      CIntegerScalarData, CListeData, CReglageIdnData, CMatriceData, CMultiSourcesData, CWtfSourceData,
                      CTableauData, CVirtualTachoData>(setting);
}

} // namespace zmxf
