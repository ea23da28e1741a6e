#pragma once

#include "zelmresult/results/vector.h"

namespace ZelmResult {

// Two vectors of one measurement: the lowest and the highest values reached.
// Stored as  version 1, then the whole block of the minimum, then of the maximum. No base block: Size and the kind of
//            this object are not restored by Read.
// Owns       both vectors. The setters replace the pointer and free nothing.
// Copies     = and the copy constructor share the vectors, so only one of such copies may be destroyed; GetCopy makes
//            real copies.
class CDoubleResult : public CResult {
public:
    static constexpr const char* kRecordName = "CDoubleResult";

    CDoubleResult() = default;
    // takes both; either may be null. Size is that of the minimum, or of the maximum without one.
    CDoubleResult(CVector* min, CVector* max);
    CDoubleResult(const CDoubleResult&) = default;
    CDoubleResult& operator=(const CDoubleResult&) = default;
    ~CDoubleResult() override;

    // lend, may be null
    [[nodiscard]] CVector* GetMinVector() const { return m_minVector; }
    [[nodiscard]] CVector* GetMaxVector() const { return m_maxVector; }
    // take
    void SetMinVector(CVector* vector) { m_minVector = vector; }
    void SetMaxVector(CVector* vector) { m_maxVector = vector; }

    // Forwarded to both vectors; the object's own quantity doesn't change.
    void SetMagnitude(CGrandeur* quantity) override;
    void SetXMagnitude(CGrandeur* quantity) override;
    void AddInvolvedGrandeur(std::map<CGrandeur*, int>& counts) const override;
    void ReplaceGrandeur(CGrandeurFichier* old, CGrandeur* replacement) override;

    // True once the version is written: the results of the nested writes are ignored. A missing vector writes nothing.
    [[nodiscard]] bool Write(CMmioFile* file) override;
    // False when a vector is missing or its read fails.
    [[nodiscard]] bool Read(CMmioFile* file) override;
    void ReAlloc() override {}
    [[nodiscard]] bool IsOfType(std::uint32_t mask) const override { return SharesBit(mask, 0x80001); }
    CResult& operator=(CResult* other) override; // the vectors held before are not freed
    [[nodiscard]] CResult* GetCopy() override;
    virtual bool operator==(const CDoubleResult& /*other*/) const { return true; } // always equal
    void Outline(RecordOutline& out) const;

private:
    CVector* m_maxVector = nullptr;
    CVector* m_minVector = nullptr;
};

} // namespace ZelmResult
