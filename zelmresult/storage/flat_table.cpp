#include "zelmresult/storage/flat_table.h"

#include <random>

namespace ZelmResult {

const FlatTable::Multipliers& FlatTable::Drawn()
{
    static const Multipliers drawn = [] {
        std::random_device device;
        const auto odd = [&] { return (std::uint64_t{device()} << 32U | device()) | 1U; };
        const std::uint64_t first = odd();
        return Multipliers{first, odd()};
    }();
    return drawn;
}

} // namespace ZelmResult
