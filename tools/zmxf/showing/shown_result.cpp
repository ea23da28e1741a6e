#include "tools/zmxf/showing/shown_result.h"

#include "tools/zmxf/base/failure.h"
#include "tools/zmxf/base/open_document.h"
#include "tools/zmxf/base/text.h"

namespace zmxf {

namespace {

using ZelmResult::CGrandeur;

void CheckDecibels(const ShowOptions& options, const CGrandeur* quantity)
{
    if (options.decibels && !HasDecibels(quantity))
        throw Failure("{}: result {} is in a quantity without decibels", Printable(options.document), options.number);
}

} // namespace

const CGrandeur* ShownResult::quantity() const
{
    return vector ? vector->columns.front().quantity : result->GetMagnitude();
}

ShownResult DescribeResult(const ShowOptions& options, ZelmResult::StoredResult& stored)
{
    ShownResult shown;
    shown.result = &stored.result();
    shown.scalar = dynamic_cast<const ZelmResult::CScalar*>(shown.result);
    shown.waterfall = DescribeWaterfall(stored.result());
    const std::string caption = Printable(stored.header().processCaption());
    const auto fail = [&options](const char* why) {
        throw Failure("{}: result {} {}", Printable(options.document), options.number, why);
    };
    if (!shown.waterfall) {
        if (options.slice.IsMade()) fail("is no waterfall");
        shown.levels = DescribeLevels(stored.result(), caption);
        shown.vector = DescribeVector(stored.result(), caption);
        if (options.top != 0 && !shown.vector) fail("has no points, so no peaks");
    } else if (options.slice.IsMade()) {
        shown.slice = shown.waterfall->Find(options.slice);
        shown.sliceData = shown.waterfall->Slice(*shown.slice);
        shown.vector = DescribeVector(*shown.sliceData, caption);
    } else if (options.top != 0) {
        fail("is a waterfall: choose a slice with --slice, --block or --at");
    }
    if (shown.scalar == nullptr && shown.levels.empty() && !shown.vector && !shown.waterfall)
        FailToShow(options.document, stored.header(), options.number);
    CheckDecibels(options, shown.quantity());
    return shown;
}

} // namespace zmxf
