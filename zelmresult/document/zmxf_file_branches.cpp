// The operations that a document forwards to the recordings and settings of its systems.

#include "zelmresult/document/zmxf_file.h"
#include "zelmresult/recordings/record.h"
#include "zelmresult/settings/reglage_data.h"

#include <algorithm>

namespace ZelmResult {

namespace {

// An array from a place on; null for null.
template <class T>
T* From(T* array, std::ptrdiff_t place)
{
    return array != nullptr ? array + place : nullptr;
}

std::uint64_t Ticks(const OFILETIME& time) { return OFileTime::fromFILETIME(time).toOFILETIME(); }

} // namespace

CSysteme* CZMXFFile::SystemOrNext(std::uint16_t index)
{
    return index <= m_systems.size() ? &SystemOrNew(index) : nullptr;
}

// ---- Settings ----

bool CZMXFFile::SetConfig(CConfigData* config, std::uint16_t system)
{
    SystemOrNew(system).SetConfig(config);
    return true;
}

bool CZMXFFile::SetRecord(CRecord* record, std::uint16_t system)
{
    CSysteme* holder = SystemOrNext(system);
    if (holder != nullptr) holder->setRecord(record);
    return holder != nullptr;
}

bool CZMXFFile::SetITrack(CITrack* track, std::uint16_t system)
{
    CSysteme* holder = SystemOrNext(system);
    if (holder != nullptr) holder->AddITrack(track);
    return holder != nullptr;
}

bool CZMXFFile::AddReglage(CReglageData* setting, std::uint16_t system)
{
    CSysteme* holder = SystemOrNext(system);
    if (holder != nullptr) holder->AddReglage(setting);
    return holder != nullptr;
}

CReglageData* CZMXFFile::GetReglageBySystem(const idn::Idn& idn, std::int32_t system) const
{
    const CSysteme* holder = getSystem(system);
    return holder != nullptr ? holder->GetReglage(idn) : nullptr;
}

CReglageData* CZMXFFile::GetReglageByChannel(const idn::Idn& idn, std::int32_t channel) const
{
    return channel < 0 ? nullptr : GetReglageBySystem(idn, channel / kChannelsPerSystem);
}

// ---- Recordings ----

CRecord* CZMXFFile::getRecord(std::uint16_t system) const
{
    const CSysteme* holder = getSystem(system);
    return holder != nullptr ? holder->getRecord() : nullptr;
}

const CRecord* CZMXFFile::FirstRecord() const
{
    const auto found = std::find_if(m_systems.begin(), m_systems.end(),
                                    [](const CSysteme* system) { return system->getRecord() != nullptr; });
    return found == m_systems.end() ? nullptr : (*found)->getRecord();
}

namespace {

// The result of an accessor of a recording, 0 without one.
template <class T>
T Of(const CRecord* record, T (CRecord::*accessor)() const)
{
    return record != nullptr ? (record->*accessor)() : T{};
}

// The result of an operation of a system; null or false without the system.
template <class T, class... Wanted, class... Given>
T Pass(const CSysteme* system, T (CSysteme::*accessor)(Wanted...) const, Given... given)
{
    return system != nullptr ? (system->*accessor)(given...) : T{};
}

template <class... Wanted, class... Given>
bool Pass(CSysteme* system, bool (CSysteme::*update)(Wanted...), const Given&... given)
{
    return system != nullptr && (system->*update)(given...);
}

} // namespace

double CZMXFFile::getSampleFrequency() const { return Of(FirstRecord(), &CRecord::getSampleFrequency); }
std::int32_t CZMXFFile::getNbrRecord() const { return Of(FirstRecord(), &CRecord::getNbrRecord); }
std::int32_t CZMXFFile::getTimedivider() const { return Of(FirstRecord(), &CRecord::getTimedivider); }
std::int32_t CZMXFFile::getBlockSize() const { return Of(FirstRecord(), &CRecord::getBlockSize); }
std::int32_t CZMXFFile::getNbrMarker() const { return Of(FirstRecord(), &CRecord::getNbrMarker); }
std::uint64_t CZMXFFile::getReferenceTime() const { return Of(FirstRecord(), &CRecord::getReferenceTime); }

std::int32_t CZMXFFile::getNbrChannelComp() const
{
    std::int32_t sum = 0;
    for (const CSysteme* system : m_systems) sum += system->getNbrChannelComp();
    return sum;
}

CZMTrackDesc* CZMXFFile::getTrackDesc(std::int32_t channel) const
{
    if (channel < 0) return nullptr;
    return Pass(getSystem(channel / kChannelsPerSystem), &CSysteme::getTrackDesc,
                static_cast<std::int16_t>(channel % kChannelsPerSystem));
}

strTrackDescData* CZMXFFile::getTrackData(std::int32_t channel) const { return getTrackDesc(channel); }

CRecordHeader* CZMXFFile::getRecordHeader(std::uint16_t system) const
{
    return Pass(getSystem(system), &CSysteme::getRecordHeader);
}

const strEnregHeader* CZMXFFile::getRecordHeaderstr(std::uint16_t system) const
{
    return Pass(getSystem(system), &CSysteme::getRecordHeaderstr);
}

CRecordInfo* CZMXFFile::getFirstRecordInfo(std::uint16_t system) const
{
    return Pass(getSystem(system), &CSysteme::getFirstRecordInfo);
}

std::int16_t CZMXFFile::getTrackCount(std::uint16_t system) const
{
    return Pass(getSystem(system), &CSysteme::getTrackCount);
}

bool CZMXFFile::setRecordHeader(const CRecordHeader& header, std::uint16_t system)
{
    return Pass(getSystem(system), &CSysteme::setRecordHeader, header);
}

bool CZMXFFile::setRecordHeaderstr(const strEnregHeader* header, std::uint16_t system)
{
    return Pass(getSystem(system), &CSysteme::setRecordHeaderstr, header);
}

bool CZMXFFile::setNbrRecord(std::int32_t count, std::uint16_t system)
{
    return Pass(getSystem(system), &CSysteme::setNbrRecord, count);
}

bool CZMXFFile::setNbrMarker(std::int32_t count, std::uint16_t system)
{
    return Pass(getSystem(system), &CSysteme::setNbrMarker, count);
}

bool CZMXFFile::setReferenceTime(const OFILETIME& time, std::uint16_t system)
{
    return Pass(getSystem(system), &CSysteme::setReferenceTime, time);
}

bool CZMXFFile::updateRecordLength(std::int64_t length, std::uint16_t system)
{
    return Pass(getSystem(system), &CSysteme::updateRecordLength, length);
}

bool CZMXFFile::AddRecordInfo(CRecordInfo* info, std::uint16_t system)
{
    return Pass(getSystem(system), &CSysteme::AddRecordInfo, info);
}

bool CZMXFFile::AddTrackDesc(CZMTrackDesc* track, std::int32_t index, std::uint16_t system)
{
    return Pass(getSystem(system), &CSysteme::AddTrackDesc, track, index);
}

bool CZMXFFile::updateFileBlocEndNbr(std::int16_t disk, std::int16_t file, std::uint32_t end, std::uint16_t system)
{
    return Pass(getSystem(system), &CSysteme::updateFileBlocEndNbr, disk, file, end);
}

bool CZMXFFile::updateLOCATrackDesc(const std::int32_t* first, const std::int32_t* last, const std::int32_t* blockSize,
                                    std::uint16_t system)
{
    return Pass(getSystem(system), &CSysteme::updateLOCATrackDesc, first, last, blockSize);
}

bool CZMXFFile::updateTrackOverload(const float* min, const float* max, const bool* overload, std::uint16_t system)
{
    return Pass(getSystem(system), &CSysteme::updateTrackOverload, min, max, overload);
}

// Calls the function with each recording and the number of its system, and returns what getNbrChannel returns.
template <class Use>
std::int32_t CZMXFFile::ForEachRecord(Use use) const
{
    std::int32_t sum = 0;
    for (std::size_t system = 0; system < m_systems.size(); ++system) {
        const CRecord* record = m_systems[system]->getRecord();
        sum += (record != nullptr ? std::int32_t{record->getTrackCount()} : 0) - 1;
        if (record != nullptr) use(*record, static_cast<std::int32_t>(system));
    }
    return sum;
}

// Lets each recording write its values after those of the ones before, without gaps.
template <class Write>
std::int32_t CZMXFFile::Gather(Write write) const
{
    std::ptrdiff_t next = 0;
    return ForEachRecord([&](const CRecord& record, std::int32_t /*system*/) {
        std::int16_t index = 0;
        write(record, next, &index);
        next += index;
    });
}

std::int32_t CZMXFFile::getNbrChannel() const
{
    return ForEachRecord([](const CRecord& /*record*/, std::int32_t /*system*/) {});
}

std::int32_t CZMXFFile::getNbrChannel(std::int16_t* marks) const
{
    return ForEachRecord([marks](const CRecord& record, std::int32_t system) {
        const std::int32_t tracks = std::min<std::int32_t>(record.getTrackCount(), kChannelsPerSystem);
        std::fill_n(marks + std::ptrdiff_t{system} * kChannelsPerSystem, tracks, std::int16_t{1});
    });
}

std::int32_t CZMXFFile::getTrackFreq(float* out) const
{
    std::ptrdiff_t next = 0;
    for (const CSysteme* system : m_systems) {
        std::int16_t index = 0;
        if (const CRecord* record = system->getRecord(); record != nullptr)
            (void)record->getTrackFreq(out + next, &index);
        next += index + kChannelsPerSystem;
    }
    return getNbrChannel();
}

std::int32_t CZMXFFile::getTrackBlockSize(std::int32_t* out) const
{
    return Gather([&](const CRecord& record, std::ptrdiff_t from, std::int16_t* index) {
        (void)record.getTrackBlockSize(out + from, index);
    });
}

std::int32_t CZMXFFile::getTrackBlockFirst(std::int32_t* out) const
{
    return Gather([&](const CRecord& record, std::ptrdiff_t from, std::int16_t* index) {
        (void)record.getTrackBlockFirst(out + from, index);
    });
}

std::int32_t CZMXFFile::getTrackFirstOffset(std::int32_t* out) const
{
    return Gather([&](const CRecord& record, std::ptrdiff_t from, std::int16_t* index) {
        (void)record.getTrackFirstOffset(out + from, index);
    });
}

std::int32_t CZMXFFile::getYUniData(float* sensitivity, float* convLogToVolt, float* offset, float* coeffA,
                                    float* coeffB) const
{
    return Gather([&](const CRecord& record, std::ptrdiff_t from, std::int16_t* index) {
        (void)record.getYUniData(From(sensitivity, from), From(convLogToVolt, from), From(offset, from),
                                 From(coeffA, from), From(coeffB, from), index);
    });
}

std::int32_t CZMXFFile::getTrackFormat(std::int32_t* format, std::int32_t* type, std::int32_t* domain,
                                       std::int32_t* factor) const
{
    return Gather([&](const CRecord& record, std::ptrdiff_t from, std::int16_t* index) {
        (void)record.getTrackFormat(From(format, from), From(type, from), From(domain, from), From(factor, from),
                                    index);
    });
}

bool CZMXFFile::ChangeRecordDateAndSave(const OSYSTEMTIME& date)
{
    CRecord* record = getRecord(0);
    OFILETIME now;
    if (record == nullptr || !SystemTimeToFileTime(date, now)) return false;
    CRecordHeader header = record->getRecordHeader();
    OFILETIME former = now;
    (void)SystemTimeToFileTime(header.getRecordHeaderStr().RecordDate, former);
    const std::uint64_t moved = header.getReferenceTime() + (Ticks(now) - Ticks(former)); // wraps as it should
    header.setReferenceTime(OFileTime::fromOFILETIME(moved).toFILETIME());
    header.setRecordDate(date);
    record->setRecordHeader(header);
    return Save(m_filename.c_str());
}

} // namespace ZelmResult
