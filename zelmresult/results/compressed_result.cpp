#include "zelmresult/results/compressed_result.h"

#include "zelmresult/results/result_copy.h"
#include "zelmresult/storage/record_io.h"
#include "zelmresult/support/numbers.h"
#include "zelmresult/support/text.h"

#include <cmath>

namespace ZelmResult {

// ---- CCompressedAbstract ----

CCompressedAbstract::CCompressedAbstract(std::uint32_t process, std::int32_t size, SignalType type)
    : CRegVector(process, size, 0, type, 0, true)
{
}

CResult& CCompressedAbstract::operator=(CResult* other)
{
    if (other == nullptr || other == this) return *this;
    CRegVector::operator=(other);
    if (const auto* compressed = dynamic_cast<const CCompressedAbstract*>(other); compressed != nullptr) {
        m_compSize = compressed->m_compSize;
        m_samplingFrequency = compressed->m_samplingFrequency;
        m_realXMax = compressed->m_realXMax;
    }
    return *this;
}

CResult* CCompressedAbstract::GetCopy() { return CopyOf(*this); }

bool CCompressedAbstract::operator==(const CCompressedAbstract& other) const
{
    return static_cast<const CRegXAxis&>(*this) == static_cast<const CRegXAxis&>(other) &&
           m_compSize == other.m_compSize && m_samplingFrequency == other.m_samplingFrequency &&
           m_realXMax == other.m_realXMax;
}

bool CCompressedAbstract::HoldSame(const FloatArray& a, const FloatArray& b, std::int32_t n)
{
    for (std::int32_t i = 0; i < n; ++i)
        if (a.At(i) != b.At(i)) return false;
    return true;
}

void CCompressedAbstract::dumpEnvelope(CMmioFile& file, const FloatArray& up, const FloatArray& down) const
{
    const auto sample = [&file, this](const FloatArray& array, const wstring& name) {
        wstring line = Concat(name, u"[0] : ", ToScientific(array.At(0)));
        for (std::int32_t quarter = 1; quarter <= 4; ++quarter) {
            const std::int32_t i = quarter < 4 ? m_size / 4 * quarter : m_size - 1;
            line += Concat(u", ", name, u"[", i, u"] :", ToScientific(array.At(i)));
        }
        file.AddStringToDebugFile(line);
    };
    sample(up, u"UpValue");
    sample(down, u"DownValue");
}

// ---- CCompressedVector ----

CCompressedVector::CCompressedVector() { m_resultType = SizeType::CompressedVector; }

CCompressedVector::CCompressedVector(std::uint32_t process, std::int32_t size, SignalType type)
    : StoredRecord(process, size, type)
{
    m_resultType = SizeType::CompressedVector;
    CCompressedVector::ReAlloc();
}

CCompressedVector::~CCompressedVector() { FreeEnvelopes(); }

void CCompressedVector::FreeEnvelopes()
{
    m_up.Free();
    m_down.Free();
}

void CCompressedVector::ReAlloc()
{
    FreeEnvelopes();
    if (m_size < 1) return;
    m_up.Allocate(m_size);
    m_down.Allocate(m_size);
}

void CCompressedVector::TransferResult(CCompressedVector* target) const
{
    if (target == nullptr || target == this || target->m_size != m_size) return;
    for (const auto& [from, to] : {std::pair(m_up, target->m_up), std::pair(m_down, target->m_down)})
        from.CopyTo(to.data, std::min(StoredPoints(), to.count));
}

bool CCompressedVector::operator==(const CCompressedVector& other) const
{
    return m_size == other.m_size && CCompressedAbstract::operator==(other) && m_compFactor == other.m_compFactor &&
           m_currentDuration == other.m_currentDuration && HoldSame(m_up, other.m_up, m_size) &&
           HoldSame(m_down, other.m_down, m_size);
}

CResult& CCompressedVector::operator=(CResult* other)
{
    if (other == nullptr) return *this;
    const auto* vector = dynamic_cast<const CCompressedVector*>(other);
    if (other == this) {
        FreeEnvelopes(); // so a copy onto itself loses its envelopes, as always
        return *this;
    }
    FreeEnvelopes();
    CCompressedAbstract::operator=(other);
    if (vector == nullptr) return *this;
    m_compFactor = vector->m_compFactor;
    m_currentDuration = vector->m_currentDuration;
    if (vector->m_up.data != nullptr) m_up = vector->m_up.Copy(m_size);
    if (vector->m_down.data != nullptr) m_down = vector->m_down.Copy(m_size);
    return *this;
}

CResult* CCompressedVector::GetCopy() { return CopyOf(*this); }

template <class Io, class Self>
bool CCompressedVector::fields(Io& io, Self& v)
{
    if (!io.record(kRecordName, newest{1})) return io.ok();
    io.template base<CRegVector>(v);
    io.i32("CompFactor", v.m_compFactor);
    io.i32("CompSize", v.m_compSize);
    io.accepts("CompSize", v, [](const auto& self, CMmioFile&) { return self.IsCompSizeLegal(); });
    io.f32("m_fSamplingFrequency", v.m_samplingFrequency);
    io.f32s("TabUp", v.m_up.data, v.m_up.count, v.m_compSize);
    io.f32s("TabDown", v.m_down.data, v.m_down.count, v.m_compSize);
    io.dump([] { return wstring(u"CCompressedVector"); });
    io.dump([&v] {
        return Concat(u"CompFactor : ", v.m_compFactor, u", CompSize : ", v.m_compSize, u" , m_fSamplingFrequency : ",
                      ToScientific(v.m_samplingFrequency));
    });
    io.dumpLines(v, [](const auto& self, CMmioFile& file) { self.dumpEnvelope(file, self.m_up, self.m_down); });
    io.onRead(v, [](auto& self) { self.m_realXMax = self.m_currentDuration = self.GetXMax(); });
    return io.ok();
}

bool CCompressedVector::Write(CMmioFile* file)
{
    return WriteInUse(m_currentDuration, [&] { return StoredRecord::Write(file); });
}

template class StoredRecord<CCompressedVector, CCompressedAbstract>;

// ---- CCompressedScalar ----

CCompressedScalar::CCompressedScalar() { m_resultType = SizeType::CompressedScalar; }

CCompressedScalar::CCompressedScalar(std::uint32_t process, std::int32_t size, SignalType type)
    : StoredRecord(process, size, type)
{
    m_resultType = SizeType::CompressedScalar;
    CCompressedScalar::ReAlloc();
}

CCompressedScalar::~CCompressedScalar() { FreeTables(); }

void CCompressedScalar::FreeTables()
{
    for (FloatArray& table : m_tables) table.Free();
}

void CCompressedScalar::ReAlloc()
{
    FreeTables();
    if (m_size < 1) return;
    for (FloatArray& table : m_tables) table.Allocate(m_size);
}

float CCompressedScalar::GetComputedScalar(OffsetScalarArray table) const
{
    const auto place = static_cast<std::size_t>(table);
    return place < kTables ? static_cast<float>(m_computed[place]) : 0.0F;
}

void CCompressedScalar::DropOldest(std::int32_t points)
{
    for (const FloatArray& table : m_tables)
        if (table.data != nullptr && points < m_compSize)
            std::copy(table.data + points, table.data + m_compSize, table.data);
    m_compSize = std::max(m_compSize - points, 0);
}

void CCompressedScalar::CopyCompressedScalar(const float* values, std::int32_t n, std::int32_t writeSize, bool append)
{
    const std::int32_t room = std::min(std::max(m_size, 0), m_tables.front().count);
    std::int32_t count = std::max(n, 0) / static_cast<std::int32_t>(kTables);
    if (!append) {
        m_compSize = 0;
        m_realXMax = 0.0F;
    }
    m_compSize = std::min(StoredPoints(), room);
    m_writeSize = writeSize;
    if (count > room) { // the points before are dropped
        values += std::ptrdiff_t{count - room} * static_cast<std::ptrdiff_t>(kTables);
        count = room;
    }
    if (m_compSize > room - count) DropOldest(m_compSize - (room - count));
    for (std::int32_t i = 0; i < count; ++i)
        for (const FloatArray& table : m_tables) table.data[m_compSize + i] = *values++;
    m_compSize += count;
    m_realXMax = m_samplingFrequency > 0.0F ? static_cast<float>(m_compSize) / m_samplingFrequency : 0.0F;
}

bool CCompressedScalar::ComputeScalar(float from, float to, float now)
{
    if (!(m_samplingFrequency > 0.0F)) return false;
    const float end = m_realXMax;
    const float skipped = static_cast<float>(m_writeSize) / m_samplingFrequency;
    const float start = now >= end && skipped > now - end ? now - end : skipped;
    const std::int32_t first = std::max(Truncated(m_samplingFrequency * (from - start)), 0);
    const std::int32_t last = std::min(Truncated(m_samplingFrequency * (to - start)), StoredPoints() - 1);
    if (!(start <= to && from < end + start && from < to) || first >= last) return false; // also for NaNs
    constexpr double none = 1e38;
    m_computed = {-none, none};
    for (std::int32_t i = first; i <= last; ++i) {
        m_computed[OffsetUp] = std::max(m_computed[OffsetUp], static_cast<double>(Table(OffsetUp).At(i)));
        m_computed[OffsetDown] = std::min(m_computed[OffsetDown], static_cast<double>(Table(OffsetDown).At(i)));
        for (std::size_t table = OffsetMean2; table < kTables; ++table)
            m_computed[table] += static_cast<double>(m_tables[table].At(i));
    }
    const double share = 1.0 / (static_cast<double>(last) - first + 1.0);
    for (std::size_t table = OffsetMean2; table < kTables; ++table) m_computed[table] *= share;
    return true;
}

void CCompressedScalar::CopyFrom(const CCompressedScalar* source)
{
    if (source == nullptr || source == this || source->m_size != m_size) return;
    m_compSize = std::min(source->m_compSize, m_size);
    m_writeSize = source->m_writeSize;
    m_realXMax = source->m_realXMax;
    m_samplingFrequency = source->m_samplingFrequency;
    for (std::size_t i = 0; i < kTables; ++i)
        source->m_tables[i].CopyTo(m_tables[i].data, std::min(StoredPoints(), m_tables[i].count));
}

bool CCompressedScalar::operator==(const CCompressedScalar& other) const
{
    if (m_size != other.m_size || !CCompressedAbstract::operator==(other)) return false;
    for (std::size_t i = 0; i < kTables; ++i)
        if (!HoldSame(m_tables[i], other.m_tables[i], m_size)) return false;
    return true;
}

CResult& CCompressedScalar::operator=(CResult* other)
{
    if (other == nullptr || other == this) return *this;
    FreeTables();
    CCompressedAbstract::operator=(other);
    const auto* scalar = dynamic_cast<const CCompressedScalar*>(other);
    if (scalar == nullptr) return *this;
    m_writeSize = scalar->m_writeSize;
    for (std::size_t i = 0; i < kTables; ++i)
        if (scalar->m_tables[i].data != nullptr) m_tables[i] = scalar->m_tables[i].Copy(m_size);
    return *this;
}

CResult* CCompressedScalar::GetCopy() { return CopyOf(*this); }

template <class Io, class Self>
bool CCompressedScalar::fields(Io& io, Self& v)
{
    static constexpr std::array<const char*, kTables> names = {"table 0", "table 1", "table 2",
                                                               "table 3", "table 4", "table 5"};
    if (!io.record(kRecordName, newest{1})) return io.ok();
    io.template base<CRegVector>(v);
    io.i32("CompSize", v.m_compSize);
    io.accepts("CompSize", v, [](const auto& self, CMmioFile&) { return self.IsCompSizeLegal(); });
    io.i32("WriteSize", v.m_writeSize);
    io.f32("m_fSamplingFrequency", v.m_samplingFrequency);
    for (std::size_t i = 0; i < kTables; ++i) io.f32s(names[i], v.m_tables[i].data, v.m_tables[i].count, v.m_compSize);
    io.dump([] { return wstring(u"CCompressedScalar"); });
    io.dump([&v] {
        return Concat(u"CompSize : ", v.m_compSize, u" , m_fSamplingFrequency : ", ToScientific(v.m_samplingFrequency));
    });
    io.dumpLines(
        v, [](const auto& self, CMmioFile& file) { self.dumpEnvelope(file, self.m_tables[0], self.m_tables[1]); });
    io.onRead(v, [](auto& self) {
        if (self.m_samplingFrequency > 0.0F)
            self.SetXMax(static_cast<float>(self.m_compSize) / self.m_samplingFrequency);
        self.m_realXMax = self.GetXMax();
    });
    return io.ok();
}

bool CCompressedScalar::Write(CMmioFile* file)
{
    return WriteInUse(m_realXMax, [&] { return StoredRecord::Write(file); });
}

template class StoredRecord<CCompressedScalar, CCompressedAbstract>;

} // namespace ZelmResult
