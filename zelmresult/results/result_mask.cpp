#include "zelmresult/results/result_mask.h"

#include "zelmresult/results/kind_set.h"

#include <initializer_list>
#include <utility>

namespace ZelmResult {

namespace {

using Process = ResultMask::Process;

constexpr int kPlainMask = 37;

bool Is(Process process, std::initializer_list<KindRange> kinds) { return IsAmong(process.toInteger(), kinds); }

Process Mapped(Process process, std::initializer_list<std::pair<int, int>> mapping, int otherwise)
{
    for (const auto& [from, to] : mapping)
        if (process.toInteger() == from) return Process::fromInteger(to);
    return Process::fromInteger(otherwise);
}

} // namespace

bool ResultMask::isMask(Process process) { return Is(process, {{37, 41}, 118, 119, {122, 127}, 129}); }

bool ResultMask::isMaskSingle(Process process) { return Is(process, {37, 38, 118, 122, 124, 126, 127, 129}); }
bool ResultMask::isMaskDouble(Process process) { return Is(process, {40, 119, 123, 125}); }
bool ResultMask::isMaskInterpolated(Process process) { return Is(process, {118, 119, 124, 125, 127}); }
bool ResultMask::isMaskNarrowBands(Process process) { return Is(process, {37, 40, 118, 119, {122, 125}}); }
bool ResultMask::isMaskProfile(Process process) { return Is(process, {126, 127, 129}); }
bool ResultMask::isMaskNOctave(Process process) { return Is(process, {38}); }

bool ResultMask::isMaskGenerator(const otype::ResultProcess& process)
{
    if (process.second().toInteger() != 0)
        return Is(process.first(), {{9, 15},
                                    42,
                                    {47, 56},
                                    75,
                                    88,
                                    {100, 107},
                                    134,
                                    136,
                                    {150, 153},
                                    {155, 158},
                                    {193, 194},
                                    253,
                                    255,
                                    {271, 273},
                                    267,
                                    278});
    return Is(process.first(),
              {2,   4,          17,  18,         24,         {37, 41},   {80, 82}, 90,         91,         118,
               119, {122, 127}, 129, {131, 133}, {137, 140}, {143, 146}, 198,      {221, 228}, {287, 293}, 310});
}

Process ResultMask::maskSingle(Process process)
{
    return Mapped(process, {{119, 118}, {123, 122}, {125, 124}}, kPlainMask);
}

Process ResultMask::maskDouble(Process process)
{
    return Mapped(process, {{37, 40}, {118, 119}, {122, 123}, {124, 125}}, kPlainMask);
}

Process ResultMask::maskInterpolated(Process process)
{
    return Mapped(process, {{37, 118}, {40, 119}, {122, 124}, {123, 125}, {126, 127}, {129, 127}}, process.toInteger());
}

Process ResultMask::maskNotInterpolated(Process process)
{
    return Mapped(process, {{118, 37}, {119, 40}, {124, 122}, {125, 123}, {127, 126}}, process.toInteger());
}

} // namespace ZelmResult
