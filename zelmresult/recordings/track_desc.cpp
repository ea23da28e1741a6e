#include "zelmresult/recordings/track_desc.h"

#include "zelmresult/quantities/grandeur.h"

#include <algorithm>

namespace ZelmResult {

namespace {

// A copy of the table of a track; null when it has none.
float* CopyOfCorrection(const strTrackDescData& track)
{
    if (track.SizeCorr < 1 || track.CorrData == nullptr) return nullptr;
    const auto count = static_cast<std::size_t>(track.SizeCorr) * static_cast<std::size_t>(track.FloatsPerPoint());
    auto* copy = new float[count];
    std::copy_n(track.CorrData, count, copy);
    return copy;
}

// Copies all values of a track into another, and frees the table that it had.
void CopyDeep(const strTrackDescData& from, strTrackDescData& to)
{
    if (&from == &to) return;
    float* table = CopyOfCorrection(from);
    delete[] to.CorrData;
    to = from;
    to.CorrData = table;
}

template <class T>
void Put(T* target, const std::int16_t* index, T value)
{
    if (target != nullptr) target[*index] = value;
}

} // namespace

CZMTrackDesc::~CZMTrackDesc()
{
    for (const std::vector<idn::Idn>* list : m_links) delete list;
    FreeCorrection();
}

void CZMTrackDesc::FreeCorrection()
{
    delete[] CorrData;
    CorrData = nullptr;
}

std::int32_t CZMTrackDesc::getData(strTrackDescData* out) const
{
    if (out != nullptr) CopyDeep(*this, *out);
    return 0;
}

std::int32_t CZMTrackDesc::setData(const strTrackDescData* in)
{
    if (in != nullptr) CopyDeep(*in, *this);
    return 0;
}

std::int32_t CZMTrackDesc::getTrackFormat(std::int32_t* format, std::int32_t* type, std::int32_t* domain,
                                          std::int32_t* factor, const std::int16_t* index) const
{
    Put(format, index, Format);
    Put(type, index, Type);
    Put(domain, index, Domain);
    Put(factor, index, CompressionFactor);
    return 0;
}

std::int32_t CZMTrackDesc::getYUniData(float* sensitivity, float* convLogToVolt, float* offset, float* coeffA,
                                       float* coeffB, const std::int16_t* index) const
{
    const CUnite* unit = YMagnitude != nullptr ? YMagnitude->GetUniteCourante() : nullptr;
    Put(sensitivity, index, Sensitivity);
    Put(convLogToVolt, index, ConvLogToVolt);
    Put(offset, index, YOffset / Sensitivity);
    Put(coeffA, index, unit != nullptr ? unit->GetCoeffA() : YCoeffDefault);
    Put(coeffB, index, unit != nullptr ? unit->GetCoeffB() : 0.0F);
    return 0;
}

bool CZMTrackDesc::updateLOCA(std::int32_t first, std::int32_t last, std::int32_t blockSize, std::int32_t offset)
{
    FirstBlock = first;
    LastBlock = last;
    BlockSize = blockSize;
    Offset = offset;
    SetHasChunk(TrackChunk::Loca, true);
    return true;
}

bool CZMTrackDesc::updateTrackOverload(float min, float max, bool overload)
{
    Min = min;
    Max = max;
    Overload = overload;
    SetHasChunk(TrackChunk::Ovld, true);
    return true;
}

bool CZMTrackDesc::addLIDN(std::vector<idn::Idn>* list)
{
    (void)m_links.Add(list);
    return true;
}

void CZMTrackDesc::AddInvolvedGrandeur(std::map<CGrandeur*, int>& counts) const
{
    for (CGrandeur* quantity : {XMagnitude, YMagnitude, VMagnitude}) CGrandeur::AddInvolved(quantity, counts);
}

void CZMTrackDesc::ReplaceGrandeur(const CGrandeurFichier* old, CGrandeur* replacement)
{
    for (CGrandeur** quantity : {&XMagnitude, &YMagnitude, &VMagnitude})
        CGrandeur::Replace(*quantity, old, replacement);
}

} // namespace ZelmResult
