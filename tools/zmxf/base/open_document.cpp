#include "tools/zmxf/base/open_document.h"

#include "tools/zmxf/base/files.h"
#include "tools/zmxf/base/selection.h"
#include "tools/zmxf/base/text.h"
#include "zelmresult/support/text.h"

#include <fmt/format.h>

namespace zmxf {

namespace {

using ZelmResult::ReadError;

Failure CannotRead(const std::string& path, const std::string& reason)
{
    return Failure("cannot read {}: {}", Printable(path), reason);
}

Failure Unopened(const std::string& path, const ReadError& error)
{
    switch (error.kind) {
    case ReadError::Kind::NotOpened: return Failure(SystemFailure("cannot read", path, error.systemError));
    case ReadError::Kind::CutOff:
        return CannotRead(path, fmt::format("it ends after {} of {}, the document is damaged", error.offset,
                                            ZelmResult::ToUtf8(error.expected)));
    default: return Unreadable(path, ZelmResult::ToUtf8(error.subject));
    }
}

} // namespace

Failure Unreadable(const std::string& path, const std::string& what)
{
    return CannotRead(path, fmt::format("{} cannot be read, the document is damaged", what));
}

ZelmResult::DocumentReader OpenDocument(const std::string& path)
{
    auto reader = OpenIfDocument(path);
    if (!reader) throw CannotRead(path, "not a result document");
    return *std::move(reader);
}

std::optional<ZelmResult::DocumentReader> OpenIfDocument(const std::string& path)
{
    auto reader = ZelmResult::DocumentReader::Open(LibraryPath(path));
    if (!reader && reader.error().kind == ReadError::Kind::NotADocument) return std::nullopt;
    if (!reader) throw Unopened(path, reader.error());
    CheckWhole(path, reader->CutOff());
    return *std::move(reader);
}

void CheckWhole(const std::string& path, const std::optional<ReadError>& damage)
{
    if (damage) throw Unopened(path, *damage);
}

std::span<const ZelmResult::ListedResult> ListResults(ZelmResult::DocumentReader& reader, const std::string& path)
{
    const auto& listing = reader.Results();
    CheckWhole(path, listing.damage);
    return listing.items;
}

ZelmResult::ListedResult FindResult(ZelmResult::DocumentReader& reader, const std::string& path, std::size_t number)
{
    const auto all = ListResults(reader, path);
    if (number >= all.size()) FailForNumber(path, number, all.size());
    return all[number];
}

ZelmResult::LabelledResult CheckRead(const std::string& path, const ZelmResult::ListedResult& listed,
                                     std::size_t number, ZelmResult::Outcome<ZelmResult::LabelledResult> read)
{
    if (!read && read.error().kind == ReadError::Kind::UnknownKind) FailToShow(path, *listed.header, number);
    const std::optional<ReadError>& error = read ? read->lostReferences : read.error();
    if (error) throw Failure("{}: {} cannot be read", Printable(path), ZelmResult::ToUtf8(error->subject));
    return *std::move(read);
}

void FailToShow(const std::string& path, const ZelmResult::CResultHeader& header, std::size_t number)
{
    throw Failure("{}: result {} is of process type {}, which cannot be shown", Printable(path), number,
                  header.GetProcessType());
}

} // namespace zmxf
