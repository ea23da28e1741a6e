#include "tools/zmxf/base/process_names.h"

#include "tools/zmxf/base/text.h"
#include "zelmresult/reading/labelled_captions.h"
#include "zelmresult/support/text.h"

#include <algorithm>
#include <vector>

namespace zmxf {

namespace {

using ZelmResult::CaptionList;

std::string Caption(CaptionList list, std::span<const std::string> items)
{
    std::vector<ZelmResult::wstring> texts(items.size());
    std::transform(items.begin(), items.end(), texts.begin(), ZelmResult::FromUtf8);
    return ZelmResult::ToUtf8(ZelmResult::CaptionOf(list, texts));
}

} // namespace

std::string OrdersName(std::span<const double> orders)
{
    std::vector<std::string> items(orders.size());
    std::transform(orders.begin(), orders.end(), items.begin(), ExactText);
    return Caption(CaptionList::Orders, items);
}

std::string BroadBandName(std::span<const std::string> weightings)
{
    return Caption(CaptionList::BroadBand, weightings);
}

std::string OverviewName(std::span<const std::string> levels) { return Caption(CaptionList::Overview, levels); }

} // namespace zmxf
