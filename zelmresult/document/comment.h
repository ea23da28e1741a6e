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
    // Reads the next comment after the current position. It searches for "cmts", the spelling of older writers, so it
    // doesn't find the comments that Save writes; both spellings are part of the format.
    [[nodiscard]] bool Load(CMmioFile* file);

private:
    wstring m_comment;
};

} // namespace ZelmResult
