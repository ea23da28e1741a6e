// The operations that a system forwards to its recording.

#include "zelmresult/document/systeme.h"
#include "zelmresult/recordings/record.h"

namespace ZelmResult {

namespace {

// The result of an accessor; without a recording 0, false or null.
template <class T, class... Wanted, class... Given>
T From(const CRecord* record, T (CRecord::*accessor)(Wanted...) const, Given... given)
{
    return record != nullptr ? (record->*accessor)(given...) : T{};
}

// Does something that can't fail; false without a recording.
template <class... Wanted, class... Given>
bool Do(CRecord* record, void (CRecord::*update)(Wanted...), const Given&... given)
{
    if (record != nullptr) (record->*update)(given...);
    return record != nullptr;
}

template <class... Wanted, class... Given>
bool Do(CRecord* record, bool (CRecord::*update)(Wanted...), const Given&... given)
{
    return record != nullptr && (record->*update)(given...);
}

} // namespace

// ---- Parts ----

const std::vector<CRecordInfo*>& CSysteme::recordInfos() const
{
    static const std::vector<CRecordInfo*> none;
    return m_record != nullptr ? m_record->recordInfos() : none;
}

const std::map<std::int32_t, CZMTrackDesc*>& CSysteme::tracks() const
{
    static const std::map<std::int32_t, CZMTrackDesc*> none;
    return m_record != nullptr ? m_record->tracks() : none;
}

// ---- Header ----

CRecordHeader* CSysteme::getRecordHeader() const
{
    return m_record != nullptr ? &m_record->getRecordHeader() : nullptr;
}

const strEnregHeader* CSysteme::getRecordHeaderstr() const
{
    return m_record != nullptr ? &m_record->getRecordHeaderstr() : nullptr;
}

bool CSysteme::setRecordHeader(const CRecordHeader& header) { return Do(m_record, &CRecord::setRecordHeader, header); }
bool CSysteme::setRecordHeaderstr(const strEnregHeader* header)
{
    return Do(m_record, &CRecord::setRecordHeaderstr, header);
}
std::int32_t CSysteme::getTimedivider() const { return From(m_record, &CRecord::getTimedivider); }
double CSysteme::getSampleFrequency() const { return From(m_record, &CRecord::getSampleFrequency); }
std::int32_t CSysteme::getBlockSize() const { return From(m_record, &CRecord::getBlockSize); }
std::int16_t CSysteme::getNbrChannelComp() const { return From(m_record, &CRecord::getNbrChannelComp); }
std::int32_t CSysteme::getNbrRecord() const { return From(m_record, &CRecord::getNbrRecord); }
bool CSysteme::setNbrRecord(std::int32_t count) { return Do(m_record, &CRecord::setNbrRecord, count); }
std::int32_t CSysteme::getNbrMarker() const { return From(m_record, &CRecord::getNbrMarker); }
bool CSysteme::setNbrMarker(std::int32_t count) { return Do(m_record, &CRecord::setNbrMarker, count); }
std::uint64_t CSysteme::getReferenceTime() const { return From(m_record, &CRecord::getReferenceTime); }
bool CSysteme::setReferenceTime(const OFILETIME& time) { return Do(m_record, &CRecord::setReferenceTime, time); }
bool CSysteme::updateRecordLength(std::int64_t length) { return Do(m_record, &CRecord::updateRecordLength, length); }

// ---- Disks ----

bool CSysteme::AddRecordInfo(CRecordInfo* info) { return Do(m_record, &CRecord::AddRecordInfo, info); }
CRecordInfo* CSysteme::getFirstRecordInfo() const { return From(m_record, &CRecord::getFirstRecordInfo); }
bool CSysteme::updateFileBlocEndNbr(std::int16_t disk, std::int16_t file, std::uint32_t end)
{
    return Do(m_record, &CRecord::updateFileBlocEndNbr, disk, file, end);
}

// ---- Tracks ----

std::int16_t CSysteme::getTrackCount() const { return From(m_record, &CRecord::getTrackCount); }
CZMTrackDesc* CSysteme::getTrackDesc(std::int16_t index) const { return From(m_record, &CRecord::getTrackDesc, index); }
strTrackDescData* CSysteme::getTrackData(std::int16_t index) const
{
    return From(m_record, &CRecord::getTrackData, index);
}
bool CSysteme::AddTrackDesc(CZMTrackDesc* track, std::int32_t index)
{
    return Do(m_record, &CRecord::AddTrackDesc, track, index);
}

std::int32_t CSysteme::getTrackFreq(float* out, std::int16_t* index) const
{
    return From(m_record, &CRecord::getTrackFreq, out, index);
}

std::int32_t CSysteme::getTrackBlockSize(std::int32_t* out, std::int16_t* index) const
{
    return From(m_record, &CRecord::getTrackBlockSize, out, index);
}

std::int32_t CSysteme::getTrackBlockFirst(std::int32_t* out, std::int16_t* index) const
{
    return From(m_record, &CRecord::getTrackBlockFirst, out, index);
}

std::int32_t CSysteme::getTrackFirstOffset(std::int32_t* out, std::int16_t* index) const
{
    return From(m_record, &CRecord::getTrackFirstOffset, out, index);
}

std::int32_t CSysteme::getYUniData(float* sensitivity, float* convLogToVolt, float* offset, float* coeffA,
                                   float* coeffB, std::int16_t* index) const
{
    return From(m_record, &CRecord::getYUniData, sensitivity, convLogToVolt, offset, coeffA, coeffB, index);
}

std::int32_t CSysteme::getTrackFormat(std::int32_t* format, std::int32_t* type, std::int32_t* domain,
                                      std::int32_t* factor, std::int16_t* index) const
{
    return From(m_record, &CRecord::getTrackFormat, format, type, domain, factor, index);
}

bool CSysteme::updateLOCATrackDesc(const std::int32_t* first, const std::int32_t* last, const std::int32_t* blockSize)
{
    return Do(m_record, &CRecord::updateLOCATrackDesc, first, last, blockSize);
}

bool CSysteme::updateTrackOverload(const float* min, const float* max, const bool* overload)
{
    return Do(m_record, &CRecord::updateTrackOverload, min, max, overload);
}

} // namespace ZelmResult
