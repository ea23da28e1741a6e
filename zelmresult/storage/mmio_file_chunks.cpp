// The operations for chunks by name. The table of kinds says what the names mean.

#include "zelmresult/storage/chunk_kinds.h"
#include "zelmresult/storage/mmio_file.h"
#include "zelmresult/support/text.h"

namespace ZelmResult {

namespace {

constexpr std::uint32_t kWaveForm = FourCC("WAVE");

bool HasNumber(const ChunkFacts& facts, int number) { return number >= 0 && number <= facts.highest; }

// The chunk code of a module, a submodule or a setting: a text from its short number where there is one.
struct IdentifierCode {
    bool legal = true;
    wstring text; // empty: the raw number is the code
    std::uint32_t raw = 0;
};

IdentifierCode ShortOrRaw(ChunkKind kind, const idn::Idn& idn, std::uint16_t idn::Legacy::*number, std::uint32_t raw)
{
    idn::Legacy legacy;
    if (!idn::Legacy::convertIdnToLegacy(idn, legacy, false)) return {true, {}, raw};
    if (!HasNumber(FactsOf(kind), legacy.*number)) return {false, {}, 0};
    return {true, ChunkCodeText(kind, legacy.*number), 0};
}

IdentifierCode CodeOfIdentifier(ChunkKind kind, const idn::Idn& idn)
{
    if (kind == ChunkKind::Module) return ShortOrRaw(kind, idn, &idn::Legacy::module, idn.module().to_uint32());
    if (kind == ChunkKind::Submodule)
        return ShortOrRaw(kind, idn, &idn::Legacy::submodule, idn.submodule().to_uint32());
    const std::uint16_t number = idn::Legacy::convertSettingToLegacy(idn.setting());
    if (HasNumber(FactsOf(kind), number)) return {true, ChunkCodeText(kind, number), 0};
    return {true, {}, number};
}

wstring LabelOf(ChunkKind kind, int number)
{
    const wstring_view label = FactsOf(kind).label;
    return label.empty() ? ChunkCodeText(kind, number) : wstring(label);
}

} // namespace

std::uint32_t CMmioFile::Code(const wstring& text) const
{
    return hFile() != nullptr ? hFile()->ommioStringToFOURCC(text.c_str(), OMMIO_TOUPPER) : 0;
}

std::uint32_t CMmioFile::CodeOf(const ChunkFacts& facts, int number) const
{
    return facts.number == ChunkNumber::None ? ChunkCode(facts.kind) : Code(ChunkCodeText(facts.kind, number));
}

// ---- Creating ----

bool CMmioFile::CreateForm(OMMCKINFO& chunk, OMMIO_CREATE_CHUNK_FLAG form, std::uint32_t code)
{
    chunk = {};
    (form == OMMIO_CREATECHUNK ? chunk.ckid : chunk.fccType) = code;
    m_bounds.NoteCreated();
    return m_fields.Note(hFile() != nullptr && hFile()->ommioCreateChunk(&chunk, form) == 0);
}

bool CMmioFile::CreatePlain(OMMCKINFO& chunk, std::uint32_t code, const wstring& label)
{
    if (m_debug) OuvertureChunck(label, code);
    return CreateForm(chunk, OMMIO_CREATECHUNK, code);
}

// The chunk is cleared before its number is checked.
bool CMmioFile::Create(ChunkKind kind, OMMCKINFO& chunk, int number)
{
    chunk = {};
    const ChunkFacts& facts = FactsOf(kind);
    if (!HasNumber(facts, number)) return false;
    const std::uint32_t code = CodeOf(facts, number);
    if (!facts.IsList()) return CreatePlain(chunk, code, m_debug ? LabelOf(kind, number) : wstring());
    // The only list that the dump notes after it is made: a failed create leaves no line.
    const bool isNotedLater = kind == ChunkKind::Transducers;
    const auto note = [&] {
        if (m_debug) OuvertureChunck(LabelOf(kind, number), code);
    };
    if (!isNotedLater) note();
    if (!CreateForm(chunk, kind == ChunkKind::Document ? OMMIO_CREATERIFF : OMMIO_CREATELIST, code)) return false;
    if (isNotedLater) note();
    return WriteChunkVersion(facts.version);
}

bool CMmioFile::CreateIdentified(ChunkKind kind, OMMCKINFO& chunk, const idn::Idn& idn)
{
    chunk = {};
    const ChunkFacts& facts = FactsOf(kind);
    const IdentifierCode known = CodeOfIdentifier(kind, idn);
    if (!known.legal) return false;
    const std::uint32_t code = known.text.empty() ? known.raw : Code(known.text);
    if (m_debug) OuvertureChunck(known.text.empty() ? wstring(facts.code) + u"idn" : known.text, code);
    if (!facts.IsList()) return CreateForm(chunk, OMMIO_CREATECHUNK, code);
    return CreateForm(chunk, OMMIO_CREATELIST, code) && WriteChunkVersion(facts.version);
}

bool CMmioFile::HasModuleCode(const idn::Idn& idn) { return CodeOfIdentifier(ChunkKind::Module, idn).legal; }
bool CMmioFile::HasSubmoduleCode(const idn::Idn& idn) { return CodeOfIdentifier(ChunkKind::Submodule, idn).legal; }

bool CMmioFile::CreateChunkRIFF(OMMCKINFO& chunk) { return Create(ChunkKind::Document, chunk); }
bool CMmioFile::CreateChunkWAVE(OMMCKINFO& chunk) { return CreateForm(chunk, OMMIO_CREATERIFF, kWaveForm); }
bool CMmioFile::CreateChunkSysteme(OMMCKINFO& chunk, std::int16_t number)
{
    return Create(ChunkKind::System, chunk, number);
}
bool CMmioFile::CreateChunkResultat(OMMCKINFO& chunk) { return Create(ChunkKind::Results, chunk); }
bool CMmioFile::CreateChunkUnite(OMMCKINFO& chunk) { return Create(ChunkKind::Quantities, chunk); }
bool CMmioFile::CreateChunkEnregistrement(OMMCKINFO& chunk) { return Create(ChunkKind::Recording, chunk); }
bool CMmioFile::CreateChunkRecordInfo(OMMCKINFO& chunk, std::int16_t number)
{
    return Create(ChunkKind::Disk, chunk, number);
}
bool CMmioFile::CreateChunkTrack(OMMCKINFO& chunk, std::int16_t number)
{
    return Create(ChunkKind::Track, chunk, number);
}
bool CMmioFile::CreateChunkITRACK(OMMCKINFO& chunk) { return Create(ChunkKind::Transducers, chunk); }
bool CMmioFile::CreateChunkLink(OMMCKINFO& chunk) { return Create(ChunkKind::Links, chunk); }
bool CMmioFile::CreateChunkConfig(OMMCKINFO& chunk) { return Create(ChunkKind::Settings, chunk); }
bool CMmioFile::CreateChunkModule(OMMCKINFO& chunk, const idn::Idn& idn)
{
    return CreateIdentified(ChunkKind::Module, chunk, idn);
}
bool CMmioFile::CreateChunkSousModule(OMMCKINFO& chunk, const idn::Idn& idn)
{
    return CreateIdentified(ChunkKind::Submodule, chunk, idn);
}
bool CMmioFile::CreateChunkReglage(OMMCKINFO& chunk, const idn::Idn& idn)
{
    return CreateIdentified(ChunkKind::SettingValue, chunk, idn);
}
bool CMmioFile::CreateChunkResultHeader(OMMCKINFO& chunk) { return Create(ChunkKind::ResultHeader, chunk); }
bool CMmioFile::CreateChunkHeader(OMMCKINFO& chunk) { return Create(ChunkKind::Head, chunk); }
bool CMmioFile::CreateChunkVersionConfig(OMMCKINFO& chunk) { return Create(ChunkKind::ApplicationVersion, chunk); }
bool CMmioFile::CreateChunkReglageInfo(OMMCKINFO& chunk) { return Create(ChunkKind::SettingKey, chunk); }
bool CMmioFile::CreateChunkWaterfallFRF(OMMCKINFO& chunk) { return Create(ChunkKind::TransferFunctions, chunk); }
bool CMmioFile::CreateChunkFileBlockInfo(OMMCKINFO& chunk, std::int16_t number)
{
    return Create(ChunkKind::DiskFile, chunk, number);
}
bool CMmioFile::CreateChunkVectorRef(OMMCKINFO& chunk, int number)
{
    return Create(ChunkKind::Reference, chunk, number);
}
bool CMmioFile::CreateChunk(OMMCKINFO& chunk, std::uint32_t id) { return CreatePlain(chunk, id, u"ckid"); }
bool CMmioFile::CreateChunk(OMMCKINFO& chunk, const wstring& text) { return CreatePlain(chunk, Code(text), text); }

// ---- Entering ----

bool CMmioFile::EnterCode(OMMCKINFO& chunk, OMMCKINFO* parent, OMMIO_DESCEND_FLAG flag, std::uint32_t code)
{
    chunk = {};
    (flag == OMMIO_FINDCHUNK ? chunk.ckid : chunk.fccType) = code;
    if (hFile() == nullptr || hFile()->ommioDescend(&chunk, parent, flag) != 0) {
        m_stops.NoteMissing(code, Position());
        return false;
    }
    m_bounds.NoteEntered(code);
    return true;
}

bool CMmioFile::EnterNextChunk(OMMCKINFO& chunk, OMMCKINFO& parent)
{
    chunk = {};
    if (hFile() == nullptr || hFile()->ommioDescend(&chunk, &parent, OMMIO_FINDNEXT) != 0) return false;
    m_bounds.NoteEntered(chunk.ckid);
    return true;
}

bool CMmioFile::Enter(ChunkKind kind, OMMCKINFO& chunk, OMMCKINFO* parent, int number)
{
    chunk = {};
    const ChunkFacts& facts = FactsOf(kind);
    if (!HasNumber(facts, number)) return false;
    OMMIO_DESCEND_FLAG form = facts.IsList() ? OMMIO_FINDLIST : OMMIO_FINDCHUNK;
    if (kind == ChunkKind::Document) form = OMMIO_FINDRIFF;
    return EnterCode(chunk, parent, form, CodeOf(facts, number));
}

bool CMmioFile::EnterIdentified(ChunkKind kind, OMMCKINFO& chunk, OMMCKINFO& parent, const idn::Idn& idn)
{
    chunk = {};
    const IdentifierCode known = CodeOfIdentifier(kind, idn);
    return known.legal && EnterCode(chunk, &parent, FactsOf(kind).IsList() ? OMMIO_FINDLIST : OMMIO_FINDCHUNK,
                                    known.text.empty() ? known.raw : Code(known.text));
}

bool CMmioFile::EnterChunkRIFF(OMMCKINFO& chunk) { return Enter(ChunkKind::Document, chunk); }
bool CMmioFile::EnterChunkWAVE(OMMCKINFO& chunk) { return EnterCode(chunk, nullptr, OMMIO_FINDRIFF, kWaveForm); }
bool CMmioFile::EnterChunkSysteme(OMMCKINFO& chunk, OMMCKINFO& parent, std::int16_t number)
{
    return Enter(ChunkKind::System, chunk, &parent, number);
}
bool CMmioFile::EnterChunkResultat(OMMCKINFO& chunk, OMMCKINFO& parent)
{
    return Enter(ChunkKind::Results, chunk, &parent);
}
bool CMmioFile::EnterChunkUnite(OMMCKINFO& chunk, OMMCKINFO& parent)
{
    return Enter(ChunkKind::Quantities, chunk, &parent);
}
bool CMmioFile::EnterChunkConfig(OMMCKINFO& chunk, OMMCKINFO& parent)
{
    return Enter(ChunkKind::Settings, chunk, &parent);
}
bool CMmioFile::EnterChunkITrack(OMMCKINFO& chunk, OMMCKINFO& parent)
{
    return Enter(ChunkKind::Transducers, chunk, &parent);
}
bool CMmioFile::EnterChunkModule(OMMCKINFO& chunk, OMMCKINFO& parent, const idn::Idn& idn)
{
    return EnterIdentified(ChunkKind::Module, chunk, parent, idn);
}
bool CMmioFile::EnterChunkSousModule(OMMCKINFO& chunk, OMMCKINFO& parent, const idn::Idn& idn)
{
    return EnterIdentified(ChunkKind::Submodule, chunk, parent, idn);
}
bool CMmioFile::EnterChunkReglage(OMMCKINFO& chunk, OMMCKINFO& parent, const idn::Idn& idn)
{
    return EnterIdentified(ChunkKind::SettingValue, chunk, parent, idn);
}
bool CMmioFile::EnterChunkRecInfo(OMMCKINFO& chunk, std::int16_t number)
{
    return Enter(ChunkKind::Disk, chunk, nullptr, number);
}
bool CMmioFile::EnterChunkTrackDesc(OMMCKINFO& chunk, std::int16_t number)
{
    return Enter(ChunkKind::Track, chunk, nullptr, number);
}
bool CMmioFile::EnterChunkListSansParent(OMMCKINFO& chunk, std::uint32_t id)
{
    return EnterCode(chunk, nullptr, OMMIO_FINDLIST, id);
}
bool CMmioFile::EnterChunkResultHeader(OMMCKINFO& chunk, OMMCKINFO& parent)
{
    return Enter(ChunkKind::ResultHeader, chunk, &parent);
}
bool CMmioFile::EnterChunkHeader(OMMCKINFO& chunk, OMMCKINFO& parent) { return Enter(ChunkKind::Head, chunk, &parent); }
bool CMmioFile::EnterChunkProjectInfo(OMMCKINFO& chunk, OMMCKINFO& parent)
{
    return Enter(ChunkKind::Project, chunk, &parent);
}
bool CMmioFile::EnterChunkHardInfo(OMMCKINFO& chunk, OMMCKINFO& parent)
{
    return Enter(ChunkKind::Hardware, chunk, &parent);
}
bool CMmioFile::EnterChunkVersionConfig(OMMCKINFO& chunk, OMMCKINFO& parent)
{
    return Enter(ChunkKind::ApplicationVersion, chunk, &parent);
}
bool CMmioFile::EnterChunkReglageInfo(OMMCKINFO& chunk, OMMCKINFO& parent)
{
    return Enter(ChunkKind::SettingKey, chunk, &parent);
}
bool CMmioFile::EnterChunkWaterfallFRF(OMMCKINFO& chunk, OMMCKINFO& parent)
{
    return Enter(ChunkKind::TransferFunctions, chunk, &parent);
}
bool CMmioFile::EnterChunk(OMMCKINFO& chunk, OMMCKINFO& parent, std::uint32_t id)
{
    return EnterCode(chunk, &parent, OMMIO_FINDCHUNK, id);
}
bool CMmioFile::EnterChunkSansParent(OMMCKINFO& chunk, std::uint32_t id)
{
    return EnterCode(chunk, nullptr, OMMIO_FINDCHUNK, id);
}
bool CMmioFile::EnterChunkFileBlockInfo(OMMCKINFO& chunk, std::int16_t number)
{
    return Enter(ChunkKind::DiskFile, chunk, nullptr, number);
}
bool CMmioFile::EnterChunkComments(OMMCKINFO& chunk) { return Enter(ChunkKind::FormerComment, chunk); }
bool CMmioFile::EnterChunkLIDN(OMMCKINFO& chunk) { return Enter(ChunkKind::LinkedIdentifiers, chunk); }
bool CMmioFile::EnterChunkVectorRef(OMMCKINFO& chunk, OMMCKINFO& /*parent*/, int number)
{
    return Enter(ChunkKind::Reference, chunk, nullptr, number);
}

// ---- Leaving and positioning ----

bool CMmioFile::ExitChunk(OMMCKINFO& chunk)
{
    if (!m_fields.Note(hFile() != nullptr && hFile()->ommioAscend(&chunk) == 0)) return false;
    if (m_debug) FermetureChunck(static_cast<std::int32_t>(chunk.cksize));
    return true;
}

bool CMmioFile::mmioSeek(std::int32_t offset, OMMIO_SEEK_FLAG origin)
{
    return hFile() != nullptr && hFile()->ommioSeek(offset, origin) != -1;
}

std::int32_t CMmioFile::Position() const
{
    OMMIOINFO info;
    return hFile() != nullptr && hFile()->ommioGetInfo(&info) == 0 ? info.lDiskOffset : -1;
}

bool CMmioFile::TopOfFile() { return mmioSeek(0, OMMIO_SEEK_SET); }

bool CMmioFile::TopOfChunkSystem(OMMCKINFO& chunk, std::int16_t number)
{
    OMMCKINFO form;
    return TopOfFile() && EnterChunkRIFF(form) && EnterChunkSysteme(chunk, form, number);
}

bool CMmioFile::TopOfChunkUnite(OMMCKINFO& chunk)
{
    OMMCKINFO form;
    return TopOfFile() && EnterChunkRIFF(form) && EnterChunkUnite(chunk, form);
}

bool CMmioFile::TopOfChunkResultat(OMMCKINFO& chunk, std::int16_t number)
{
    OMMCKINFO system;
    return TopOfChunkSystem(system, number) && EnterChunkResultat(chunk, system);
}

bool CMmioFile::BeginsWithForm(bool (CMmioFile::*enter)(OMMCKINFO&))
{
    OMMCKINFO form;
    return TopOfFile() && (this->*enter)(form) && ExitChunk(form) && TopOfFile();
}

bool CMmioFile::IsResultFile() { return BeginsWithForm(&CMmioFile::EnterChunkRIFF); }
bool CMmioFile::IsWaveFile() { return BeginsWithForm(&CMmioFile::EnterChunkWAVE); }

// ---- Chunks with one field ----

bool CMmioFile::WriteChunkVersion(std::uint16_t version)
{
    OMMCKINFO chunk;
    return Create(ChunkKind::Version, chunk) && mmioWrite_ushort(version) && ExitChunk(chunk);
}

bool CMmioFile::ReadVersionField(OMMCKINFO& chunk, std::uint16_t& version)
{
    return mmioRead_ushort(version) && ExitChunk(chunk);
}

bool CMmioFile::ReadChunkVersion(OMMCKINFO& parent, std::uint16_t& version)
{
    OMMCKINFO chunk;
    return Enter(ChunkKind::Version, chunk, &parent) && ReadVersionField(chunk, version);
}

bool CMmioFile::ReadChunkVersionSansParent(std::uint16_t& version)
{
    OMMCKINFO chunk;
    return Enter(ChunkKind::Version, chunk) && ReadVersionField(chunk, version);
}

bool CMmioFile::PassVersionIfThere()
{
    const std::int32_t start = Position();
    OMMCKINFO chunk;
    std::uint16_t version = 0;
    return Enter(ChunkKind::Version, chunk) ? ReadVersionField(chunk, version) : mmioSeek(start, OMMIO_SEEK_SET);
}

bool CMmioFile::WriteChunkIDN(const idn::Idn& idn)
{
    OMMCKINFO chunk;
    if (!Create(ChunkKind::Identifier, chunk) || !mmioWriteIDN(idn)) return false;
    if (m_debug) AddStringToDebugFile(u"IDN(" + idn::IdnString::idnToStringT(idn) + u")");
    return ExitChunk(chunk);
}

bool CMmioFile::ReadChunkIDN(OMMCKINFO& parent, idn::Idn& idn)
{
    OMMCKINFO chunk;
    return Enter(ChunkKind::Identifier, chunk, &parent) && mmioReadIDN(idn) && ExitChunk(chunk);
}

} // namespace ZelmResult
