#include "tools/zmxf/exporting/export_output.h"

#include "tools/zmxf/base/failure.h"
#include "tools/zmxf/base/text.h"

#include <cstdlib>
#include <iostream>
#include <unistd.h>

namespace zmxf {

namespace {

constexpr const char* kStandard = "-";

std::string FileBehindStandardOutput()
{
    const char* folder = std::getenv("TMPDIR");
    return fmt::format("{}/zmxf-export-{}", folder != nullptr && *folder != '\0' ? folder : "/tmp", ::getpid());
}

} // namespace

ExportOutput::ExportOutput(const std::string& path, Writer writer) : m_path(path)
{
    const bool isStandard = path == kStandard;
    if (isStandard && writer == Writer::Stream) return;
    m_file.emplace(isStandard ? FileBehindStandardOutput() : path);
    if (writer == Writer::ByName) return;
    m_stream.open(m_file->temporary(), std::ios::binary);
    if (!m_stream.is_open()) throw Failure(SystemFailure("cannot write", path));
}

std::ostream& ExportOutput::stream() { return m_stream.is_open() ? m_stream : std::cout; }

// Right after the stream fails, while errno is still that of the failure.
void ExportOutput::FailToWrite() const
{
    throw Failure(IsStandard() ? "cannot write to standard output" : SystemFailure("cannot write", m_path));
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
    std::ifstream bytes(m_file->temporary(), std::ios::binary);
    if (!(std::cout << bytes.rdbuf()).flush()) FailToWrite();
}

} // namespace zmxf
