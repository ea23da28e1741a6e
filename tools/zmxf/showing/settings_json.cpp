#include "tools/zmxf/showing/settings_json.h"

#include "tools/zmxf/showing/setting_text.h"

namespace zmxf {

namespace {

using ZelmResult::CReglageData;
using ZelmResult::StoredSettings;

Json SettingJson(const CReglageData& setting, ValueTexts texts)
{
    const DescribedSetting described = Describe(setting);
    Json json{{"id", IdnText(setting.GetIdn())},          {"kind", described.kind},         {"type", setting.GetType()},
              {"title", JsonText(setting.titleString())}, {"visible", setting.isVisible()}, {"value", described.value}};
    if (texts == ValueTexts::With) json["text"] = described.text;
    for (const CReglageData* child : described.children) json["settings"].push_back(SettingJson(*child, texts));
    return json;
}

Json SubmoduleJson(const ZelmResult::CSousModuleData& submodule, ValueTexts texts)
{
    Json json{{"id", IdnText(submodule.GetIdn())},
              {"title", JsonText(submodule.titleString())},
              {"visible", submodule.isVisible()},
              {"settings", Json::array()}};
    for (const CReglageData* setting : submodule.settings()) json["settings"].push_back(SettingJson(*setting, texts));
    return json;
}

Json ModuleJson(const ZelmResult::CModuleData& module, ValueTexts texts)
{
    Json json{{"id", IdnText(module.GetIdn())},
              {"title", JsonText(module.debugString())},
              {"visible", module.isVisible()},
              {"submodules", Json::array()}};
    for (const auto* submodule : module.submodules()) json["submodules"].push_back(SubmoduleJson(*submodule, texts));
    return json;
}

} // namespace

Json SettingsJson(const StoredSettings& stored, ValueTexts texts)
{
    const ZelmResult::VersionTavide& version = stored.tree->versionTavide();
    const bool isWhole = !stored.damage;
    Json json{{"system", stored.system}, {"whole", isWhole}, {"application", nullptr}, {"modules", Json::array()}};
    if (isWhole)
        json["application"] = {{"major", version.major}, {"minor", version.minor}, {"build", JsonText(version.build)}};
    for (const auto* module : stored.tree->modules()) json["modules"].push_back(ModuleJson(*module, texts));
    return json;
}

} // namespace zmxf
