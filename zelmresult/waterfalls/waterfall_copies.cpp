// Copies of waterfalls.

#include "zelmresult/results/result_copy.h"
#include "zelmresult/waterfalls/waterfall.h"

#include <algorithm>

namespace ZelmResult {

// All but the slices and the table of block numbers.
void CWaterfall::CopyOwnFields(CWaterfall& other)
{
    m_zSize = other.m_zSize;
    m_complexDim = other.m_complexDim;
    m_imMax = other.m_imMax;
    m_imMin = other.m_imMin;
    m_realMax = other.m_realMax;
    m_realMin = other.m_realMin;
    m_zMagnitude = other.m_zMagnitude;
    m_xMagnitude = other.m_xMagnitude;
    m_xMax = other.m_xMax;
    m_xMin = other.m_xMin;
    m_pointCount = other.m_pointCount;
    m_copiesLostSlices = other.HasLostSlices();
    CVector* shown = other.m_tempVector.get();
    m_tempVector.reset(shown != nullptr ? dynamic_cast<CVector*>(shown->GetCopy()) : nullptr);
    if (m_tempVector != nullptr) m_tempVector->ReInitPtrTab(); // it would show the other's slices
}

CResult& CWaterfall::operator=(CResult* other)
{
    if (other == nullptr || other == this) return *this;
    ClearTab();
    CResult::operator=(other);
    if (auto* axis = dynamic_cast<CReferencedAxis*>(other); axis != nullptr) CReferencedAxis::operator=(axis);
    auto* waterfall = dynamic_cast<CWaterfall*>(other);
    if (waterfall == nullptr) return *this;
    CopyBlocNumbersOf(*waterfall, m_size); // as many as a slice has points, not as there are slices
    CopyOwnFields(*waterfall);
    // A waterfall from a file has as many slots as its highest block number, and few slices may be far apart.
    constexpr std::int64_t alwaysMade = 1 << 16; // points
    const std::int64_t held = waterfall->IsAllocated() ? waterfall->m_buffers[0]->GetZSize() : 0;
    if (std::int64_t{m_zSize} * m_pointCount <= std::max(alwaysMade, 16 * held * m_pointCount))
        CWaterfallBufferFactory::FillAndAllocateArray(m_buffers, m_complexDim, m_pointCount, m_zSize);
    for (std::int32_t i = 0; i < std::min(m_buffers.GetCount(), waterfall->m_buffers.GetCount()); ++i)
        m_buffers[i]->CopyWaterfallBufferFrom(*waterfall->m_buffers[i]);
    return *this;
}

CResult* CWaterfall::GetCopy() { return CopyOf(*this); }

void CWaterfall::CopyWhole(CWaterfall& other)
{
    CResult::operator=(static_cast<CResult*>(&other));
    CReferencedAxis::operator=(static_cast<CReferencedAxis*>(&other));
    CopyBlocNumbersOf(other, INT32_MAX);
    CopyOwnFields(other);
    for (std::int32_t i = 0; i < other.m_buffers.GetCount(); ++i) {
        CWaterfallBuffer& source = *other.m_buffers[i];
        m_buffers.Append(CWaterfallBufferFactory::CreateAndAllocate(source.GetRealSize(), source.GetZSize()).release());
        m_buffers[i]->SetZSparseSize(source.GetZSparseSize());
        m_buffers[i]->CopyWaterfallBufferFrom(source);
    }
}

CWaterfall* CWaterfall::GetWholeCopy()
{
    auto copy = std::make_unique<CWaterfall>();
    copy->CopyWhole(*this);
    return copy.release();
}

} // namespace ZelmResult
