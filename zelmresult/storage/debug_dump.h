#pragma once

#include "zelmresult/support/wstring.h"

#include <cstdint>
#include <vector>

namespace ZelmResult {

// The structure of a file that is written, as lines of text: one where a chunk begins, one where it ends, and labelled
// values between them, indented by marks that tell which.
class DebugDump {
public:
    // Starts anew; only a file that is written has its dump written.
    void Begin(bool isWritten);
    void OpenChunk(const wstring& label, std::uint32_t code);
    void CloseChunk(std::int32_t size);
    void AddLine(const wstring& text);
    // Writes the lines as UTF-8 to a file on disk, once. An empty path, and one that can't be written, drop them.
    void WriteOnce(const wstring& path);

private:
    std::vector<wstring> m_lines;
    std::int32_t m_level = 0;
    bool m_isDue = false;
};

} // namespace ZelmResult
