// The chunks of a result file: their codes, kinds, limits and list versions.

#include "zelmresult/storage/chunk_codes.h"
#include "zelmresult/storage/mmio_file.h"
#include "zelmresult/support/text.h"

namespace ZelmResult {

namespace {

constexpr int kLastSystem = 16;
constexpr int kLastDisk = CMmioFile::kMostDisks - 1;
constexpr int kLastNumber = CMmioFile::kMostNumbered - 1;
constexpr std::uint16_t kShortNumberLimit = 1000;

// The record of a chunk is emptied before its number is looked at.
bool InRange(OMMCKINFO& chunk, int number, int last)
{
    chunk = {};
    return number >= 0 && number <= last;
}

bool IsLegal(OMMCKINFO& chunk, bool legal)
{
    chunk = {};
    return legal;
}

wstring SystemCode(std::int16_t number) { return u"SYS" + ToHex(static_cast<std::uint32_t>(number)); }
wstring DiskCode(std::int16_t number) { return u"DSK" + ToHex(static_cast<std::uint32_t>(number)); }
wstring NumberedCode(const wstring& letter, int number) { return letter + ToDecimalPadded(number, 3); }

// The chunk code of a module, a submodule or a setting: a text from its short number where there is one.
struct IdentifierCode {
    bool legal = true;
    wstring text; // empty: the raw number is the code
    std::uint32_t raw = 0;
};

IdentifierCode ShortOrRaw(const idn::Idn& idn, std::uint16_t idn::Legacy::*number, const wstring& letter,
                          std::uint32_t raw)
{
    idn::Legacy legacy;
    if (!idn::Legacy::convertIdnToLegacy(idn, legacy, false)) return {true, {}, raw};
    if (legacy.*number >= kShortNumberLimit) return {false, {}, 0};
    return {true, letter + ToDecimal(legacy.*number), 0};
}

IdentifierCode ModuleCode(const idn::Idn& idn)
{
    return ShortOrRaw(idn, &idn::Legacy::module, u"M", idn.module().to_uint32());
}

IdentifierCode SubmoduleCode(const idn::Idn& idn)
{
    return ShortOrRaw(idn, &idn::Legacy::submodule, u"S", idn.submodule().to_uint32());
}

IdentifierCode SettingCode(const idn::Idn& idn)
{
    const std::uint16_t number = idn::Legacy::convertSettingToLegacy(idn.setting());
    if (number < kShortNumberLimit) return {true, u"R" + ToDecimal(number), 0};
    return {true, {}, number};
}

} // namespace

std::uint32_t CMmioFile::Code(const wstring& text) const
{
    return m_backend ? m_backend->ommioStringToFOURCC(text.c_str(), OMMIO_TOUPPER) : 0;
}

// ---- Creating ----

bool CMmioFile::CreateForm(OMMCKINFO& chunk, OMMIO_CREATE_CHUNK_FLAG kind, std::uint32_t code)
{
    chunk = {};
    (kind == OMMIO_CREATECHUNK ? chunk.ckid : chunk.fccType) = code;
    ++m_chunksCreated;
    return Note(m_backend && m_backend->ommioCreateChunk(&chunk, kind) == 0);
}

bool CMmioFile::CreateForm(OMMCKINFO& chunk, OMMIO_CREATE_CHUNK_FLAG kind, const wstring& codeText)
{
    return CreateForm(chunk, kind, Code(codeText));
}

bool CMmioFile::CreateListWithVersion(OMMCKINFO& chunk, const wstring& codeText, const wstring& label,
                                      std::uint16_t version)
{
    if (m_debug) OuvertureChunck(label, Code(codeText));
    return CreateForm(chunk, OMMIO_CREATELIST, codeText) && WriteChunkVersion(version);
}

bool CMmioFile::CreatePlain(OMMCKINFO& chunk, std::uint32_t code, const wstring& label)
{
    if (m_debug) OuvertureChunck(label, code);
    return CreateForm(chunk, OMMIO_CREATECHUNK, code);
}

bool CMmioFile::CreateIdentified(OMMCKINFO& chunk, const wstring& codeText, std::uint32_t rawCode,
                                 const wstring& rawLabel, std::uint16_t version)
{
    const std::uint32_t code = codeText.empty() ? rawCode : Code(codeText);
    if (m_debug) OuvertureChunck(codeText.empty() ? rawLabel : codeText, code);
    return CreateForm(chunk, OMMIO_CREATELIST, code) && WriteChunkVersion(version);
}

bool CMmioFile::CreateChunkRIFF(OMMCKINFO& chunk)
{
    if (m_debug) OuvertureChunck(u"ZMXF", FourCC("ZMXF"));
    return CreateForm(chunk, OMMIO_CREATERIFF, FourCC("ZMXF")) && WriteChunkVersion(0x200);
}

bool CMmioFile::CreateChunkWAVE(OMMCKINFO& chunk) { return CreateForm(chunk, OMMIO_CREATERIFF, FourCC("WAVE")); }

bool CMmioFile::CreateChunkSysteme(OMMCKINFO& chunk, std::int16_t number)
{
    return InRange(chunk, number, kLastSystem) &&
           CreateListWithVersion(chunk, SystemCode(number), SystemCode(number), 0x200);
}

bool CMmioFile::CreateChunkResultat(OMMCKINFO& chunk) { return CreateListWithVersion(chunk, u"RESU", u"RESU", 0x100); }
bool CMmioFile::CreateChunkUnite(OMMCKINFO& chunk) { return CreateListWithVersion(chunk, u"UNIT", u"UNIT", 0x100); }

bool CMmioFile::CreateChunkEnregistrement(OMMCKINFO& chunk)
{
    return CreateListWithVersion(chunk, u"RCRD", u"RCRD", 0x100);
}

bool CMmioFile::CreateChunkRecordInfo(OMMCKINFO& chunk, std::int16_t number)
{
    return InRange(chunk, number, kLastDisk) && CreateListWithVersion(chunk, DiskCode(number), DiskCode(number), 0x100);
}

bool CMmioFile::CreateChunkTrack(OMMCKINFO& chunk, std::int16_t number)
{
    const wstring code = NumberedCode(u"T", number);
    return InRange(chunk, number, kLastNumber) && CreateListWithVersion(chunk, code, code, 0x100);
}

// The one list whose dump line is noted after it was made: a failed create leaves no line.
bool CMmioFile::CreateChunkITRACK(OMMCKINFO& chunk)
{
    if (!CreateForm(chunk, OMMIO_CREATELIST, FourCC("TRAN"))) return false;
    if (m_debug) OuvertureChunck(u"TRAN", FourCC("TRAN"));
    return WriteChunkVersion(0x100);
}

bool CMmioFile::CreateChunkLink(OMMCKINFO& chunk) { return CreateListWithVersion(chunk, u"LINK", u"link", 0x100); }
bool CMmioFile::CreateChunkConfig(OMMCKINFO& chunk) { return CreateListWithVersion(chunk, u"CONF", u"CONF", 0x401); }

bool CMmioFile::HasModuleCode(const idn::Idn& idn) { return ModuleCode(idn).legal; }
bool CMmioFile::HasSubmoduleCode(const idn::Idn& idn) { return SubmoduleCode(idn).legal; }

bool CMmioFile::CreateChunkModule(OMMCKINFO& chunk, const idn::Idn& idn)
{
    const IdentifierCode code = ModuleCode(idn);
    return IsLegal(chunk, code.legal) && CreateIdentified(chunk, code.text, code.raw, u"Midn", 0x201);
}

bool CMmioFile::CreateChunkSousModule(OMMCKINFO& chunk, const idn::Idn& idn)
{
    const IdentifierCode code = SubmoduleCode(idn);
    return IsLegal(chunk, code.legal) && CreateIdentified(chunk, code.text, code.raw, u"Sidn", 0x101);
}

bool CMmioFile::CreateChunkReglage(OMMCKINFO& chunk, const idn::Idn& idn)
{
    const IdentifierCode code = SettingCode(idn);
    return code.text.empty() ? CreatePlain(chunk, code.raw, u"Ridn") : CreatePlain(chunk, Code(code.text), code.text);
}

bool CMmioFile::CreateChunkResultHeader(OMMCKINFO& chunk) { return CreatePlain(chunk, FourCC("INFO"), u"info"); }
bool CMmioFile::CreateChunkHeader(OMMCKINFO& chunk) { return CreatePlain(chunk, FourCC("HEAD"), u"head"); }
bool CMmioFile::CreateChunkVersionConfig(OMMCKINFO& chunk) { return CreatePlain(chunk, FourCC("CFVR"), u"CFVR"); }
bool CMmioFile::CreateChunkReglageInfo(OMMCKINFO& chunk) { return CreatePlain(chunk, FourCC("SETT"), u"sett"); }
bool CMmioFile::CreateChunkWaterfallFRF(OMMCKINFO& chunk) { return CreatePlain(chunk, FourCC("WFRF"), u"wfrf"); }

bool CMmioFile::CreateChunkFileBlockInfo(OMMCKINFO& chunk, std::int16_t number)
{
    const wstring code = NumberedCode(u"I", number);
    return InRange(chunk, number, kLastNumber) && CreatePlain(chunk, Code(code), code);
}

bool CMmioFile::CreateChunkVectorRef(OMMCKINFO& chunk, int number)
{
    const wstring code = NumberedCode(u"V", number);
    return InRange(chunk, number, kLastNumber) && CreatePlain(chunk, Code(code), code);
}

bool CMmioFile::CreateChunk(OMMCKINFO& chunk, std::uint32_t id) { return CreatePlain(chunk, id, u"ckid"); }
bool CMmioFile::CreateChunk(OMMCKINFO& chunk, const wstring& text) { return CreatePlain(chunk, Code(text), text); }

// ---- Entering ----

bool CMmioFile::Enter(OMMCKINFO& chunk, OMMCKINFO* parent, OMMIO_DESCEND_FLAG flag, std::uint32_t code)
{
    chunk = {};
    (flag == OMMIO_FINDCHUNK ? chunk.ckid : chunk.fccType) = code;
    if (m_backend && m_backend->ommioDescend(&chunk, parent, flag) == 0) {
        m_lastEntered = code;
        return true;
    }
    m_lastMissed = code;
    m_lastMissedFrom = Position();
    return false;
}

bool CMmioFile::EnterText(OMMCKINFO& chunk, OMMCKINFO* parent, OMMIO_DESCEND_FLAG flag, const wstring& codeText)
{
    return Enter(chunk, parent, flag, Code(codeText));
}

bool CMmioFile::EnterChunkRIFF(OMMCKINFO& chunk) { return Enter(chunk, nullptr, OMMIO_FINDRIFF, FourCC("ZMXF")); }
bool CMmioFile::EnterChunkWAVE(OMMCKINFO& chunk) { return Enter(chunk, nullptr, OMMIO_FINDRIFF, FourCC("WAVE")); }

bool CMmioFile::EnterChunkSysteme(OMMCKINFO& chunk, OMMCKINFO& parent, std::int16_t number)
{
    return InRange(chunk, number, kLastSystem) && EnterText(chunk, &parent, OMMIO_FINDLIST, SystemCode(number));
}

bool CMmioFile::EnterChunkResultat(OMMCKINFO& chunk, OMMCKINFO& parent)
{
    return Enter(chunk, &parent, OMMIO_FINDLIST, FourCC("RESU"));
}

bool CMmioFile::EnterChunkUnite(OMMCKINFO& chunk, OMMCKINFO& parent)
{
    return Enter(chunk, &parent, OMMIO_FINDLIST, FourCC("UNIT"));
}

bool CMmioFile::EnterChunkConfig(OMMCKINFO& chunk, OMMCKINFO& parent)
{
    return Enter(chunk, &parent, OMMIO_FINDLIST, FourCC("CONF"));
}

bool CMmioFile::EnterChunkITrack(OMMCKINFO& chunk, OMMCKINFO& parent)
{
    return Enter(chunk, &parent, OMMIO_FINDLIST, FourCC("TRAN"));
}

bool CMmioFile::EnterChunkModule(OMMCKINFO& chunk, OMMCKINFO& parent, const idn::Idn& idn)
{
    const IdentifierCode code = ModuleCode(idn);
    return IsLegal(chunk, code.legal) &&
           Enter(chunk, &parent, OMMIO_FINDLIST, code.text.empty() ? code.raw : Code(code.text));
}

bool CMmioFile::EnterChunkSousModule(OMMCKINFO& chunk, OMMCKINFO& parent, const idn::Idn& idn)
{
    const IdentifierCode code = SubmoduleCode(idn);
    return IsLegal(chunk, code.legal) &&
           Enter(chunk, &parent, OMMIO_FINDLIST, code.text.empty() ? code.raw : Code(code.text));
}

bool CMmioFile::EnterChunkReglage(OMMCKINFO& chunk, OMMCKINFO& parent, const idn::Idn& idn)
{
    const IdentifierCode code = SettingCode(idn);
    return Enter(chunk, &parent, OMMIO_FINDCHUNK, code.text.empty() ? code.raw : Code(code.text));
}

bool CMmioFile::EnterChunkRecInfo(OMMCKINFO& chunk, std::int16_t number)
{
    return InRange(chunk, number, kLastDisk) && EnterText(chunk, nullptr, OMMIO_FINDLIST, DiskCode(number));
}

bool CMmioFile::EnterChunkTrackDesc(OMMCKINFO& chunk, std::int16_t number)
{
    return InRange(chunk, number, kLastNumber) && EnterText(chunk, nullptr, OMMIO_FINDLIST, NumberedCode(u"T", number));
}

bool CMmioFile::EnterChunkListSansParent(OMMCKINFO& chunk, std::uint32_t id)
{
    return Enter(chunk, nullptr, OMMIO_FINDLIST, id);
}

bool CMmioFile::EnterChunkResultHeader(OMMCKINFO& chunk, OMMCKINFO& parent)
{
    return EnterChunk(chunk, parent, FourCC("INFO"));
}

bool CMmioFile::EnterChunkHeader(OMMCKINFO& chunk, OMMCKINFO& parent)
{
    return EnterChunk(chunk, parent, FourCC("HEAD"));
}

bool CMmioFile::EnterChunkProjectInfo(OMMCKINFO& chunk, OMMCKINFO& parent)
{
    return EnterChunk(chunk, parent, FourCC("PRJI"));
}

bool CMmioFile::EnterChunkHardInfo(OMMCKINFO& chunk, OMMCKINFO& parent)
{
    return EnterChunk(chunk, parent, FourCC("HRDI"));
}

bool CMmioFile::EnterChunkVersionConfig(OMMCKINFO& chunk, OMMCKINFO& parent)
{
    return EnterChunk(chunk, parent, FourCC("CFVR"));
}

bool CMmioFile::EnterChunkReglageInfo(OMMCKINFO& chunk, OMMCKINFO& parent)
{
    return EnterChunk(chunk, parent, FourCC("SETT"));
}

bool CMmioFile::EnterChunkWaterfallFRF(OMMCKINFO& chunk, OMMCKINFO& parent)
{
    return EnterChunk(chunk, parent, FourCC("WFRF"));
}

bool CMmioFile::EnterChunk(OMMCKINFO& chunk, OMMCKINFO& parent, std::uint32_t id)
{
    return Enter(chunk, &parent, OMMIO_FINDCHUNK, id);
}

bool CMmioFile::EnterNextChunk(OMMCKINFO& chunk, OMMCKINFO& parent)
{
    chunk = {};
    if (!m_backend || m_backend->ommioDescend(&chunk, &parent, OMMIO_FINDNEXT) != 0) return false;
    m_lastEntered = chunk.ckid;
    return true;
}

bool CMmioFile::EnterChunkSansParent(OMMCKINFO& chunk, std::uint32_t id)
{
    return Enter(chunk, nullptr, OMMIO_FINDCHUNK, id);
}

bool CMmioFile::EnterChunkFileBlockInfo(OMMCKINFO& chunk, std::int16_t number)
{
    return InRange(chunk, number, kLastNumber) &&
           EnterText(chunk, nullptr, OMMIO_FINDCHUNK, NumberedCode(u"I", number));
}

// Lower case, unlike the code that comments are written with: comments of older files are read, those of this library
// stay unread. Both codes are part of the format.
bool CMmioFile::EnterChunkComments(OMMCKINFO& chunk) { return EnterChunkSansParent(chunk, FourCC("cmts")); }
bool CMmioFile::EnterChunkLIDN(OMMCKINFO& chunk) { return EnterChunkSansParent(chunk, FourCC("LIDN")); }

bool CMmioFile::EnterChunkVectorRef(OMMCKINFO& chunk, OMMCKINFO& /*parent*/, int number)
{
    return InRange(chunk, number, kLastNumber) &&
           EnterText(chunk, nullptr, OMMIO_FINDCHUNK, NumberedCode(u"V", number));
}

// ---- Leaving and positioning ----

bool CMmioFile::ExitChunk(OMMCKINFO& chunk)
{
    if (!Note(m_backend && m_backend->ommioAscend(&chunk) == 0)) return false;
    if (m_debug) FermetureChunck(static_cast<std::int32_t>(chunk.cksize));
    return true;
}

bool CMmioFile::mmioSeek(std::int32_t offset, OMMIO_SEEK_FLAG origin)
{
    return m_backend && m_backend->ommioSeek(offset, origin) != -1;
}

std::int32_t CMmioFile::Position() const
{
    OMMIOINFO info;
    return m_backend && m_backend->ommioGetInfo(&info) == 0 ? info.lDiskOffset : -1;
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
    return CreatePlain(chunk, FourCC("VERS"), u"vers") && mmioWrite_ushort(version) && ExitChunk(chunk);
}

bool CMmioFile::ReadVersionField(OMMCKINFO& chunk, std::uint16_t& version)
{
    return mmioRead_ushort(version) && ExitChunk(chunk);
}

bool CMmioFile::ReadChunkVersion(OMMCKINFO& parent, std::uint16_t& version)
{
    OMMCKINFO chunk;
    return EnterChunk(chunk, parent, FourCC("VERS")) && ReadVersionField(chunk, version);
}

bool CMmioFile::ReadChunkVersionSansParent(std::uint16_t& version)
{
    OMMCKINFO chunk;
    return EnterChunkSansParent(chunk, FourCC("VERS")) && ReadVersionField(chunk, version);
}

bool CMmioFile::PassVersionIfThere()
{
    const std::int32_t start = Position();
    OMMCKINFO chunk;
    std::uint16_t version = 0;
    return EnterChunkSansParent(chunk, FourCC("VERS")) ? ReadVersionField(chunk, version)
                                                       : mmioSeek(start, OMMIO_SEEK_SET);
}

bool CMmioFile::WriteChunkIDN(const idn::Idn& idn)
{
    OMMCKINFO chunk;
    if (!CreatePlain(chunk, FourCC("IDNU"), u"idnu") || !mmioWriteIDN(idn)) return false;
    if (m_debug) AddStringToDebugFile(u"IDN(" + idn::IdnString::idnToStringT(idn) + u")");
    return ExitChunk(chunk);
}

bool CMmioFile::ReadChunkIDN(OMMCKINFO& parent, idn::Idn& idn)
{
    OMMCKINFO chunk;
    return EnterChunk(chunk, parent, FourCC("IDNU")) && mmioReadIDN(idn) && ExitChunk(chunk);
}

} // namespace ZelmResult
