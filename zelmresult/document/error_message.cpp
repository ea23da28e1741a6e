#include "zelmresult/document/error_message.h"

#include "zelmresult/quantities/translation.h"
#include "zelmresult/storage/chunk_codes.h"
#include "zelmresult/support/text.h"

namespace ZelmResult {

namespace {

wstring Message(const char* text, const wstring& path, const wstring& second = {})
{
    return FillPlaceholders(TranslateUserString("ErrorMessage", text), path, second);
}

} // namespace

// The misspellings are in the tables of translators, so they can't change.
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

wstring ErrorMessage::ReadRefused(const wstring& path, const Refusal& refusal)
{
    const wstring place = Concat(u"\"", FourCCToString(refusal.chunk), u"\", ", refusal.offset);
    switch (refusal.bound) {
    case Refusal::Bound::BytesLeft:
        return Message("The file %1 holds less than a count in it asks for (chunk, offset: %2)", path, place);
    case Refusal::Bound::Memory:
        return Message("The file %1 asks for more memory than 16 times its size and 64 MiB (chunk, offset: %2)", path,
                       place);
    case Refusal::Bound::Depth:
        return Message("In the file %1 quantities are built from each other more than 64 deep, or in a ring (chunk, "
                       "offset: %2)",
                       path, place);
    case Refusal::Bound::None: break;
    }
    return {};
}

wstring ErrorMessage::SlicesWithoutPlace(const wstring& path, const wstring& caption)
{
    return Message("There was no place for slices of the waterfall %2 from file %1: they read as zeros", path, caption);
}

wstring ErrorMessage::SettingsInPart(const wstring& path, const wstring& system)
{
    return Message("The settings of system %2 in file %1 came in part: what follows the first that can't be read is "
                   "missing, and so is the version of the application",
                   path, system);
}

wstring ErrorMessage::FileNotReplaced(const wstring& path)
{
    return Message("The file %1 was left as it was, since not everything would come back", path);
}

} // namespace ZelmResult
