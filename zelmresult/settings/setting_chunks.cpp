#include "zelmresult/settings/setting_chunks.h"

#include "zelmresult/settings/chaine_data.h"
#include "zelmresult/settings/sous_module_data.h"
#include "zelmresult/storage/nested_chunk.h"

namespace ZelmResult {

namespace {

// The memory charged for each setting, that of the largest class: a file may name many in few bytes.
constexpr std::size_t kSettingSize = sizeof(CSelectionSignalFileData) + 64;

// The next key of the current chunk, null when there is none. failed says whether one was found and couldn't be read.
std::unique_ptr<CReglageInfoData> ReadKey(CMmioFile& file, bool& failed)
{
    OMMCKINFO parent = file.CurrentMmckinfo();
    OMMCKINFO chunk;
    failed = false;
    if (!file.EnterChunkReglageInfo(chunk, parent)) return nullptr;
    auto key = std::make_unique<CReglageInfoData>();
    failed = !key->Read(&file) || !file.ExitChunk(chunk);
    return failed ? nullptr : std::move(key);
}

// takes a key and reads the value after it; null when it can't be made or read.
std::unique_ptr<CReglageData> ReadValue(CMmioFile& file, std::unique_ptr<CReglageInfoData> key)
{
    const idn::Idn idn = key->GetIdn();
    if (!file.RoomFor(1, kSettingSize)) return nullptr;
    std::unique_ptr<CReglageData> setting = CSousModuleData::CreateReglage(key.release());
    OMMCKINFO parent = file.CurrentMmckinfo();
    OMMCKINFO chunk;
    if (setting == nullptr || !file.EnterChunkReglage(chunk, parent, idn)) return nullptr;
    NestedChunk value(file, chunk);
    const NestedValue level(file);
    return level.IsLegal() && setting->Read(&file) && value.Exit() ? std::move(setting) : nullptr;
}

bool WriteSetting(CMmioFile& file, CReglageData& setting)
{
    OMMCKINFO key;
    OMMCKINFO value;
    const NestedValue level(file);
    return level.IsLegal() && setting.HasKindOfItsClass() && file.CreateChunkReglageInfo(key) &&
           setting.info().Write(&file) && file.ExitChunk(key) && file.CreateChunkReglage(value, setting.GetIdn()) &&
           setting.Write(&file) && file.ExitChunk(value);
}

} // namespace

bool WriteSettings(CMmioFile& file, const ReglageList& settings)
{
    for (CReglageData* setting : settings.all())
        if (!WriteSetting(file, *setting)) return false;
    return true;
}

bool ReadSettings(CMmioFile& file, ReglageList& settings)
{
    bool failed = false;
    while (auto key = ReadKey(file, failed)) {
        auto setting = ReadValue(file, std::move(key));
        if (setting == nullptr) return false;
        settings.Take(std::move(setting));
    }
    return !failed;
}

std::unique_ptr<CReglageData> FindStoredSetting(CMmioFile& file, const idn::Idn& idn)
{
    bool failed = false;
    auto key = ReadKey(file, failed);
    while (key != nullptr && key->GetIdn() != idn) key = ReadKey(file, failed);
    return key != nullptr ? ReadValue(file, std::move(key)) : nullptr;
}

} // namespace ZelmResult
