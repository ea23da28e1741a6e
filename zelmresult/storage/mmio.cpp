#include "zelmresult/storage/mmio.h"

#include <algorithm>

namespace ZelmResult {

std::int64_t CMmio::BytesLeft()
{
    OMMIOINFO info;
    if (ommioGetInfo(&info) != 0) return 0;
    const std::int64_t end = ommioSeek(0, OMMIO_SEEK_END);
    if (ommioSeek(info.lDiskOffset, OMMIO_SEEK_SET) == -1) return 0;
    return std::max<std::int64_t>(0, end - info.lDiskOffset);
}

} // namespace ZelmResult
