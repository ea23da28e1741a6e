#include "zelmresult/results/double_result.h"

#include "zelmresult/results/result_copy.h"
#include "zelmresult/storage/record_io.h"

namespace ZelmResult {

namespace {

constexpr std::uint16_t kVersion = 1;

} // namespace

CDoubleResult::CDoubleResult(CVector* min, CVector* max) : m_maxVector(max), m_minVector(min)
{
    if (const CVector* sized = min != nullptr ? min : max; sized != nullptr) m_size = sized->GetSize();
}

CDoubleResult::~CDoubleResult()
{
    delete m_minVector;
    if (m_maxVector != m_minVector) delete m_maxVector;
}

void CDoubleResult::SetMagnitude(CGrandeur* quantity)
{
    for (CVector* vector : {m_minVector, m_maxVector})
        if (vector != nullptr) vector->SetMagnitude(quantity);
}

void CDoubleResult::SetXMagnitude(CGrandeur* quantity)
{
    for (CVector* vector : {m_minVector, m_maxVector})
        if (vector != nullptr) vector->SetXMagnitude(quantity);
}

void CDoubleResult::AddInvolvedGrandeur(std::map<CGrandeur*, int>& counts) const
{
    for (const CVector* vector : {m_minVector, m_maxVector})
        if (vector != nullptr) vector->AddInvolvedGrandeur(counts);
}

void CDoubleResult::ReplaceGrandeur(CGrandeurFichier* old, CGrandeur* replacement)
{
    for (CVector* vector : {m_minVector, m_maxVector})
        if (vector != nullptr) vector->ReplaceGrandeur(old, replacement);
}

// Two functions and no shared list: the writer ignores failures of its vectors, the reader doesn't.
bool CDoubleResult::Write(CMmioFile* file)
{
    if (!file->mmioWrite_ushort(kVersion)) return false;
    for (CVector* vector : {m_minVector, m_maxVector}) {
        if (vector != nullptr)
            (void)vector->Write(file);
        else
            file->NoteUnreadable(); // reads refuse half a pair
    }
    return true;
}

bool CDoubleResult::Read(CMmioFile* file)
{
    std::uint16_t version = 0;
    if (!file->mmioRead_ushort(version)) return false;
    if (version == 0) return true;
    for (CVector* vector : {m_minVector, m_maxVector})
        if (vector == nullptr || !vector->Read(file)) return false;
    return true;
}

void CDoubleResult::Outline(RecordOutline& out) const
{
    (void)out.record(kRecordName, newest{kVersion});
    out.nested("MinVector", "block of its class");
    out.nested("MaxVector", "block of its class");
}

CResult& CDoubleResult::operator=(CResult* other)
{
    if (other == nullptr || other == this) return *this;
    CResult::operator=(other);
    if (const auto* pair = dynamic_cast<CDoubleResult*>(other); pair != nullptr) {
        const auto copyOf = [](CVector* vector) {
            return vector == nullptr ? nullptr : dynamic_cast<CVector*>(vector->GetCopy());
        };
        m_minVector = copyOf(pair->m_minVector);
        m_maxVector = copyOf(pair->m_maxVector);
    }
    return *this;
}

CResult* CDoubleResult::GetCopy() { return CopyOf(*this); }

} // namespace ZelmResult
