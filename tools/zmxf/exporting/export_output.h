#pragma once

#include "tools/zmxf/base/files.h"
#include "tools/zmxf/base/output_buffer.h"

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>

namespace zmxf {

// Where an export goes: standard output, called "-", or a file that appears under its name when it is whole. All
// operations throw Failure.
class ExportOutput {
public:
    // Who writes: a stream, or somebody who wants the name of a file. For the latter, standard output gets the bytes of
    // a file in the folder for temporary files.
    enum class Writer : std::uint8_t { Stream, ByName };

    ExportOutput(const std::string& path, Writer writer);

    [[nodiscard]] std::ostream& stream();
    [[nodiscard]] std::string temporary() const { return m_file->temporary(); }
    // Fails when nothing more can be written, or when a signal wants the program to end: those that come while a file
    // is open wait for that.
    void Check();
    void Commit();

private:
    [[nodiscard]] bool IsStandard() const { return m_path == "-"; }
    [[nodiscard]] bool IsStream() const { return !m_file || m_buffer; }
    [[noreturn]] void FailToWrite() const;

    std::string m_path;
    std::optional<OutputFile> m_file;
    std::optional<OutputBuffer> m_buffer; // of the stream to the file
    std::ostream m_stream{nullptr};
};

} // namespace zmxf
