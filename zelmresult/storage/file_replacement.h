#pragma once

#include "zelmresult/support/wstring.h"

#include <string>

namespace ZelmResult {

// A file that takes its name only when it is whole. Until then it is a temporary file beside that name, with the
// permissions of the file that it replaces; without Commit it is removed again. A link is followed: the file that it
// leads to is replaced and the link stays. When the file has several names, the others keep the former content.
class FileReplacement {
public:
    // Makes the temporary file, empty. Fails when the name is that of a folder, a device or a file that this user may
    // not write; on Windows also for a file that another program keeps from being replaced, and a part of a file
    // ("a:b").
    explicit FileReplacement(const wstring& path);
    FileReplacement(const FileReplacement&) = delete;
    FileReplacement& operator=(const FileReplacement&) = delete;
    ~FileReplacement(); // removes what wasn't committed

    [[nodiscard]] bool IsMade() const { return !m_temporary.empty(); }
    // The path of the temporary file, for others to open and write; empty when it couldn't be made.
    [[nodiscard]] const wstring& temporary() const { return m_temporary; }
    // Flushes the bytes to the device and renames the file, which replaces the former one. On false the former one is
    // unchanged.
    [[nodiscard]] bool Commit();
    // Why the temporary file couldn't be made or committed, in the system's words.
    [[nodiscard]] const std::string& reason() const { return m_reason; }

private:
    bool Fail();

    wstring m_path; // after links were followed
    wstring m_temporary;
    std::string m_reason;
};

} // namespace ZelmResult
