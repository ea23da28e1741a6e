#include "zelmresult/storage/mmio_file.h"

#include "zelmresult/storage/file_handle.h"
#include "zelmresult/storage/mmio_riff.h"
#include "zelmresult/support/text.h"

#include <string>

namespace ZelmResult {

namespace {

constexpr std::int32_t kDebugIndent = 6;

CMmioFile::BackendFactory& DefaultFactory()
{
    static CMmioFile::BackendFactory factory = [] { return std::make_unique<CMmioRiff>(); };
    return factory;
}

wstring Indent(std::int32_t level, char16_t mark)
{
    return wstring(level > 0 ? static_cast<std::size_t>(level) : 0, mark);
}

} // namespace

const CMmioFile::BackendFactory& CMmioFile::DefaultBackend() { return DefaultFactory(); }

FieldObserver* CMmioFile::s_fieldObserver = nullptr;

void CMmioFile::SetDefaultBackend(BackendFactory makeBackend) { DefaultFactory() = std::move(makeBackend); }

CMmioFile::CMmioFile(bool debug, BackendFactory makeBackend)
    : m_makeBackend(std::move(makeBackend)), m_backend(m_makeBackend ? m_makeBackend() : nullptr), m_debug(debug),
      m_dump(std::make_shared<Dump>())
{
}

CMmioFile::~CMmioFile()
{
    if (m_backend.use_count() == 1) (void)Close();
}

bool CMmioFile::Open(const wstring& name, OMMIOINFO* info, std::uint32_t flags)
{
    if (!m_backend) {
        if (m_makeBackend) m_backend = m_makeBackend();
        m_currentChunk = {};
        m_systemPosition = {};
    }
    if (!m_backend || !m_backend->ommioOpen(name, info, flags)) return false;
    m_fileName = name;
    m_hasFailed = false;
    m_hasUnreadable = false;
    m_budget = (flags & (OMMIO_WRITE | OMMIO_CREATE)) != 0 ? ReadBudget::ForWriting()
                                                           : ReadBudget::ForReading(m_backend->BytesLeft());
    m_chunksCreated = 0;
    m_lastEntered = 0;
    m_refusal = {};
    m_lastMissed = 0;
    m_stop.reset();
    m_quantities = {}; // those of the file before belong to whoever worked with it
    if (m_debug) *m_dump = {{}, 0, (flags & OMMIO_WRITE) != 0};
    return true;
}

bool CMmioFile::Close()
{
    if (!m_backend) return true;
    m_backend->ommioClose();
    if (m_debug && m_dump->isDue) WriteDump();
    m_fileName.clear();
    m_budget = {};
    m_backend.reset();
    return true;
}

void CMmioFile::LimitSearches()
{
    if (m_backend) m_backend->LimitSearches();
}

bool CMmioFile::BeginOperation()
{
    if (!TopOfFile()) return false;
    m_budget = ReadBudget::ForReading(m_backend->BytesLeft());
    m_lastEntered = 0;
    ForgetFailures();
    LimitSearches();
    return true;
}

void CMmioFile::ForgetFailures()
{
    m_lastMissed = 0;
    m_refusal = {};
    m_stop.reset();
    m_hasUnreadable = false;
    m_messages.clear();
}

ReadStop CMmioFile::StopHere() const
{
    const std::int32_t offset = Position();
    return {m_lastEntered, offset, offset == m_lastMissedFrom ? m_lastMissed : 0, {}};
}

void CMmioFile::NoteFailedField(std::string_view field)
{
    if (m_stop) return;
    m_stop = StopHere();
    m_stop->field = field;
}

ReadStop CMmioFile::WhereReadStopped() const { return m_stop ? *m_stop : StopHere(); }

void CMmioFile::WriteDump()
{
    m_dump->isDue = false;
    if (m_fileName.empty()) return;
    std::string text;
    for (const wstring& line : m_dump->lines) text += ToUtf8(line);
    const auto file = MakePlatformFileHandle();
    if (!file->Open(m_fileName + u"d", FileHandle::Access::Create)) return;
    (void)file->WriteAt(0, text.data(), text.size()); // a dump that can't be written is dropped
    (void)file->Close();
}

void CMmioFile::fetchErrors(std::vector<wstring>& out, bool clear)
{
    out.insert(out.end(), m_messages.begin(), m_messages.end());
    if (clear) m_messages.clear();
}

void CMmioFile::OuvertureChunck(const wstring& label, std::uint32_t id)
{
    m_dump->lines.push_back(Indent(m_dump->level, u'>') + label + u"(" + ToHex8(id) + u")\n");
    m_dump->level += kDebugIndent;
}

void CMmioFile::FermetureChunck(std::int32_t size)
{
    m_dump->level -= kDebugIndent;
    m_dump->lines.push_back(Indent(m_dump->level, u'<') + u" Size : " + ToHex8(static_cast<std::uint32_t>(size)) +
                            u"\n");
}

void CMmioFile::AddStringToDebugFile(const wstring& text)
{
    m_dump->lines.push_back(Indent(m_dump->level, u'-') + text + u"\n");
}

void CMmioFile::SetStoredVersion(std::string_view record, std::uint16_t version)
{
    m_storedVersions.insert_or_assign(std::string(record), version);
}

std::uint16_t CMmioFile::StoredVersion(std::string_view record, std::uint16_t newest) const
{
    if (m_storedVersions.empty()) return newest;
    const auto found = m_storedVersions.find(record);
    return found == m_storedVersions.end() ? newest : found->second;
}

} // namespace ZelmResult
