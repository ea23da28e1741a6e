#include "tools/zmxf/damage/read_trial.h"

#include "tools/zmxf/damage/byte_file.h"
#include "zelmresult/document/hard_info.h"
#include "zelmresult/document/project_info.h"
#include "zelmresult/document/zmxf_file.h"
#include "zelmresult/quantities/grandeur.h"
#include "zelmresult/recordings/itrack.h"
#include "zelmresult/recordings/record.h"
#include "zelmresult/results/result_factory.h"
#include "zelmresult/settings/config_data.h"
#include "zelmresult/settings/setting_chunks.h"
#include "zelmresult/storage/chunk_codes.h"
#include "zelmresult/waterfalls/list_vector_ref.h"
#include "zelmresult/waterfalls/ref_waterfall.h"
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
    constexpr std::size_t codes = 1000;
    std::size_t count = 0;
    for (std::size_t i = 0; i < codes; ++i)
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

void FindBlocksWithoutReference(const ZelmResult::CSysteme& system, LoadTrial& trial)
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
        if (without.count != 0) trial.withoutReference.push_back(without);
    }
}

} // namespace

LoadTrial TryToLoad(const std::string& path, ZelmResult::FieldObserver* observer)
{
    LoadTrial trial;
    ZelmResult::CZMXFFile document(true, false);
    document.SetFieldObserver(observer);
    trial.isLoaded = document.Load(LibraryPath(path).c_str(), ZelmResult::ZMXFFileLoadScope::all());
    document.NeedToRemoveEverything(true);
    for (std::int32_t i = 0; i < document.getNbrSys(); ++i) {
        const ZelmResult::CSysteme& system = *document.getSystem(i);
        trial.settings += SettingsOf(system.getPConfig());
        trial.transducers += system.iTracks().size();
        trial.references += ReferencesOf(system);
        FindBlocksWithoutReference(system, trial);
        if (const ZelmResult::CRecord* record = document.getRecord(static_cast<std::uint16_t>(i)); record != nullptr)
            trial.tracks += static_cast<std::size_t>(record->getTrackCount());
    }
    return trial;
}

RecordTrial::RecordTrial(const std::string& path, ZelmResult::FieldObserver* observer)
    : m_path(LibraryPath(path)), m_file(false)
{
    Observe(observer);
    Open();
}

RecordTrial::~RecordTrial() { Close(); }

void RecordTrial::Open()
{
    if (m_file.Open(m_path, nullptr, ZelmResult::OMMIO_READ)) m_file.LimitSearches();
}

void RecordTrial::Close()
{
    const auto& quantities = m_file.ListeGrandeur();
    const std::vector<std::unique_ptr<const ZelmResult::CGrandeurFichier>> owners(quantities.begin(), quantities.end());
    (void)m_file.Close();
}

std::string RecordTrial::TakeRefusal()
{
    constexpr int mostTold = 1000; // each costs the memory of searches
    if (m_file.bounds().FirstRefusal().bound == ZelmResult::Refusal::Bound::None || m_refusals == mostTold) return {};
    ++m_refusals;
    std::string text = RefusalText(m_file.bounds().FirstRefusal());
    Close(); // a file notes one alone
    Open();
    return text;
}

std::string RefusalText(const ZelmResult::Refusal& refusal)
{
    const auto bound = [&refusal] {
        switch (refusal.bound) {
        case ZelmResult::Refusal::Bound::BytesLeft: return "a count asks for more than the file still holds";
        case ZelmResult::Refusal::Bound::Memory: return "it asks for more memory than a file of this size may";
        case ZelmResult::Refusal::Bound::Depth: return "things lie inside each other too deep, or in themselves";
        case ZelmResult::Refusal::Bound::None: break;
        }
        return "no bound was met";
    };
    return std::string(bound()) + " (in " + CodeText(refusal.chunk) + ", at " + OffsetText(refusal.offset) + ')';
}

