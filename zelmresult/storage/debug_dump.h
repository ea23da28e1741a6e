#pragma once

#include "zelmresult/support/wstring.h"

#include <cstdint>
#include <vector>

namespace ZelmResult {

// The structure of a file that is written, as lines of text: one where a chunk begins, one where it ends, and labelled
// values between them, with marks that show the depth.
class DebugDump {
public:
    // Starts an empty dump; only a file that is written has its dump written.
    void Begin(bool isWritten);
    void OpenChunk(const wstring& label, std::uint32_t code);
    void CloseChunk(std::int32_t size);
    void AddLine(const wstring& text);
    // Writes the lines as UTF-8 to a file on disk, once. With an empty path, or one that can't be written, they are
    // lost.
    void WriteOnce(const wstring& path);

private:
    std::vector<wstring> m_lines;
    std::int32_t m_level = 0;
    bool m_isDue = false;
};

} // namespace ZelmResult
