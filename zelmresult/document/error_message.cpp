#include "zelmresult/document/error_message.h"

#include "zelmresult/quantities/translation.h"
#include "zelmresult/support/text.h"

namespace ZelmResult {

namespace {

wstring Message(const char* text, const wstring& path, const wstring& second = {})
{
    return FillPlaceholders(TranslateUserString("ErrorMessage", text), path, second);
}

} // namespace

// The misspellings are what translators' tables hold, so they stay.
wstring ErrorMessage::RIFF_CreateFile(const wstring& path) { return Message("The file %1 could not be created", path); }
wstring ErrorMessage::RIFF_OpenFile(const wstring& path) { return Message("The file %1 could not be opened", path); }

wstring ErrorMessage::RIFF_CreateChunkRIFF(const wstring& path)
{
    return Message("The RIFF chunck in file %1 could not be created", path);
}

wstring ErrorMessage::RIFF_CreateChunkUnit(const wstring& path)
{
    return Message("The UNIT chunk in file %1 could not be created", path);
}

wstring ErrorMessage::RIFF_SaveHeader(const wstring& path)
{
    return Message("An error occured saving file header in file %1", path);
}

wstring ErrorMessage::RIFF_SaveProjectInfo(const wstring& path)
{
    return Message("An error occured saving project information in file %1", path);
}

wstring ErrorMessage::RIFF_SaveMagnitude(const wstring& path, const wstring& second)
{
    return Message("The magnitude %2 could not be saved in file %1", path, second);
}

wstring ErrorMessage::RIFF_ExitChunkUnit(const wstring& path)
{
    return Message("An error occured exiting UNIT chunk in file %1", path);
}

wstring ErrorMessage::RIFF_SaveSystem(const wstring& path, const wstring& second)
{
    return Message("An error occured saving system %2 in file %1", path, second);
}

wstring ErrorMessage::RIFF_SaveComment(const wstring& path)
{
    return Message("An error occured saving comment in file %1", path);
}

wstring ErrorMessage::RIFF_SaveHardInfo(const wstring& path)
{
    return Message("An error occured saving analyzer information in file %1", path);
}

wstring ErrorMessage::RIFF_ExitChunk(const wstring& path)
{
    return Message("An error ocuured exiting RIFF chunk in file %1", path);
}

} // namespace ZelmResult
