// Settings: four bytes for the kind of a setting, 0 for a whole tree, then the record.

#include "fuzz/laws.h"
#include "zelmresult/settings/config_data.h"

using namespace ZelmResult;
using fuzz::Subject;

namespace {

std::shared_ptr<CReglageData> MakeSetting(std::uint32_t type)
{
    return CSousModuleData::CreateReglage(new CReglageInfoData(idn::Idn(), type));
}

Subject SubjectOfSetting(std::uint32_t type)
{
    const std::shared_ptr<CReglageData> setting = MakeSetting(type);
    Subject subject = fuzz::SubjectOf(setting);
    subject.maySettle = [setting] { return fuzz::HasBareTable({setting.get()}); };
    subject.look = [setting] {
        const std::unique_ptr<CReglageData> copy(setting->GetCopy());
        (void)copy->GetStringValue();
    };
    return subject;
}

// The list "CONF". What it loads before a failure stays, and must be sound too.
Subject SubjectOfTree()
{
    auto tree = std::make_shared<CConfigData>();
    Subject subject;
    subject.read = [tree](CMmioFile& file) {
        OMMCKINFO parent = file.CurrentMmckinfo();
        OMMCKINFO list;
        if (!file.EnterChunkConfig(list, parent)) return false;
        file.CurrentMmckinfo(list);
        (void)tree->Load(&file);
        return true;
    };
    subject.write = [tree](CMmioFile& file) { return tree->Save(&file, false); };
    subject.maySettle = [tree] { return fuzz::HasBareTable(*tree); };
    subject.look = [tree] {
        CConfigData copy(*tree);
        (void)copy.IsMyVersionOlder({1, 1, u"1"});
        for (const CModuleData* module : copy.modules()) (void)copy.ComputeInstanceID(module->GetIdn());
    };
    subject.isWholeRead = false; // the last search ends anywhere
    return subject;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::Input input(data, size);
    const auto type = input.take<std::uint32_t>();
    if (type == 0)
        fuzz::CheckRecord(input.rest(), SubjectOfTree);
    else if (MakeSetting(type) != nullptr)
        fuzz::CheckRecord(input.rest(), [type] { return SubjectOfSetting(type); });
    return 0;
}
