#include "zelmresult/storage/read_bounds.h"

namespace ZelmResult {

namespace {

// A short read of a block up to this size is a success.
constexpr std::uint64_t kAlwaysRoom = std::uint64_t{256} * 1024;

} // namespace

bool ReadBounds::RoomFor(CMmio& backend, std::uint64_t count, std::size_t elementSize)
{
    const bool isCountable =
        count <= std::uint64_t{0x7FFFFFFF} && (elementSize == 0 || count <= UINT64_MAX / elementSize);
    const std::uint64_t bytes = isCountable ? count * elementSize : UINT64_MAX;
    if (bytes > kAlwaysRoom && bytes > static_cast<std::uint64_t>(backend.BytesLeft()))
        return Refuse(backend, Refusal::Bound::BytesLeft);
    return Charge(backend, bytes);
}

bool ReadBounds::Charge(CMmio& backend, std::uint64_t bytes)
{
    return m_budget.Charge(bytes) || Refuse(backend, Refusal::Bound::Memory);
}

bool ReadBounds::Refuse(CMmio& backend, Refusal::Bound bound)
{
    if (m_refusal.bound != Refusal::Bound::None) return false;
    OMMIOINFO info;
    m_refusal = {bound, m_lastEntered, backend.ommioGetInfo(&info) == 0 ? info.lDiskOffset : -1};
    return false;
}

} // namespace ZelmResult
