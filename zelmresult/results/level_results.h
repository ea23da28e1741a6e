#pragma once

#include "zelmresult/results/scalar.h"

#include <array>

namespace ZelmResult {

// The base of the results below: several levels of one measurement, each a whole CScalar inside the result.
//
// Stored as  the base block, then the block of each level.
// Owns       its levels. Copies of any kind are whole.
template <class Derived, std::size_t Count>
class LevelResult : public StoredRecord<Derived, CResult> {
public:
    LevelResult() { this->m_resultType = Derived::kResultType; }
    LevelResult(std::uint32_t process, std::int32_t size, SignalType type)
        : StoredRecord<Derived, CResult>(process, size, type, 0)
    {
        this->m_resultType = Derived::kResultType;
    }

    // The value and the limits are those of the first level.
    [[nodiscard]] float GetValue() const override { return m_levels.front().lastValue(); }
    [[nodiscard]] float GetYMax() const override { return m_levels.front().GetYMax(); }
    [[nodiscard]] float GetYMin() const override { return m_levels.front().GetYMin(); }
    // Of all levels; the quantity of the result itself too.
    void SetMagnitude(CGrandeur* quantity) override;
    void SetYMax(float value) override;
    void SetYMin(float value) override;
    void SetXMax(float value) override;
    void SetXMin(float value) override;
    void AddReferredGrandeur(std::map<CGrandeur*, int>& counts) const override;
    void ReAlloc() override {}
    CResult& operator=(CResult* other) override;
    [[nodiscard]] CResult* GetCopy() override;

protected:
    // In stored order.
    [[nodiscard]] const CScalar& Level(std::size_t i) const { return m_levels[i]; }
    void SetLevel(std::size_t i, const Type_Level& level) { m_levels[i].writeLevelValue() = level; }

private:
    friend class StoredRecord<Derived, CResult>;
    template <class Io, class Self>
    static bool fields(Io& io, Self& v);
    void dumpLines(CMmioFile& file) const;

    std::array<CScalar, Count> m_levels;
};

// Ten levels of a sound: a short peak, and three times an instantaneous, a short and a whole equivalent level.
// Quantities of the levels follow SetMagnitude, and neither AddInvolvedGrandeur nor ReplaceGrandeur, here and below: so
// keep a replaced quantity alive, or call SetMagnitude. AddReferredGrandeur names theirs too.
class CBroadBand : public LevelResult<CBroadBand, 10> {
public:
    static constexpr const char* kRecordName = "CBroadBand";
    static constexpr SizeType kResultType = SizeType::BroadBand;
    static constexpr std::int32_t kTriples = 3;

    using LevelResult::LevelResult;
    using LevelResult::operator=;

    bool operator==(const CBroadBand& /*other*/) const { return true; } // always equal
    void SetShortLpk(const Type_Level& level) { SetLevel(0, level); }
    // Does nothing for an index outside 0 to 2.
    void SetInstantLeq(std::int32_t i, const Type_Level& level) { SetOfTriple(i, 1, level); }
    void SetShortLeq(std::int32_t i, const Type_Level& level) { SetOfTriple(i, 2, level); }
    void SetLeq(std::int32_t i, const Type_Level& level) { SetOfTriple(i, 3, level); }
    // For an index from 0 to 2.
    [[nodiscard]] const CScalar& GetShortLpk() const { return Level(0); }
    [[nodiscard]] const CScalar& GetInstantLeq(std::int32_t i) const { return OfTriple(i, 1); }
    [[nodiscard]] const CScalar& GetShortLeq(std::int32_t i) const { return OfTriple(i, 2); }
    [[nodiscard]] const CScalar& GetLeq(std::int32_t i) const { return OfTriple(i, 3); }
    [[nodiscard]] bool IsOfType(std::uint32_t mask) const override { return SharesBit(mask, 0x20001); }

private:
    static std::size_t Place(std::int32_t i, std::size_t which) { return 3 * static_cast<std::size_t>(i) + which; }
    [[nodiscard]] const CScalar& OfTriple(std::int32_t i, std::size_t which) const { return Level(Place(i, which)); }
    void SetOfTriple(std::int32_t i, std::size_t which, const Type_Level& level)
    {
        if (i >= 0 && i < kTriples) SetLevel(Place(i, which), level);
    }
};
extern template class StoredRecord<CBroadBand, CResult>;

// Ten statistics of a signal.
class CGlobalLevel : public LevelResult<CGlobalLevel, 10> {
public:
    static constexpr const char* kRecordName = "CGlobalLevel";
    static constexpr SizeType kResultType = SizeType::GlobalLevel;
    enum Statistic : std::size_t { DC, Max, Min, RMS, Energy, Skew, Kurtosis, Peak, PeakPeak, CrestFactor };

    using LevelResult::LevelResult;
    using LevelResult::operator=;

    bool operator==(const CGlobalLevel& /*other*/) const { return true; } // always equal
    [[nodiscard]] const CScalar& GetLevel(Statistic statistic) const { return Level(statistic); }
    void SetStatistic(Statistic statistic, const Type_Level& level) { SetLevel(statistic, level); }
    [[nodiscard]] bool IsOfType(std::uint32_t mask) const override { return SharesBit(mask, 0x100001); }
};
extern template class StoredRecord<CGlobalLevel, CResult>;

// The levels of eight orders, and the overall level.
class CSuiviOrdre : public LevelResult<CSuiviOrdre, 9> {
public:
    static constexpr const char* kRecordName = "CSuiviOrdre";
    static constexpr SizeType kResultType = SizeType::SuiviOrdre;

    using LevelResult::LevelResult;
    using LevelResult::operator=;

    // For an index from 0 to 7.
    void SetOrderValue(std::int32_t i, const Type_Level& level) { SetLevel(static_cast<std::size_t>(i), level); }
    [[nodiscard]] const CScalar& GetOrder(std::int32_t i) const { return Level(static_cast<std::size_t>(i)); }
    void SetOverallValue(const Type_Level& level) { SetLevel(kOverall, level); }
    [[nodiscard]] const CScalar& GetOverall() const { return Level(kOverall); }
    [[nodiscard]] float GetRealMax() const override { return GetYMax(); }
    [[nodiscard]] float GetRealMin() const override { return GetYMin(); }
    [[nodiscard]] bool IsOfType(std::uint32_t mask) const override { return SharesBit(mask, 0x400001); }

private:
    static constexpr std::size_t kOverall = 8;
};
extern template class StoredRecord<CSuiviOrdre, CResult>;

} // namespace ZelmResult
