#include "tools/zmxf/base/open_document.h"

#include "tools/zmxf/base/files.h"
#include "tools/zmxf/base/text.h"
#include "zelmresult/support/text.h"

#include <cerrno>

namespace zmxf {

namespace {

using ZelmResult::ReadError;

Failure CannotRead(const std::string& path, const std::string& reason)
{
    return Failure("cannot read " + Printable(path) + ": " + reason);
}

Failure Unopened(const std::string& path, const ReadError& error)
{
    switch (error.kind) {
    case ReadError::Kind::NotOpened:
        errno = error.systemError;
        return errno != 0 ? Failure(SystemFailure("cannot read", path)) : CannotRead(path, "not a regular file");
    case ReadError::Kind::NotADocument: return CannotRead(path, "not a result document");
    case ReadError::Kind::CutOff:
        return CannotRead(path, "it ends after " + std::to_string(error.offset) + " of " +
                                    ZelmResult::ToUtf8(error.expected) + ", the document is damaged");
    default: return Unreadable(path, ZelmResult::ToUtf8(error.subject));
    }
}

} // namespace

Failure Unreadable(const std::string& path, const std::string& what)
{
    return CannotRead(path, what + " cannot be read, the document is damaged");
}

ZelmResult::DocumentReader OpenDocument(const std::string& path)
{
    auto reader = ZelmResult::DocumentReader::Open(LibraryPath(path));
    if (!reader) throw Unopened(path, reader.error());
    CheckWhole(path, reader->CutOff());
    return *std::move(reader);
}

void CheckWhole(const std::string& path, const std::optional<ReadError>& damage)
{
    if (damage) throw Unopened(path, *damage);
}

ZelmResult::StoredResult ReadResult(const std::string& path, std::size_t number)
{
    ZelmResult::DocumentReader reader = OpenDocument(path);
    const auto& listing = reader.Results();
    CheckWhole(path, listing.damage);
    const std::string name = Printable(path);
    if (number >= listing.items.size())
        throw Failure(name + " has no result " + std::to_string(number) + ": it holds " +
                      Counted(listing.items.size(), "result") + ", counted from 0");
    auto result = reader.ReadResult(number);
    if (!result && result.error().kind == ReadError::Kind::UnknownKind)
        FailToShow(path, *listing.items[number].header, number);
    const std::optional<ReadError>& error = result ? result->lostReferences() : result.error();
    if (error) throw Failure(name + ": " + ZelmResult::ToUtf8(error->subject) + " cannot be read");
    return *std::move(result);
}

void FailToShow(const std::string& path, const ZelmResult::CResultHeader& header, std::size_t number)
{
    throw Failure(Printable(path) + ": result " + std::to_string(number) + " is of process type " +
                  std::to_string(header.GetProcessType()) + ", which cannot be shown");
}

} // namespace zmxf
