// What the kinds of results are: the classification that CResult offers.

#include "zelmresult/results/kind_set.h"
#include "zelmresult/results/result.h"

namespace ZelmResult {

AvgOctaveTarget CResult::GetOctaveTarget(std::uint32_t process)
{
    const int kind = static_cast<int>(process);
    if (IsAmong(kind, {18, 38, 137, 183})) return AvgOctaveTarget::Octave;
    if (IsAmong(kind, {24, 131, 138})) return AvgOctaveTarget::Averaged;
    if (IsAmong(kind, {132, 139})) return AvgOctaveTarget::Minimum;
    if (IsAmong(kind, {133, 140})) return AvgOctaveTarget::Maximum;
    return AvgOctaveTarget::None;
}

bool CResult::IsProcessOrbit(std::uint32_t process)
{
    return IsAmong(static_cast<int>(process), {257, {259, 266}}); // 258 is no orbit
}

bool CResult::IsXSpectrum(std::uint32_t process)
{
    return IsAmong(static_cast<int>(process), {5, 6, 31, 32, {170, 173}, {282, 285}});
}

bool CResult::IsSpectral(std::uint32_t process)
{
    return IsAmong(static_cast<int>(process),
                   {2,          4,          5,          6,          17,  18,  24,  31,         32,
                    37,         38,         {80, 82},   90,         91,  118, 122, 124,        {131, 133},
                    {137, 140}, {143, 146}, {170, 173}, {177, 180}, 183, 198, 199, {282, 285}, 310});
}

bool CResult::IsRmsPeakPossible(std::uint32_t process)
{
    return IsAmong(static_cast<int>(process), {2,
                                               4,
                                               17,
                                               37,
                                               40,
                                               {80, 82},
                                               90,
                                               91,
                                               {100, 116},
                                               118,
                                               119,
                                               {143, 146},
                                               {151, 153},
                                               {155, 158},
                                               {177, 180},
                                               186,
                                               198,
                                               310});
}

} // namespace ZelmResult
