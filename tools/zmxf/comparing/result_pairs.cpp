#include "tools/zmxf/comparing/result_pairs.h"

#include "zelmresult/support/text.h"

#include <algorithm>
#include <map>
#include <tuple>

namespace zmxf {

namespace {

using ZelmResult::ListedResult;
using ZelmResult::wstring;

wstring ChannelOf(const wstring& name, std::int32_t number)
{
    return name.empty() ? ZelmResult::Concat(u"#", number) : name;
}

auto SubjectOf(const ListedResult& listed)
{
    const ZelmResult::CResultHeader& header = *listed.header;
    return std::tuple(listed.system, header.GetProcessType(), header.GetWaterfallDimension(),
                      ChannelOf(header.responseName(), header.GetNumReponse()),
                      ChannelOf(header.referenceName(), header.GetNumReference()));
}

} // namespace

ResultPairs PairResults(std::span<const ListedResult> a, std::span<const std::size_t> numbersOfA,
                        std::span<const ListedResult> b, std::span<const std::size_t> numbersOfB)
{
    // Per subject its results in the second document, and how many of them have a partner.
    std::map<decltype(SubjectOf(a.front())), std::pair<std::vector<std::size_t>, std::size_t>> waiting;
    for (const std::size_t number : numbersOfB) waiting[SubjectOf(b[number])].first.push_back(number);
    ResultPairs result;
    for (const std::size_t number : numbersOfA) {
        auto& [numbers, taken] = waiting[SubjectOf(a[number])];
        if (taken < numbers.size())
            result.pairs.emplace_back(number, numbers[taken++]);
        else
            result.onlyInA.push_back(number);
    }
    for (const auto& [subject, found] : waiting) {
        const auto& [numbers, taken] = found;
        result.onlyInB.insert(result.onlyInB.end(), numbers.begin() + static_cast<std::ptrdiff_t>(taken),
                              numbers.end());
    }
    std::sort(result.onlyInB.begin(), result.onlyInB.end());
    return result;
}

} // namespace zmxf
