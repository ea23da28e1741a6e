#include "tools/zmxf/base/open_document.h"
#include "tools/zmxf/base/text.h"
#include "tools/zmxf/showing/setting_text.h"
#include "tools/zmxf/showing/settings_json.h"
#include "tools/zmxf/verbs/verbs.h"
#include "zelmresult/support/text.h"

#include <fmt/format.h>
#include <iostream>

namespace zmxf {

namespace {

using Align = TextTable::Align;
using ZelmResult::CReglageData;
using ZelmResult::StoredSettings;

void AddRow(TextTable& table, std::size_t depth, const CReglageData& setting)
{
    const DescribedSetting described = Describe(setting);
    table.AddRow({fmt::format("{:{}}{}", "", 2 * depth, IdnText(setting.GetIdn())), described.kind,
                  Printable(setting.titleString()), described.text});
    for (const CReglageData* child : described.children) AddRow(table, depth + 1, *child);
}

std::string SystemText(const StoredSettings& stored)
{
    const ZelmResult::VersionTavide& version = stored.tree->versionTavide();
    TextTable table({Align::Left, Align::Left, Align::Left, Align::Left});
    table.AddRow({"Identifier", "Kind", "Title", "Value"});
    for (const auto* module : stored.tree->modules()) {
        table.AddRow({IdnText(module->GetIdn()), "module", Printable(module->debugString()), ""});
        for (const auto* submodule : module->submodules()) {
            table.AddRow({fmt::format("  {}", IdnText(submodule->GetIdn())), "submodule",
                          Printable(submodule->titleString()), ""});
            for (const CReglageData* setting : submodule->settings()) AddRow(table, 2, *setting);
        }
    }
    const std::string application =
        stored.damage ? "unknown" : fmt::format("{}.{} {}", version.major, version.minor, Printable(version.build));
    return fmt::format("System {}, settings of application version {}\n{}{}", stored.system, application,
                       table.Text("  "),
                       stored.damage ? "  The rest could not be read: it is damaged, or of a kind that isn't known. A "
                                       "load leaves it out, and a save loses it.\n"
                                     : "");
}

void RunSettings(const DocumentOptions& options)
{
    const auto systems = OpenDocument(options.document).ReadSettings();
    if (options.json) {
        Json json{{"file", options.document}, {"systems", Json::array()}};
        for (const auto& stored : systems) json["systems"].push_back(SettingsJson(stored));
        std::cout << JsonDocument(json);
        return;
    }
    if (systems.empty()) std::cout << Printable(options.document) << " holds no settings\n";
    for (const auto& stored : systems) std::cout << SystemText(stored);
}

} // namespace

void AddSettingsVerb(CLI::App& program)
{
    AddDocumentVerb(program, {"settings", "Shows the settings that the results of a document were made with",
                              "zmxf settings pump.zmxf", RunSettings});
}

} // namespace zmxf
