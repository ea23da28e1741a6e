#include "zelmresult/reading/read_error.h"

#include "zelmresult/storage/chunk_codes.h"
#include "zelmresult/storage/mmio_file.h"
#include "zelmresult/support/text.h"

namespace ZelmResult {

namespace {

wstring Quoted(std::uint32_t code) { return Concat(u"\"", FourCCToString(code), u"\""); }

wstring Allowed(Refusal::Bound bound)
{
    switch (bound) {
    case Refusal::Bound::BytesLeft: return u"no more than the bytes that the file still holds";
    case Refusal::Bound::Memory: return u"no more memory than a file of its size may ask for";
    default: return u"no more than 64 things inside each other";
    }
}

wstring Expected(const ReadStop& stop)
{
    if (stop.missing != 0) return u"the chunk " + Quoted(stop.missing);
    return stop.field.empty() ? wstring() : Concat(u"the field ", FromUtf8(stop.field));
}

wstring Reason(ReadError::Kind kind)
{
    switch (kind) {
    case ReadError::Kind::NotOpened: return u" cannot be opened";
    case ReadError::Kind::NotADocument: return u" is no result document";
    case ReadError::Kind::CutOff: return u" is cut off";
    case ReadError::Kind::NoSuchResult: return u" is not in the document";
    case ReadError::Kind::UnknownKind: return u" is of a kind that has no class";
    default: return u" cannot be read";
    }
}

} // namespace

ReadError ReadError::Of(const CMmioFile& file, wstring subject)
{
    const Refusal& refusal = file.bounds().FirstRefusal();
    if (refusal.bound != Refusal::Bound::None)
        return {Kind::TooLarge, std::move(subject), refusal.chunk, refusal.offset, Allowed(refusal.bound)};
    const ReadStop stop = file.WhereReadStopped();
    return {Kind::Damaged, std::move(subject), stop.chunk, stop.offset, Expected(stop)};
}

wstring ReadError::Text() const
{
    wstring text = (subject.empty() ? u"The document" : subject) + Reason(kind);
    if (offset >= 0) text += Concat(u", at byte ", offset);
    if (chunk != 0) text += u" in the chunk " + Quoted(chunk);
    return expected.empty() ? text : text + u": expected " + expected;
}

} // namespace ZelmResult
