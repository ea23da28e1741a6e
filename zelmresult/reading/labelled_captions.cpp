#include "zelmresult/reading/labelled_captions.h"

#include <array>
#include <set>

namespace ZelmResult {

namespace {

constexpr std::array<wstring_view, 3> kIntroductions{u"Orders ", u"Broad band ", u"Overview of "};
constexpr wstring_view kSeparator = u", ";

wstring_view IntroductionOf(CaptionList list) { return kIntroductions[static_cast<std::size_t>(list)]; }

} // namespace

wstring CaptionOf(CaptionList list, std::span<const wstring> items)
{
    wstring caption(IntroductionOf(list));
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (i > 0) caption += kSeparator;
        caption += items[i];
    }
    return caption;
}

std::vector<wstring> ItemsOf(CaptionList list, const wstring& caption, std::size_t count)
{
    const wstring_view introduction = IntroductionOf(list);
    std::vector<wstring> items;
    if (!caption.starts_with(introduction)) return items;
    for (std::size_t at = introduction.size(), end = 0; end != wstring::npos; at = end + kSeparator.size()) {
        end = caption.find(kSeparator, at);
        items.push_back(caption.substr(at, end == wstring::npos ? end : end - at));
    }
    const std::set<wstring> distinct(items.begin(), items.end());
    const bool fit = items.size() == count && distinct.size() == count && !distinct.contains(wstring());
    return fit ? items : std::vector<wstring>();
}

} // namespace ZelmResult
