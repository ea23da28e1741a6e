#pragma once

#include "zelmresult/storage/read_bounds.h"
#include "zelmresult/support/wstring.h"

namespace ZelmResult {

// The messages of saving and loading, in the host's language. path is the file; second is the other thing that the
// message names.
class ErrorMessage {
public:
    static wstring RIFF_CreateFile(const wstring& path);
    static wstring RIFF_OpenFile(const wstring& path);
    static wstring RIFF_CreateChunkRIFF(const wstring& path);
    static wstring RIFF_CreateChunkUnit(const wstring& path);
    static wstring RIFF_SaveHeader(const wstring& path);
    static wstring RIFF_SaveProjectInfo(const wstring& path);
    static wstring RIFF_SaveMagnitude(const wstring& path, const wstring& second);
    static wstring RIFF_ExitChunkUnit(const wstring& path);
    static wstring RIFF_SaveSystem(const wstring& path, const wstring& second);
    static wstring RIFF_SaveComment(const wstring& path);
    static wstring RIFF_SaveHardInfo(const wstring& path);
    static wstring RIFF_ExitChunk(const wstring& path);
    // The bound that refused the file, the chunk and the offset.
    static wstring ReadRefused(const wstring& path, const Refusal& refusal);
    static wstring SlicesWithoutPlace(const wstring& path, const wstring& caption);
    static wstring SettingsInPart(const wstring& path, const wstring& system);
    static wstring FileNotReplaced(const wstring& path);
};

} // namespace ZelmResult