bool RecordTrial::GoTo(std::int64_t offset)
{
    return m_file.mmioSeek(static_cast<std::int32_t>(offset), ZelmResult::OMMIO_SEEK_SET);
}

bool RecordTrial::Enter(const Chunk& list, std::int64_t offset)
{
    ZelmResult::OMMCKINFO info;
    info.ckid = list.header.code;
    info.fccType = list.header.form;
    info.dwDataOffset = static_cast<std::uint32_t>(list.offset + 8);
    info.cksize = static_cast<std::uint32_t>(list.end - list.offset - 8);
    m_file.CurrentMmckinfo(info);
    return GoTo(offset);
}

template <class Read>
bool RecordTrial::ReadsInside(const Chunk& chunk, Read read)
{
    return GoTo(chunk.data) && read() && m_file.Position() <= chunk.end;
}

std::unique_ptr<ZelmResult::CResultHeader> RecordTrial::ReadHeader(const Chunk& chunk)
{
    auto header = std::make_unique<ZelmResult::CResultHeader>();
    return ReadsInside(chunk, [&] { return header->Load(&m_file); }) ? std::move(header) : nullptr;
}

RecordTrial::Fate RecordTrial::TryResult(const Chunk& header, const Chunk& data)
{
    const auto read = ReadHeader(header);
    if (read == nullptr) return Fate::Unreadable;
    const auto result = ZelmResult::ResultFactory::create(
        read->processType(), static_cast<int>(read->GetWaterfallDimension()), read->responseName());
    if (result == nullptr) return Fate::UnknownKind;
    std::unique_ptr<ZelmResult::CWaterfallRef> ownReference;
    if (const auto* series = dynamic_cast<const ZelmResult::CRefWaterfall*>(result.get()); series != nullptr)
        ownReference.reset(series->GetMyVecteurReference());
    // A record that is longer than its chunk reads what belongs to others.
    return ReadsInside(data, [&] { return result->Read(&m_file); }) ? Fate::Readable : Fate::Unreadable;
}

RecordTrial::Fate RecordTrial::TrySetting(const Chunk& list, std::size_t place)
{
    const Chunk& keyChunk = list.children[place];
    ZelmResult::CReglageInfoData info;
    if (!ReadsInside(keyChunk, [&] { return info.Read(&m_file); })) return Fate::Unreadable;
    if (place + 1 == list.children.size() || list.children[place + 1].role != Role::SettingValue)
        return Fate::Unreadable;
    auto key = std::make_unique<ZelmResult::CReglageInfoData>(info);
    if (ZelmResult::CSousModuleData::CreateReglage(key.release()) == nullptr) return Fate::UnknownKind;
    const bool isRead = Enter(list, keyChunk.offset) && ZelmResult::FindStoredSetting(m_file, info.GetIdn()) != nullptr;
    return isRead && m_file.Position() <= list.children[place + 1].end + 1 ? Fate::Readable : Fate::Unreadable;
}

std::optional<idn::Idn> RecordTrial::ReadIdentifier(const Chunk& chunk)
{
    idn::Idn idn;
    if (!ReadsInside(chunk, [&] { return m_file.mmioReadIDN(idn); })) return std::nullopt;
    return idn;
}

// Whether a list of settings stands under the code that the identifier in front of it asks for.
bool RecordTrial::IsNode(const Chunk& list, std::size_t place)
{
    const Chunk& node = list.children[place];
    if (place == 0 || list.children[place - 1].role != Role::Identifier) return false;
    const auto idn = ReadIdentifier(list.children[place - 1]);
    if (!idn || !Enter(list, node.offset)) return false;
    ZelmResult::OMMCKINFO parent = m_file.CurrentMmckinfo();
    ZelmResult::OMMCKINFO found;
    const bool isFound = node.role == Role::Module ? m_file.EnterChunkModule(found, parent, *idn)
                                                   : m_file.EnterChunkSousModule(found, parent, *idn);
    return isFound && found.dwDataOffset == static_cast<std::uint32_t>(node.offset + 8);
}

