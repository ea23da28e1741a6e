#include "zelmresult/waterfalls/vector_ref.h"

#include "zelmresult/results/kinds.h"
#include "zelmresult/results/result_copy.h"
#include "zelmresult/storage/record_io.h"
#include "zelmresult/support/bits.h"
#include "zelmresult/support/text.h"
#include "zelmresult/waterfalls/list_vector_ref.h"

namespace ZelmResult {

namespace {

constexpr float kDefaultMax = 30.0F;
constexpr float kTimeMax = 1000.0F;
constexpr std::uint32_t kExponentBits = 0x7F800000;

bool IsFinite(float value) { return (BitsOf(value) & kExponentBits) != kExponentBits; }

} // namespace

CVectorRef::CVectorRef()
{
    m_resultType = SizeType::VectorRef;
    m_dimension = kDimensionVector;
}

CVectorRef::CVectorRef(std::uint32_t process, std::int32_t size, const wstring& name, SignalType type)
    : StoredRecord(process, size, type, ResultKind::kReferenceValues), m_refMax(kDefaultMax), m_name(name)
{
    m_resultType = SizeType::VectorRef;
    m_dimension = kDimensionVector;
    if (process == ResultKind::kReference) LimitsFromName();
    CVectorRef::ReAlloc();
}

void CVectorRef::LimitsFromName()
{
    if (m_name == u"Slice number") {
        m_refMax = static_cast<float>(m_size);
        m_absPrecisionX = 1.0F;
        m_relPrecisionX = 1e-10F;
    } else if (m_name == u"Time") {
        m_refMax = kTimeMax;
    }
}

CVectorRef::CVectorRef(const CVectorRef& other) : StoredRecord(other), Watchable(other) { CopyOwnFields(other); }

CVectorRef& CVectorRef::operator=(const CVectorRef& other)
{
    if (this == &other) return *this;
    CResult::operator=(static_cast<const CResult&>(other));
    CopyOwnFields(other);
    return *this;
}

// Copies all but the lists: a new copy is in none, and an assignment doesn't change them.
void CVectorRef::CopyOwnFields(const CVectorRef& other)
{
    m_refMin = other.m_refMin;
    m_refMax = other.m_refMax;
    m_filled = other.m_filled;
    m_isHidenReference = other.m_isHidenReference;
    m_refValue = other.m_refValue;
    m_name = other.m_name;
}

CVectorRef::~CVectorRef()
{
    while (!m_lists.empty()) (void)m_lists.back()->RemoveVectorRef(this);
    m_refValue.Free();
}

void CVectorRef::ReAlloc()
{
    m_refValue.Free();
    if (m_size < 1) return;
    m_filled = 0;
    m_refValue.Allocate(m_size);
}

CResult& CVectorRef::operator=(CResult* other)
{
    if (other == nullptr || other == this) return *this;
    m_refValue.Free();
    CResult::operator=(other);
    if (const auto* reference = dynamic_cast<CVectorRef*>(other); reference != nullptr) {
        m_refMin = reference->m_refMin;
        m_refMax = reference->m_refMax;
        m_filled = reference->GetFilled();
        setName(reference->name());
        if (reference->m_refValue.data != nullptr) m_refValue = reference->m_refValue.Copy(m_size);
        m_isHidenReference = reference->m_isHidenReference;
    }
    return *this;
}

CResult* CVectorRef::GetCopy() { return CopyOf(*this); }

bool CVectorRef::MakeRoom(CMmioFile& file)
{
    if (!file.RoomFor(static_cast<std::uint64_t>(m_size), sizeof(float))) return false;
    ReAlloc();
    m_filled = m_size;
    return true;
}

template <class Io, class Self>
bool CVectorRef::fields(Io& io, Self& v)
{
    if (!io.record(kRecordName, newest{1})) return io.ok();
    io.template base<CResult>(v);
    io.dump([] { return wstring(u"CVectorRef"); });
    io.valid("Size", v.m_size >= 0);
    io.accepts("Size", v, &CVectorRef::MakeRoom);
    io.text("Name", v.m_name);
    io.f32("RefMin", v.m_refMin);
    io.f32("RefMax", v.m_refMax);
    valueFields(io, v);
    io.dumpLines(v, &CVectorRef::dumpLines);
    return io.ok();
}

template <class Io, class Self>
void CVectorRef::valueFields(Io& io, Self& v)
{
    io.f32s("values", v.m_refValue.data, v.m_refValue.count, v.m_size);
}

template <class Self>
void CVectorRef::valueFields(RecordWriter& out, Self& v)
{
    if (out.ok() && !v.WriteFiniteValues(out.file())) out.fail("values");
}

// Infinities and NaNs mark gaps in memory and never reach a file.
bool CVectorRef::WriteFiniteValues(CMmioFile& file) const
{
    std::int32_t written = 0;
    for (std::int32_t i = 0; i < m_filled; ++i) {
        if (!IsFinite(m_refValue.At(i))) continue;
        if (!file.mmioWrite_float(m_refValue.At(i))) return false;
        ++written;
    }
    if (written != m_size) file.NoteUnreadable(); // a read expects Size values
    return true;
}

void CVectorRef::dumpLines(CMmioFile& file) const
{
    file.AddStringToDebugFile(
        Concat(u"Name : ", m_name, u", RefMin : ", ToFixed(m_refMin), u", RefMax : ", ToFixed(m_refMax)));
    wstring values;
    for (std::int32_t i = 0; i < m_size; ++i)
        values += Concat(u"m_RefValue[", i, u"]:", ToScientific(m_refValue.At(i)), u",");
    file.AddStringToDebugFile(values);
}

template class StoredRecord<CVectorRef, CResult>;

} // namespace ZelmResult
