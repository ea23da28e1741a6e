#pragma once

#include "zelmresult/support/wstring.h"

namespace ZelmResult {

class CMmioFile;

// A remark on a document. Stored as one text in a chunk "CMTS", without a version.
class CComment {
public:
    [[nodiscard]] const wstring& comment() const { return m_comment; }
    void setComment(const wstring& text) { m_comment = text; }

    [[nodiscard]] bool Save(CMmioFile* file) const;
    // The next comment behind the current position. It looks for "cmts", as older writers spell the code, so the
    // comments that Save writes don't come back; both spellings are part of the format.
    [[nodiscard]] bool Load(CMmioFile* file);

private:
    wstring m_comment;
};

} // namespace ZelmResult
