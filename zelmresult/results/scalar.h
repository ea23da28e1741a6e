#pragma once

#include "zelmresult/results/result.h"

namespace ZelmResult {

// The values of a measured level.
struct Type_Level {
    float lastValue = 0.0F;
    float maxValue = 0.0F;
    float minValue = 0.0F;
    float realValue = 0.0F;
    float imagValue = 0.0F;

    bool operator==(const Type_Level&) const = default;
};

// One measured level, in SI units of its quantity, with its display limits.
// Stored as  version 2: the base block, YMin, YMax, the five values, PhasePossible.
// Owns       nothing. Copies of any kind are whole.
class CScalar : public StoredRecord<CScalar, CResult> {
public:
    static constexpr const char* kRecordName = "CScalar";

    CScalar();
    CScalar(std::uint32_t process, std::int32_t size, SignalType type, bool phasePossible);
    CScalar(const CScalar&) = default;
    CScalar& operator=(const CScalar&) = default;

    [[nodiscard]] float GetValue() const override { return m_level.lastValue; }
    [[nodiscard]] float lastValue() const { return m_level.lastValue; }
    void lastValue(float value) { m_level.lastValue = value; }
    [[nodiscard]] float maxValue() const { return m_level.maxValue; }
    void maxValue(float value) { m_level.maxValue = value; }
    [[nodiscard]] float minValue() const { return m_level.minValue; }
    void minValue(float value) { m_level.minValue = value; }
    [[nodiscard]] virtual float GetCurMin() const { return m_level.minValue; }
    [[nodiscard]] virtual float GetCurMax() const { return m_level.maxValue; }
    [[nodiscard]] float GetRealValue() const { return m_level.realValue; }
    void realValue(float value) { m_level.realValue = value; }
    [[nodiscard]] float GetImagValue() const { return m_level.imagValue; }
    void imagValue(float value) { m_level.imagValue = value; }
    [[nodiscard]] const Type_Level& readLevelValue() const { return m_level; }
    Type_Level& writeLevelValue() { return m_level; }

    // A scalar has no X axis: its X limits are its display limits, and can't be set.
    [[nodiscard]] float GetXMin() const override { return m_yMin; }
    [[nodiscard]] float GetXMax() const override { return m_yMax; }
    [[nodiscard]] float GetYMin() const override { return m_yMin; }
    [[nodiscard]] float GetYMax() const override { return m_yMax; }
    void SetYMin(float value) override { m_yMin = value; }
    void SetYMax(float value) override { m_yMax = value; }
    [[nodiscard]] float GetRealMax() const override { return GetXMax(); }
    [[nodiscard]] float GetRealMin() const override { return GetXMin(); }

    [[nodiscard]] bool IsPhasePossible() const { return m_phasePossible; }
    void setPhasePossible(bool possible) { m_phasePossible = possible; }

    void ReAlloc() override {}
    [[nodiscard]] bool IsOfType(std::uint32_t mask) const override { return SharesBit(mask, 0x401); }
    CResult& operator=(CResult* other) override;
    [[nodiscard]] CResult* GetCopy() override;

private:
    friend StoredRecord;
    template <class Io, class Self>
    static bool fields(Io& io, Self& v);

    Type_Level m_level;
    float m_yMin = 0.0F;
    float m_yMax = 0.0F;
    bool m_phasePossible = false;
};
extern template class StoredRecord<CScalar, CResult>;

} // namespace ZelmResult
