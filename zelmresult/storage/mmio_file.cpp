#include "zelmresult/storage/mmio_file.h"

#include "zelmresult/storage/debug_dump.h"
#include "zelmresult/storage/mmio_riff.h"

namespace ZelmResult {

namespace {

CMmioFile::BackendFactory& DefaultFactory()
{
    static CMmioFile::BackendFactory factory = [] { return std::make_unique<CMmioRiff>(); };
    return factory;
}

} // namespace

const CMmioFile::BackendFactory& CMmioFile::DefaultBackend() { return DefaultFactory(); }

void CMmioFile::SetDefaultBackend(BackendFactory makeBackend) { DefaultFactory() = std::move(makeBackend); }

CMmioFile::CMmioFile(bool debug, BackendFactory makeBackend)
    : m_makeBackend(std::move(makeBackend)), m_fields(m_makeBackend ? m_makeBackend() : nullptr), m_debug(debug),
      m_dump(std::make_shared<DebugDump>())
{
}

CMmioFile::~CMmioFile()
{
    if (m_fields.backend().use_count() == 1) (void)Close();
}

bool CMmioFile::Open(const wstring& name, OMMIOINFO* info, std::uint32_t flags)
{
    if (hFile() == nullptr) {
        if (m_makeBackend) m_fields = FieldStream(m_makeBackend());
        m_currentChunk = {};
        m_systemPosition = {};
    }
    if (hFile() == nullptr || !hFile()->ommioOpen(name, info, flags)) return false;
    m_fileName = name;
    m_fields = FieldStream(m_fields.backend());
    m_hasUnreadable = false;
    m_bounds = ReadBounds((flags & (OMMIO_WRITE | OMMIO_CREATE)) != 0 ? ReadBudget::ForWriting()
                                                                      : ReadBudget::ForReading(hFile()->BytesLeft()));
    m_stops = {};
    m_quantities = {}; // those of the file before belong to its user
    if (m_debug) m_dump->Begin((flags & OMMIO_WRITE) != 0);
    return true;
}

bool CMmioFile::Close()
{
    if (hFile() == nullptr) return true;
    hFile()->ommioClose();
    if (m_debug) m_dump->WriteOnce(m_fileName.empty() ? m_fileName : m_fileName + u"d");
    m_fileName.clear();
    m_fields.ReleaseBackend();
    m_bounds = {};
    return true;
}

void CMmioFile::LimitSearches()
{
    if (hFile() != nullptr) hFile()->LimitSearches();
}

bool CMmioFile::BeginOperation()
{
    if (m_bounds.IsOfWriter() || !TopOfFile()) return false;
    m_bounds = ReadBounds(ReadBudget::ForReading(hFile()->BytesLeft()));
    ForgetFailures();
    LimitSearches();
    return true;
}

void CMmioFile::ForgetFailures()
{
    m_bounds.ForgetRefusal();
    m_stops = {};
    m_hasUnreadable = false;
    m_messages.clear();
}

void CMmioFile::fetchErrors(std::vector<wstring>& out, bool clear)
{
    out.insert(out.end(), m_messages.begin(), m_messages.end());
    if (clear) m_messages.clear();
}

bool CMmioFile::mmioWriteIDN(const idn::Idn& idn)
{
    if (!m_fields.WriteIdentifier(idn)) return false;
    idn::Legacy legacy;
    if (m_debug && idn::Legacy::convertIdnToLegacy(idn, legacy, false))
        AddStringToDebugFile(idn::IdnString::legacyIdnToLegacyStringT(legacy));
    return true;
}

void CMmioFile::OuvertureChunck(const wstring& label, std::uint32_t id) { m_dump->OpenChunk(label, id); }

void CMmioFile::FermetureChunck(std::int32_t size) { m_dump->CloseChunk(size); }

void CMmioFile::AddStringToDebugFile(const wstring& text) { m_dump->AddLine(text); }

std::uint32_t CMmioFile::ReadStringLength()
{
    std::uint32_t length = 0;
    return m_fields.ReadTextLength(length) ? length : 0;
}

} // namespace ZelmResult
