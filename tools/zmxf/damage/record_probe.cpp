#include "tools/zmxf/damage/record_probe.h"

#include "tools/zmxf/base/text.h"
#include "tools/zmxf/damage/byte_file.h"
#include "zelmresult/document/hard_info.h"
#include "zelmresult/document/project_info.h"
#include "zelmresult/quantities/grandeur.h"
#include "zelmresult/reading/owned_result.h"
#include "zelmresult/recordings/itrack.h"
#include "zelmresult/recordings/record.h"
#include "zelmresult/settings/config_data.h"
#include "zelmresult/settings/setting_chunks.h"
#include "zelmresult/waterfalls/waterfall_ref.h"

#include <fmt/format.h>

namespace zmxf {

std::string RecordProbe::TakeRefusal()
{
    constexpr int mostReported = 1000; // each costs the memory of searches
    if (m_file.bounds().FirstRefusal().bound == ZelmResult::Refusal::Bound::None || m_refusals == mostReported)
        return {};
    ++m_refusals;
    std::string text = RefusalText(m_file.bounds().FirstRefusal());
    m_file.OpenAgain();
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
    return fmt::format("{} (in {}, at {})", bound(), CodeText(refusal.chunk), OffsetText(refusal.offset));
}

bool RecordProbe::GoTo(std::int64_t offset)
{
    return m_file.mmioSeek(static_cast<std::int32_t>(offset), ZelmResult::OMMIO_SEEK_SET);
}

bool RecordProbe::Enter(const Chunk& list, std::int64_t offset)
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
bool RecordProbe::ReadsInside(const Chunk& chunk, Read read)
{
    return GoTo(chunk.data) && read() && m_file.Position() <= chunk.end;
}

std::unique_ptr<ZelmResult::CResultHeader> RecordProbe::ReadHeader(const Chunk& chunk)
{
    auto header = std::make_unique<ZelmResult::CResultHeader>();
    return ReadsInside(chunk, [&] { return header->Load(&m_file); }) ? std::move(header) : nullptr;
}

RecordProbe::Outcome RecordProbe::TryResult(const Chunk& header, const Chunk& data)
{
    const auto read = ReadHeader(header);
    if (read == nullptr) return Outcome::Unreadable;
    const ZelmResult::OwnedResult result = ZelmResult::MakeResult(*read);
    if (result == nullptr) return Outcome::UnknownKind;
    // A record that is longer than its chunk reads what belongs to others.
    return ReadsInside(data, [&] { return result->Read(&m_file); }) ? Outcome::Readable : Outcome::Unreadable;
}

RecordProbe::Outcome RecordProbe::TrySetting(const Chunk& list, std::size_t place)
{
    const Chunk& keyChunk = list.children[place];
    ZelmResult::CReglageInfoData info;
    if (!ReadsInside(keyChunk, [&] { return info.Read(&m_file); })) return Outcome::Unreadable;
    if (place + 1 == list.children.size() || list.children[place + 1].kind != ChunkKind::SettingValue)
        return Outcome::Unreadable;
    auto key = std::make_unique<ZelmResult::CReglageInfoData>(info);
    if (ZelmResult::CSousModuleData::CreateReglage(key.release()) == nullptr) return Outcome::UnknownKind;
    const bool isRead = Enter(list, keyChunk.offset) && ZelmResult::FindStoredSetting(m_file, info.GetIdn()) != nullptr;
    return isRead && m_file.Position() <= list.children[place + 1].end + 1 ? Outcome::Readable : Outcome::Unreadable;
}

std::optional<idn::Idn> RecordProbe::ReadIdentifier(const Chunk& chunk)
{
    idn::Idn idn;
    if (!ReadsInside(chunk, [&] { return m_file.mmioReadIDN(idn); })) return std::nullopt;
    return idn;
}

// Whether a list of settings has the code that the identifier before it asks for.
bool RecordProbe::IsUnderItsCode(const Chunk& list, std::size_t place)
{
    const Chunk& node = list.children[place];
    if (place == 0 || list.children[place - 1].kind != ChunkKind::Identifier) return false;
    const auto idn = ReadIdentifier(list.children[place - 1]);
    if (!idn || !Enter(list, node.offset)) return false;
    ZelmResult::OMMCKINFO parent = m_file.CurrentMmckinfo();
    ZelmResult::OMMCKINFO found;
    const bool isFound = node.kind == ChunkKind::Module ? m_file.EnterChunkModule(found, parent, *idn)
                                                        : m_file.EnterChunkSousModule(found, parent, *idn);
    return isFound && found.dwDataOffset == static_cast<std::uint32_t>(node.offset + 8);
}

// A text, and from some version on a flag.
bool RecordProbe::AreBareFields(const Chunk& list, const Chunk& chunk)
{
    const Chunk* version = list.Find(ChunkKind::Version);
    ZelmResult::wstring text;
    std::uint16_t number = 0;
    if (version == nullptr || !ReadsInside(*version, [&] { return m_file.mmioRead_ushort(number); })) return false;
    const std::int64_t flag = HoldsVisible(list, number) ? 4 : 0;
    return ReadsInside(chunk, [&] { return m_file.ReadCString(text); }) && m_file.Position() + flag == chunk.end;
}

bool RecordProbe::IsReadable(const Chunk& list, std::size_t place)
{
    const Chunk& chunk = list.children[place];
    if (!chunk.IsWhole()) return true;
    const auto reads = [&](auto read) { return ReadsInside(chunk, read); };
    switch (chunk.kind) {
    case ChunkKind::Quantity: {
        ZelmResult::CGrandeurFichier quantity(m_file.path(), chunk.header.code);
        return reads([&] { return ZelmResult::CGrandeurMmioReaderWriter().Read(m_file, quantity); });
    }
    case ChunkKind::Project: {
        ZelmResult::ProjectInfo project;
        return reads([&] { return ZelmResult::ProjectInfoMmioReaderWriter().Read(m_file, project); });
    }
    case ChunkKind::Hardware: {
        ZelmResult::CHardInfo hardware;
        return reads([&] { return ZelmResult::CHardInfoMmioReaderWriter().Read(m_file, hardware); });
    }
    case ChunkKind::RecordHeader: return reads([&] { return ZelmResult::CRecordHeader(false).Load(&m_file); });
    case ChunkKind::DiskCounts: return reads([&] { return ZelmResult::CFileInfo().Load(&m_file); });
    case ChunkKind::DiskFile: return reads([&] { return ZelmResult::CFileBlockInfo().Load(&m_file); });
    case ChunkKind::Track: return Enter(chunk, chunk.data) && ZelmResult::CZMTrackDesc().Load(&m_file, false, false);
    case ChunkKind::Transducer: {
        ZelmResult::CITrack track;
        return Enter(list, chunk.offset) && track.Load(&m_file) && m_file.Position() <= chunk.end + 1;
    }
    case ChunkKind::Reference: return reads([&] { return ZelmResult::CWaterfallRef().Read(&m_file); });
    case ChunkKind::Settings: return Enter(chunk, chunk.data) && ZelmResult::CConfigData().Load(&m_file);
    case ChunkKind::Identifier: return ReadIdentifier(chunk).has_value();
    case ChunkKind::Module:
    case ChunkKind::Submodule: return IsUnderItsCode(list, place);
    case ChunkKind::Unknown: return chunk.IsForeign() || !IsNode(list.kind) || AreBareFields(list, chunk);
    case ChunkKind::TransferFunctions:
        return reads([&] {
            std::uint32_t count = 0;
            if (!m_file.mmioRead_ulong(count)) return false;
            for (std::uint32_t i = 0; i < count && m_file.Position() <= chunk.end; ++i)
                if (!ZelmResult::CWaterfallFRFInfo().Load(&m_file)) return false;
            return true;
        });
    case ChunkKind::ApplicationVersion:
        return reads([&] {
            ZelmResult::VersionTavide version;
            return ReadVersionTavide(m_file, version);
        });
    default: return true;
    }
}

void RecordProbe::TryAll(const Chunk& list, const Report& report)
{
    for (std::size_t i = 0; i < list.children.size(); ++i) {
        const Chunk& chunk = list.children[i];
        Outcome outcome = Outcome::Readable;
        if (chunk.kind == ChunkKind::SettingKey)
            outcome = TrySetting(list, i);
        else if (chunk.kind == ChunkKind::ResultHeader && i + 1 < list.children.size())
            outcome = TryResult(chunk, list.children[i + 1]);
        else if (!IsReadable(list, i))
            outcome = Outcome::Unreadable;
        if (outcome != Outcome::Readable) report(list, i, outcome);
        TryAll(chunk, report);
    }
}

} // namespace zmxf
