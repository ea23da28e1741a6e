#pragma once

#include "zelmresult/results/referenced_axis.h"
#include "zelmresult/results/reg_x_axis.h"
#include "zelmresult/results/result.h"

#include <vector>

namespace ZelmResult {

// The amplitudes of several orders at once, as tables of points by order.
//
// Stored as  version 1: the base block, the numbers of orders and of points, two tables, four limits. The imaginary
//            table is there for every type of signal. The tables hold as many points per order as are filled, so a
//            track that was made in memory stores none.
// Owns       its tables.
// Copies     = and the copy constructor copy every field and the tables, and share quantities and the list of
//            references. = from a pointer, and GetCopy, copy in an odd way that hosts depend on: see there.
class COrderTracking : public StoredRecord<COrderTracking, CResult> {
public:
    static constexpr const char* kRecordName = "COrderTracking";

    COrderTracking() = default;
    COrderTracking(std::uint32_t process, std::int32_t size, std::int32_t nbOrder, SignalType type);

    [[nodiscard]] std::int32_t GetNbOrder() const { return m_nbOrder; }
    [[nodiscard]] std::int32_t GetFilled() const override { return m_filled; } // points per order
    [[nodiscard]] float GetRealMax() const override { return m_realMax; }
    [[nodiscard]] float GetRealMin() const override { return m_realMin; }
    [[nodiscard]] float GetImMax() const override { return m_imMax; }
    [[nodiscard]] float GetImMin() const override { return m_imMin; }
    void SetYMin(float value) override { m_realMin = m_imMin = value; }
    void SetYMax(float value) override { m_realMax = m_imMax = value; }
    // Copy the first a times b values; zeros beyond the table.
    void GetRealValues(float* target, std::int32_t a, std::int32_t b) const { CopyTable(m_real, target, a, b); }
    void GetImValues(float* target, std::int32_t a, std::int32_t b) const { CopyTable(m_imaginary, target, a, b); }
    // Fill the tables of a track with filled points per order, one order after the other: nbOrder times filled values
    // each; imaginary may be null, for zeros.
    void SetTables(std::int32_t nbOrder, std::int32_t filled, const float* real, const float* imaginary);

    // Size times NbOrder zeros, in the imaginary table for complex data only.
    void ReAlloc() override;
    // Copies the limits of the real part and the imaginary maximum. The imaginary minimum and the numbers of orders and
    // of points are set from that maximum, cut to a whole number; Size values of the tables are copied.
    CResult& operator=(CResult* other) override;

private:
    using Table = std::vector<float>;

    static void CopyTable(const Table& table, float* target, std::int32_t a, std::int32_t b);
    [[nodiscard]] bool MakeRoom(CMmioFile& file);
    friend StoredRecord;
    template <class Io, class Self>
    static bool fields(Io& io, Self& v);

    Table m_real;
    float m_realMax = 0.0F;
    float m_realMin = 0.0F;
    Table m_imaginary;
    float m_imMax = 0.0F;
    float m_imMin = 0.0F;
    std::int32_t m_nbOrder = 0;
    std::int32_t m_filled = 0;
};
extern template class StoredRecord<COrderTracking, CResult>;

// An order track along evenly spaced points.
// Stored as  version 1: the block of the track, the block of the axis.
class CRegOrderTrack : public StoredRecord<CRegOrderTrack, COrderTracking, CRegXAxis> {
public:
    static constexpr const char* kRecordName = "CRegOrderTrack";

    CRegOrderTrack() = default;
    // The last argument counts the orders, the type of signal is 0, and the limits and xnOctave have no effect: an axis
    // starts empty.
    CRegOrderTrack(std::uint32_t process, std::int32_t size, float xMin, float xMax, std::uint32_t xnOctave,
                   SignalType nbOrder);

    [[nodiscard]] float GetXMax() const override { return CRegXAxis::GetXMax(); }
    [[nodiscard]] float GetXMin() const override { return CRegXAxis::GetXMin(); }
    [[nodiscard]] std::uint32_t GetXnOctave() const override { return CRegXAxis::GetXnOctave(); }
    [[nodiscard]] CGrandeur* GetXMagnitude() const override { return CRegXAxis::GetXMagnitude(); }
    void SetXMagnitude(CGrandeur* quantity) override { CRegXAxis::SetXMagnitude(quantity); }
    // Of the axis. Through a pointer to CResult the three do nothing.
    using CRegXAxis::SetXMax;
    using CRegXAxis::SetXMin;
    using CRegXAxis::SetXnOctave;
    void AddInvolvedGrandeur(std::map<CGrandeur*, int>& counts) const override;
    void ReplaceGrandeur(CGrandeurFichier* old, CGrandeur* replacement) override;
    [[nodiscard]] bool IsOfType(std::uint32_t mask) const override { return SharesBit(mask, 0x1803); }
    bool operator==(const CRegOrderTrack& /*other*/) const { return true; } // always equal
    CResult& operator=(CResult* other) override;
    [[nodiscard]] CResult* GetCopy() override;

private:
    friend StoredRecord;
    template <class Io, class Self>
    static bool fields(Io& io, Self& v);
};
extern template class StoredRecord<CRegOrderTrack, COrderTracking, CRegXAxis>;

// An order track along a reference, such as a speed.
// Stored as  version 1: the block of the track, the block of the axis with its references.
class CRefOrderTrack : public StoredRecord<CRefOrderTrack, COrderTracking, CReferencedAxis> {
public:
    static constexpr const char* kRecordName = "CRefOrderTrack";

    CRefOrderTrack() = default;
    CRefOrderTrack(std::uint32_t process, std::int32_t size, std::int32_t nbOrder, SignalType type);

    // Of the chosen reference; 0 or null without one, and then nothing can be set.
    [[nodiscard]] float GetXMin() const override { return ReferenceMin(); }
    [[nodiscard]] float GetXMax() const override { return ReferenceMax(); }
    void SetXMin(float value) override { SetReferenceMin(value); }
    void SetXMax(float value) override { SetReferenceMax(value); }
    [[nodiscard]] CGrandeur* GetXMagnitude() const override { return ReferenceMagnitude(); }
    void SetXMagnitude(CGrandeur* quantity) override { SetReferenceMagnitude(quantity); }
    // The points of the tables, not those that SetFilled sets in the axis.
    [[nodiscard]] std::int32_t GetFilled() const override { return COrderTracking::GetFilled(); }
    // Also of the references. The ring doesn't change.
    void SetSize(std::int32_t size) override;
    [[nodiscard]] CReferencedAxis* GetReferencedAxis() override { return this; }
    // Copies the references of another track into this one's list, and chooses the copy of its chosen one.
    void CopyVectorRef(CRefOrderTrack* source);
    void AddInvolvedGrandeur(std::map<CGrandeur*, int>& counts) const override;
    void ReplaceGrandeur(CGrandeurFichier* old, CGrandeur* replacement) override;
    [[nodiscard]] bool IsOfType(std::uint32_t mask) const override { return SharesBit(mask, 0x2805); }
    CResult& operator=(CResult* other) override;
    [[nodiscard]] CResult* GetCopy() override;

private:
    friend StoredRecord;
    template <class Io, class Self>
    static bool fields(Io& io, Self& v);
};
extern template class StoredRecord<CRefOrderTrack, COrderTracking, CReferencedAxis>;

} // namespace ZelmResult
