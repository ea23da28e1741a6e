#include "tools/zmxf/exporting/export_output.h"

#include "tools/zmxf/base/failure.h"
#include "tools/zmxf/base/text.h"
#include "zelmresult/storage/temporary_files.h"
#include "zelmresult/support/system_error.h"

#include <iostream>
#include <vector>

namespace zmxf {

namespace {

constexpr const char* kStandard = "-";

std::string FileBehindStandardOutput()
{
    return fmt::format("{}zmxf-export-{}", ZelmResult::TemporaryDirectory(), ZelmResult::ProcessNumber());
}

void Print(ZelmResult::FileHandle& file)
{
    std::vector<char> piece(65536);
    std::int64_t position = 0;
    while (std::cout) {
        const std::int64_t got = file.ReadAt(position, piece.data(), piece.size());
        if (got < 0) throw Failure(SystemFailure("cannot read", "what was exported", ZelmResult::LastSystemError()));
        if (got == 0) break;
        std::cout.write(piece.data(), got);
        position += got;
    }
}

} // namespace

ExportOutput::ExportOutput(const std::string& path, Writer writer) : m_path(path)
{
    const bool isStandard = path == kStandard;
    if (isStandard && writer == Writer::Stream) return;
    m_file.emplace(isStandard ? FileBehindStandardOutput() : path);
    if (writer == Writer::Stream) m_stream.rdbuf(&m_buffer.emplace(m_file->file()));
}

std::ostream& ExportOutput::stream() { return m_buffer ? m_stream : std::cout; }

void ExportOutput::FailToWrite() const
{
    throw Failure(m_buffer ? SystemFailure("cannot write", m_path, m_buffer->failure())
                           : "cannot write to standard output");
}

void ExportOutput::Check()
{
    if (IsStream() && !stream()) FailToWrite();
    if (m_file && SignalsHeld::IsPending()) throw Failure("{} is not written: interrupted", Printable(m_path));
}

void ExportOutput::Commit()
{
    if (IsStream() && !stream().flush()) FailToWrite();
    if (!m_file) return;
    if (!IsStandard()) return m_file->Commit();
    Print(m_file->file());
    if (!std::cout.flush()) FailToWrite();
}

} // namespace zmxf
