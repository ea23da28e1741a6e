#pragma once

#include "zelmresult/support/wstring.h"

#include <string>

namespace ZelmResult {

// The name of a temporary file, reserved by an empty file that is deleted with the object.
class CTempFile {
public:
    // Reserves prefix, a number, a dot and the extension in the temporary directory; without an extension the number
    // has four hexadecimal digits, and "tmp" is the extension. When there is no free name, the path says why, and
    // nothing opens or deletes it.
    CTempFile(const std::string& extension, const std::string& prefix);
    CTempFile(const CTempFile&) = delete;
    CTempFile& operator=(const CTempFile&) = delete;
    virtual ~CTempFile();

    [[nodiscard]] const std::string& GetPathName() const { return m_path; }
    [[nodiscard]] wstring GetPathNameW() const;
    // Whether the path names a file that was reserved.
    [[nodiscard]] bool IsReserved() const { return m_isReserved; }
    // For a file whose name was removed already: a file of that name is another one.
    void SetDeleteOnDestroy(bool deletes) { m_deleteOnDestroy = deletes; }
    static wstring GetTempDirectoryW();

private:
    std::string m_path;
    bool m_deleteOnDestroy = true;
    bool m_isReserved = false;
};

} // namespace ZelmResult
