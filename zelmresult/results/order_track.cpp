#include "zelmresult/results/order_track.h"

#include "zelmresult/results/result_copy.h"
#include "zelmresult/storage/record_io.h"
#include "zelmresult/support/numbers.h"
#include "zelmresult/support/text.h"

#include <algorithm>

namespace ZelmResult {

namespace {

constexpr std::int64_t kMostValues = INT32_MAX / 4; // of a table, whose bytes a file can address

std::int64_t Product(std::int32_t a, std::int32_t b) { return std::int64_t{a} * b; }
// The values of a table; none for a number below 0.
std::int64_t ValuesOf(std::int32_t a, std::int32_t b) { return a < 0 || b < 0 ? 0 : Product(a, b); }
bool IsTable(std::int64_t values) { return values >= 0 && values <= kMostValues; }
// The magnitude of a number, limited to the range of an int32.
std::int32_t FromZero(std::int32_t n) { return n < 0 ? -std::max(n, -INT32_MAX) : n; }

} // namespace

// ---- COrderTracking ----

COrderTracking::COrderTracking(std::uint32_t process, std::int32_t size, std::int32_t nbOrder, SignalType type)
    : StoredRecord(process, size, type, 0), m_nbOrder(nbOrder)
{
    COrderTracking::ReAlloc();
}

void COrderTracking::ReAlloc()
{
    const std::int64_t wanted = Product(m_size, m_nbOrder);
    const auto values = static_cast<std::size_t>(IsTable(wanted) ? wanted : 0); // missing values read as zeros
    m_real.assign(values, 0.0F);
    m_imaginary.assign(m_complexType == SignalType::Complex ? values : 0, 0.0F);
}

void COrderTracking::CopyTable(const Table& table, float* target, std::int32_t a, std::int32_t b)
{
    const std::int64_t wanted = ValuesOf(a, b);
    const std::int64_t held = std::min<std::int64_t>(wanted, std::ssize(table));
    std::copy_n(table.begin(), held, target);
    std::fill_n(target + held, wanted - held, 0.0F);
}

void COrderTracking::SetTables(std::int32_t nbOrder, std::int32_t filled, const float* real, const float* imaginary)
{
    m_nbOrder = nbOrder;
    m_filled = filled;
    const auto values = static_cast<std::size_t>(ValuesOf(nbOrder, filled));
    m_real.assign(real, real + values);
    m_imaginary.assign(values, 0.0F);
    if (imaginary != nullptr) m_imaginary.assign(imaginary, imaginary + values);
}

CResult& COrderTracking::operator=(CResult* other)
{
    if (other == nullptr || other == this) return *this;
    m_real.clear();
    m_imaginary.clear();
    CResult::operator=(other);
    const auto* track = dynamic_cast<const COrderTracking*>(other);
    if (track == nullptr) return *this;
    m_realMax = track->m_realMax;
    m_realMin = track->m_realMin;
    m_imMax = track->m_imMax;
    // Copies were always made like this, and hosts depend on it.
    m_imMin = track->m_imMax;
    m_nbOrder = m_filled = Truncated(track->m_imMax);
    const auto copy = [this](const Table& table) {
        const auto held = std::min<std::ptrdiff_t>(std::max(m_size, 0), std::ssize(table));
        return Table(table.begin(), table.begin() + held);
    };
    m_real = copy(track->m_real);
    m_imaginary = copy(track->m_imaginary);
    return *this;
}

// Sizes the tables from the two numbers that were just read.
bool COrderTracking::MakeRoom(CMmioFile& file)
{
    const std::int64_t values = Product(m_nbOrder, m_filled);
    if (!IsTable(values) || !file.RoomFor(static_cast<std::uint64_t>(values), 2 * sizeof(float))) return false;
    m_real.assign(static_cast<std::size_t>(values), 0.0F);
    m_imaginary.assign(static_cast<std::size_t>(values), 0.0F);
    return true;
}

template <class Io, class Self>
bool COrderTracking::fields(Io& io, Self& v)
{
    if (!io.record(kRecordName, newest{1})) return io.ok();
    io.template base<CResult>(v);
    io.i32("NbOrder", v.m_nbOrder);
    io.i32("Filled", v.m_filled);
    // Charges also what a host allocates by Size, by the orders or by the points. A size below 0 fails.
    io.grows("Size", v.m_size < 0 ? -1 : std::max({v.m_size, FromZero(v.m_nbOrder), FromZero(v.m_filled)}),
             sizeof(float));
    io.accepts("Filled", v, &COrderTracking::MakeRoom);
    const std::int64_t values = Product(v.m_nbOrder, v.m_filled);
    io.valid("Filled", IsTable(values));
    const auto count = static_cast<std::int32_t>(values);
    io.f32s("real table", v.m_real.data(), static_cast<std::int32_t>(v.m_real.size()), count);
    io.f32s("imaginary table", v.m_imaginary.data(), static_cast<std::int32_t>(v.m_imaginary.size()), count);
    io.f32("RealMax", v.m_realMax);
    io.f32("RealMin", v.m_realMin);
    io.f32("ImMax", v.m_imMax);
    io.f32("ImMin", v.m_imMin);
    io.dump([] { return wstring(u"COrderTracking"); });
    return io.ok();
}

template class StoredRecord<COrderTracking, CResult>;

// ---- CRegOrderTrack ----

CRegOrderTrack::CRegOrderTrack(std::uint32_t process, std::int32_t size, float /*xMin*/, float /*xMax*/,
                               std::uint32_t /*xnOctave*/, SignalType nbOrder)
    : StoredRecord(process, size, static_cast<std::int32_t>(nbOrder), SignalType::Real)
{
    m_resultType = SizeType::RegOrderTrack;
}

void CRegOrderTrack::AddInvolvedGrandeur(std::map<CGrandeur*, int>& counts) const
{
    CResult::AddInvolvedGrandeur(counts);
    CRegXAxis::AddInvolvedGrandeur(counts);
}

void CRegOrderTrack::ReplaceGrandeur(CGrandeurFichier* old, CGrandeur* replacement)
{
    CResult::ReplaceGrandeur(old, replacement);
    CRegXAxis::ReplaceGrandeur(old, replacement);
}

CResult& CRegOrderTrack::operator=(CResult* other)
{
    if (other == nullptr || other == this) return *this;
    COrderTracking::operator=(other);
    if (auto* axis = dynamic_cast<CRegXAxis*>(other); axis != nullptr) CRegXAxis::operator=(axis);
    return *this;
}

CResult* CRegOrderTrack::GetCopy() { return CopyOf(*this); }

template <class Io, class Self>
bool CRegOrderTrack::fields(Io& io, Self& v)
{
    if (!io.record(kRecordName, newest{1})) return io.ok();
    io.template base<COrderTracking>(v);
    io.template base<CRegXAxis>(v);
    io.dump([] { return wstring(u"CRegOrderTrack"); });
    return io.ok();
}

template class StoredRecord<CRegOrderTrack, COrderTracking, CRegXAxis>;

// ---- CRefOrderTrack ----

CRefOrderTrack::CRefOrderTrack(std::uint32_t process, std::int32_t size, std::int32_t nbOrder, SignalType type)
    : StoredRecord(process, size, nbOrder, type)
{
    m_resultType = SizeType::RefOrderTrack;
}

void CRefOrderTrack::SetSize(std::int32_t size)
{
    if (size == m_size) return;
    m_size = size;
    SetSizeOfReferences(size);
    ReAlloc();
}

void CRefOrderTrack::CopyVectorRef(CRefOrderTrack* source)
{
    if (source != nullptr) CopyVectorRefOf(*source);
}

void CRefOrderTrack::AddInvolvedGrandeur(std::map<CGrandeur*, int>& counts) const
{
    CResult::AddInvolvedGrandeur(counts);
    CReferencedAxis::AddInvolvedGrandeur(counts);
}

void CRefOrderTrack::ReplaceGrandeur(CGrandeurFichier* old, CGrandeur* replacement)
{
    CResult::ReplaceGrandeur(old, replacement);
    CReferencedAxis::ReplaceGrandeur(old, replacement);
}

CResult& CRefOrderTrack::operator=(CResult* other)
{
    if (other == nullptr || other == this) return *this;
    COrderTracking::operator=(other);
    FreeBlocNumbers();
    if (const auto* track = dynamic_cast<const CRefOrderTrack*>(other); track != nullptr)
        CopyBlocNumbersOf(*track, m_size);
    if (auto* axis = dynamic_cast<CReferencedAxis*>(other); axis != nullptr) CReferencedAxis::operator=(axis);
    return *this;
}

CResult* CRefOrderTrack::GetCopy() { return CopyOf(*this); }

template <class Io, class Self>
bool CRefOrderTrack::fields(Io& io, Self& v)
{
    if (!io.record(kRecordName, newest{1})) return io.ok();
    io.template base<COrderTracking>(v);
    io.template base<CReferencedAxis>(v);
    // References are stored with that many values.
    io.grows("m_nFilled", v.m_nFilled, sizeof(float) * (1 + v.StoredReferences()));
    io.dump([] { return wstring(u"CRefOrderTrack"); });
    return io.ok();
}

template class StoredRecord<CRefOrderTrack, COrderTracking, CReferencedAxis>;

} // namespace ZelmResult
