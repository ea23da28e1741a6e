#include "tools/zmxf/damage/load_outcome.h"

#include "tools/zmxf/base/files.h"
#include "zelmresult/document/zmxf_file.h"
#include "zelmresult/recordings/record.h"
#include "zelmresult/settings/config_data.h"
#include "zelmresult/storage/chunk_kinds.h"
#include "zelmresult/waterfalls/list_vector_ref.h"
#include "zelmresult/waterfalls/waterfall.h"
#include "zelmresult/waterfalls/waterfall_ref.h"

#include <algorithm>
#include <map>
#include <unordered_map>
#include <unordered_set>

namespace zmxf {

namespace {

std::size_t SettingsOf(const ZelmResult::CConfigData* tree)
{
    std::size_t count = 0;
    if (tree == nullptr) return count;
    for (const ZelmResult::CModuleData* module : tree->modules())
        for (const ZelmResult::CSousModuleData* submodule : module->submodules()) count += submodule->settings().size();
    return count;
}

std::size_t ReferencesOf(const ZelmResult::CSysteme& system)
{
    const auto lists = static_cast<std::size_t>(ZelmResult::MostOf(ZelmResult::ChunkKind::Reference));
    std::size_t count = 0;
    for (std::size_t i = 0; i < lists; ++i)
        if (const auto* list = system.getListeReference(i); list != nullptr)
            count += static_cast<std::size_t>(list->GetCount());
    return count;
}

// The blocks for which each reference of a list holds a value.
std::unordered_set<std::int32_t> CommonBlocks(const ZelmResult::CListVectorRef& list)
{
    std::unordered_map<std::int32_t, std::size_t> holders;
    std::size_t tables = 0;
    for (std::int32_t i = 0; i < list.GetCount(); ++i) {
        const auto* reference = dynamic_cast<const ZelmResult::CWaterfallRef*>(list.GetRef(i));
        if (reference == nullptr || reference->GetBlockNumberPtr() == nullptr) continue;
        const std::int32_t* table = reference->GetBlockNumberPtr();
        const std::unordered_set<std::int32_t> blocks(table, table + std::max(reference->GetSize(), 0));
        ++tables;
        for (const std::int32_t block : blocks) ++holders[block];
    }
    std::unordered_set<std::int32_t> common;
    for (const auto& [block, count] : holders)
        if (count == tables) common.insert(block);
    return common;
}

void FindBlocksWithoutReference(const ZelmResult::CSysteme& system, LoadOutcome& outcome)
{
    std::map<const ZelmResult::CListVectorRef*, std::unordered_set<std::int32_t>> known;
    for (const auto& [header, result] : system.getMapResult()) {
        const auto* waterfall = dynamic_cast<const ZelmResult::CWaterfall*>(result);
        const ZelmResult::CListVectorRef* list = waterfall != nullptr ? waterfall->GetReferences() : nullptr;
        if (list == nullptr || list->GetCount() == 0) continue;
        const auto found = known.find(list);
        const auto& blocks =
            found != known.end() ? found->second : known.emplace(list, CommonBlocks(*list)).first->second;
        BlocksWithoutReference without{header->GetChunkId(), 0, 0, 0};
        for (std::int32_t i = 0; i < waterfall->GetFilled(); ++i) {
            const std::int32_t block = waterfall->GetBlocNumber(i);
            if (block < 0) continue;
            ++without.slices;
            if (!blocks.contains(block) && without.count++ == 0) without.first = block;
        }
        if (without.count != 0) outcome.withoutReference.push_back(without);
    }
}

} // namespace

LoadOutcome TryToLoad(const std::string& path, ZelmResult::FieldObserver* observer)
{
    LoadOutcome outcome;
    ZelmResult::CZMXFFile document(true, false);
    document.SetFieldObserver(observer);
    outcome.isLoaded = document.Load(LibraryPath(path).c_str(), ZelmResult::ZMXFFileLoadScope::all());
    document.NeedToRemoveEverything(true);
    for (std::int32_t i = 0; i < document.getNbrSys(); ++i) {
        const ZelmResult::CSysteme& system = *document.getSystem(i);
        outcome.settings += SettingsOf(system.getPConfig());
        outcome.transducers += system.iTracks().size();
        outcome.references += ReferencesOf(system);
        FindBlocksWithoutReference(system, outcome);
        if (const ZelmResult::CRecord* record = document.getRecord(static_cast<std::uint16_t>(i)); record != nullptr)
            outcome.tracks += static_cast<std::size_t>(record->getTrackCount());
    }
    return outcome;
}

} // namespace zmxf
