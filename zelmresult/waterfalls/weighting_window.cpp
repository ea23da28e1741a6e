#include "zelmresult/waterfalls/weighting_window.h"

#include <algorithm>

namespace ZelmResult {

namespace {

const idn::Module kWindows(9, 1);

bool IsLegal(int number)
{
    const auto& all = WeightingWindow::all();
    return std::find(all.begin(), all.end(), static_cast<EWeightingWindow>(number)) != all.end();
}

} // namespace

const std::vector<EWeightingWindow>& WeightingWindow::all()
{
    static const std::vector<EWeightingWindow> numbers = [] {
        constexpr int ranges[][2] = {{-1, -1}, {0, 0}, {303, 313}, {316, 316}, {328, 337}, {403, 424}, {758, 765}};
        std::vector<EWeightingWindow> made;
        for (const auto& [first, last] : ranges)
            for (int number = first; number <= last; ++number) made.push_back(static_cast<EWeightingWindow>(number));
        return made;
    }();
    return numbers;
}

void WeightingWindow::set(int number) { m_window = static_cast<EWeightingWindow>(IsLegal(number) ? number : 0); }

idn::ESubmoduleCollection WeightingWindow::toSubmoduleCollection() const
{
    return idn::Submodule::intToSubmoduleCollection(toInt());
}

idn::Submodule WeightingWindow::toSubmodule() const { return {static_cast<std::uint32_t>(toSubmoduleCollection()), 1}; }

idn::Idn WeightingWindow::toIdn() const
{
    return idn::Idn::generateSubmoduleIdn(idn::Analyzer(0), kWindows, toSubmodule());
}

bool WeightingWindow::isWindowIdn(const idn::Idn& idn)
{
    const auto number = static_cast<int>(idn.submodule().kind);
    return idn.module().kind == kWindows.kind && number != -1 && number != 0 && IsLegal(number);
}

} // namespace ZelmResult