// A text, and from some version on a flag.
bool RecordTrial::AreBareFields(const Chunk& list, const Chunk& chunk)
{
    const Chunk* version = list.Find(Role::Version);
    ZelmResult::wstring text;
    std::uint16_t number = 0;
    if (version == nullptr || !ReadsInside(*version, [&] { return m_file.mmioRead_ushort(number); })) return false;
    const std::int64_t flag = HasFlag(list.role, list.header.form, number) ? 4 : 0;
    return ReadsInside(chunk, [&] { return m_file.ReadCString(text); }) && m_file.Position() + flag == chunk.end;
}

bool RecordTrial::IsReadable(const Chunk& list, std::size_t place)
{
    const Chunk& chunk = list.children[place];
    if (!chunk.IsWhole()) return true;
    const auto reads = [&](auto read) { return ReadsInside(chunk, read); };
    switch (chunk.role) {
    case Role::Quantity: {
        ZelmResult::CGrandeurFichier quantity(m_path, chunk.header.code);
        return reads([&] { return ZelmResult::CGrandeurMmioReaderWriter().Read(m_file, quantity); });
    }
    case Role::Project: {
        ZelmResult::ProjectInfo project;
        return reads([&] { return ZelmResult::ProjectInfoMmioReaderWriter().Read(m_file, project); });
    }
    case Role::Hardware: {
        ZelmResult::CHardInfo hardware;
        return reads([&] { return ZelmResult::CHardInfoMmioReaderWriter().Read(m_file, hardware); });
    }
    case Role::RecordHeader: return reads([&] { return ZelmResult::CRecordHeader(false).Load(&m_file); });
    case Role::DiskCounts: return reads([&] { return ZelmResult::CFileInfo().Load(&m_file); });
    case Role::DiskFile: return reads([&] { return ZelmResult::CFileBlockInfo().Load(&m_file); });
    case Role::Track: return Enter(chunk, chunk.data) && ZelmResult::CZMTrackDesc().Load(&m_file, false, false);
    case Role::Transducer: {
        ZelmResult::CITrack track;
        return Enter(list, chunk.offset) && track.Load(&m_file) && m_file.Position() <= chunk.end + 1;
    }
    case Role::Reference: return reads([&] { return ZelmResult::CWaterfallRef().Read(&m_file); });
    case Role::Settings: return Enter(chunk, chunk.data) && ZelmResult::CConfigData().Load(&m_file);
    case Role::Identifier: return ReadIdentifier(chunk).has_value();
    case Role::Module:
    case Role::Submodule: return IsNode(list, place);
    case Role::Bare: return !HasBareFields(list.role) || AreBareFields(list, chunk);
    case Role::TransferFunctions:
        return reads([&] {
            std::uint32_t count = 0;
            if (!m_file.mmioRead_ulong(count)) return false;
            for (std::uint32_t i = 0; i < count && m_file.Position() <= chunk.end; ++i)
                if (!ZelmResult::CWaterfallFRFInfo().Load(&m_file)) return false;
            return true;
        });
    case Role::ApplicationVersion: return reads([&] { return PassApplicationVersion(m_file); });
    default: return true;
    }
}

void RecordTrial::TryAll(const Chunk& list, const Tell& tell)
{
    for (std::size_t i = 0; i < list.children.size(); ++i) {
        const Chunk& chunk = list.children[i];
        Fate fate = Fate::Readable;
        if (chunk.role == Role::SettingKey)
            fate = TrySetting(list, i);
        else if (chunk.role == Role::ResultHeader && i + 1 < list.children.size())
            fate = TryResult(chunk, list.children[i + 1]);
        else if (!IsReadable(list, i))
            fate = Fate::Unreadable;
        if (fate != Fate::Readable) tell(list, i, fate);
        TryAll(chunk, tell);
    }
}

} // namespace zmxf
