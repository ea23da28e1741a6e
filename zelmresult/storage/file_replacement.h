#pragma once

#include "zelmresult/support/wstring.h"

#include <string>

namespace ZelmResult {

// A file that takes its name only when it is whole. Until then it is a temporary beside that name, with the
// permissions of the file that it is to replace, and without Commit it vanishes again. A link is followed: the file
// that it leads to is replaced and the link stays. Of a file with several names the others keep the former content.
class FileReplacement {
public:
    // Makes the temporary, empty. It can't be made beside a folder, a device or a file that this user may not write.
    explicit FileReplacement(const wstring& path);
    FileReplacement(const FileReplacement&) = delete;
    FileReplacement& operator=(const FileReplacement&) = delete;
    ~FileReplacement(); // removes what wasn't committed

    [[nodiscard]] bool IsMade() const { return !m_temporary.empty(); }
    // The path of the temporary, to be opened and written by others; empty when it couldn't be made.
    [[nodiscard]] const wstring& temporary() const { return m_temporary; }
    // Flushes the bytes to the device and gives the file its name. False leaves what had the name before.
    [[nodiscard]] bool Commit();
    // Why the temporary couldn't be made or committed, in the system's words.
    [[nodiscard]] const std::string& reason() const { return m_reason; }

private:
    bool Fail();

    wstring m_path; // behind links
    wstring m_temporary;
    std::string m_reason;
};

} // namespace ZelmResult
