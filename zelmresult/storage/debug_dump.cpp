#include "zelmresult/storage/debug_dump.h"

#include "zelmresult/storage/file_handle.h"
#include "zelmresult/support/text.h"

#include <string>
#include <utility>

namespace ZelmResult {

namespace {

constexpr std::int32_t kIndent = 6;

wstring Marks(std::int32_t level, char16_t mark)
{
    return wstring(level > 0 ? static_cast<std::size_t>(level) : 0, mark);
}

} // namespace

void DebugDump::Begin(bool isWritten)
{
    m_lines.clear();
    m_level = 0;
    m_isDue = isWritten;
}

void DebugDump::OpenChunk(const wstring& label, std::uint32_t code)
{
    m_lines.push_back(Marks(m_level, u'>') + label + u"(" + ToHex8(code) + u")\n");
    m_level += kIndent;
}

void DebugDump::CloseChunk(std::int32_t size)
{
    m_level -= kIndent;
    m_lines.push_back(Marks(m_level, u'<') + u" Size : " + ToHex8(static_cast<std::uint32_t>(size)) + u"\n");
}

void DebugDump::AddLine(const wstring& text) { m_lines.push_back(Marks(m_level, u'-') + text + u"\n"); }

void DebugDump::WriteOnce(const wstring& path)
{
    if (!std::exchange(m_isDue, false) || path.empty()) return;
    std::string text;
    for (const wstring& line : m_lines) text += ToUtf8(line);
    const auto file = MakePlatformFileHandle();
    if (!file->Open(path, FileHandle::Access::Create)) return;
    (void)file->WriteAt(0, text.data(), text.size());
    (void)file->Close();
}

} // namespace ZelmResult
