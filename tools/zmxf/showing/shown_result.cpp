#include "tools/zmxf/showing/shown_result.h"

#include "tools/zmxf/base/failure.h"
#include "tools/zmxf/base/open_document.h"
#include "tools/zmxf/base/text.h"

namespace zmxf {

namespace {

using ZelmResult::DocumentReader;
using ZelmResult::LabelledForm;

[[noreturn]] void Fail(const ShowOptions& options, const char* why)
{
    throw Failure("{}: result {} {}", Printable(options.document), options.number, why);
}

// Reads no slice but the chosen one.
void ReadSlice(const ShowOptions& options, DocumentReader& reader, ShownResult& shown)
{
    using By = ZelmResult::SliceChoice::By;
    const auto check = [&](auto outcome) { return CheckRead(options.document, shown.listed, options.number, outcome); };
    auto slices = reader.ReadSlices(options.number);
    if (!slices && slices.error().kind == ZelmResult::ReadError::Kind::NoSuchResult) Fail(options, "is no waterfall");
    shown.waterfall = DescribeWaterfall(check(std::move(slices)));
    shown.slice = shown.waterfall->Find(options.slice);
    shown.labelled = check(reader.ReadSlice(options.number, {By::Index, static_cast<std::int64_t>(*shown.slice)}));
    shown.vector = DescribeVector(shown.labelled);
}

void ReadWhole(const ShowOptions& options, DocumentReader& reader, ShownResult& shown)
{
    shown.labelled = CheckRead(options.document, shown.listed, options.number, reader.ReadLabelled(options.number));
    if (shown.labelled.form == LabelledForm::Waterfall) {
        if (options.top != 0) Fail(options, "is a waterfall: choose a slice with --slice, --block or --at");
        shown.waterfall = DescribeWaterfall(shown.labelled);
        return;
    }
    shown.levels = DescribeLevels(shown.labelled);
    if (shown.levels.empty()) shown.vector = DescribeVector(shown.labelled);
    if (options.top != 0 && !shown.vector) Fail(options, "has no points, so no peaks");
}

} // namespace

ShownResult ReadShownResult(DocumentReader& reader, const ShowOptions& options)
{
    ShownResult shown;
    shown.listed = FindResult(reader, options.document, options.number);
    if (options.slice.IsMade())
        ReadSlice(options, reader, shown);
    else
        ReadWhole(options, reader, shown);
    if (options.decibels && !HasDecibels(shown.labelled.quantity)) Fail(options, "is in a quantity without decibels");
    return shown;
}

} // namespace zmxf
