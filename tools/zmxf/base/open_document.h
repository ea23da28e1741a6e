#pragma once

#include "tools/zmxf/base/failure.h"
#include "zelmresult/reading/document_reader.h"

#include <optional>
#include <span>
#include <string>

// How verbs read result documents. All functions throw Failure.

namespace zmxf {

// What to throw for it.
Failure Unreadable(const std::string& path, const std::string& what);

// A document that isn't cut off.
ZelmResult::DocumentReader OpenDocument(const std::string& path);

// The same, but nothing for a file that is something else.
std::optional<ZelmResult::DocumentReader> OpenIfDocument(const std::string& path);

// Fails when something of the document is damaged.
void CheckWhole(const std::string& path, const std::optional<ZelmResult::ReadError>& damage);

// The headers of all results; lent by the reader of that document.
std::span<const ZelmResult::ListedResult> ListResults(ZelmResult::DocumentReader& reader, const std::string& path);
// One of them.
ZelmResult::ListedResult FindResult(ZelmResult::DocumentReader& reader, const std::string& path, std::size_t number);
// What was read of it. Also fails when the references of a result along a waterfall can't be read.
ZelmResult::LabelledResult CheckRead(const std::string& path, const ZelmResult::ListedResult& listed,
                                     std::size_t number, ZelmResult::Outcome<ZelmResult::LabelledResult> read);

// A result of a process type that the program can't show.
[[noreturn]] void FailToShow(const std::string& path, const ZelmResult::CResultHeader& header, std::size_t number);

} // namespace zmxf
