#pragma once

#include "zelmresult/quantities/grandeur.h"
#include "zelmresult/results/result_types.h"
#include "zelmresult/storage/stored_record.h"
#include "zelmresult/support/otype.h"
#include "zelmresult/support/time.h"
#include "zelmresult/support/wstring.h"

#include <cstdint>
#include <map>

namespace ZelmResult {

class CReferencedAxis;

// The base of every result: what it is, its size, its Y quantity, precisions, rotation data and date.
//
// Stored   all fields, as version 5. Every class stores its version, its base's whole block, then its own fields; a
//          reader takes the fields that the stored version holds, and doesn't change the others.
// Owns     nothing here. Magnitude is kept as a pointer: a document's list owns quantities, and copies share them.
// Copies   the copy constructor and = of a derived class are flat; GetCopy and operator=(CResult*) are deep.
class CResult {
public:
    static constexpr const char* kRecordName = "CResult";
    static constexpr int kStartRevPositions = 32;

    // An object for a read to fill: all precisions 0.
    CResult();
    // An object for a host to fill: precisions 0.001, the unit format from the two kinds.
    CResult(std::uint32_t process, std::int32_t size, SignalType type, std::uint32_t wtfProcess);
    CResult(const CResult&) = default;
    CResult& operator=(const CResult&) = default;
    virtual ~CResult() = default;

    // Stores the size and rebuilds the arrays; does nothing when the size is the same.
    virtual void SetSize(std::int32_t size);
    // Counts the quantities that this result uses: the Y quantity and all that it is built from.
    virtual void AddInvolvedGrandeur(std::map<CGrandeur*, int>& counts) const;
    // All quantities that the result points to: the involved ones, that of the X axis, and what a class leaves out of
    // the involved ones.
    virtual void AddReferredGrandeur(std::map<CGrandeur*, int>& counts) const;
    // Uses another quantity wherever old is used. Neither is freed.
    virtual void ReplaceGrandeur(CGrandeurFichier* old, CGrandeur* replacement);
    // Work at the current position of the file. False at the first failed field, without a message; discard an object
    // that was read in part.
    [[nodiscard]] virtual bool Write(CMmioFile* file);
    [[nodiscard]] virtual bool Read(CMmioFile* file);
    virtual void SetMagnitude(CGrandeur* quantity) { m_magnitude = quantity; } // keeps a pointer; may be null
    [[nodiscard]] virtual CGrandeur* GetMagnitude() const { return m_magnitude; }
    virtual void SetXMagnitude(CGrandeur* /*quantity*/) {}
    [[nodiscard]] virtual CGrandeur* GetXMagnitude() const { return nullptr; }
    // X limits, in SI units of the X quantity.
    [[nodiscard]] virtual float GetXMax() const { return 0.0F; }
    [[nodiscard]] virtual float GetXMin() const { return 0.0F; }
    virtual void SetXMin(float /*value*/) {}
    virtual void SetXMax(float /*value*/) {}
    [[nodiscard]] virtual float GetRelPrecisionX() const { return m_relPrecisionX; }
    [[nodiscard]] virtual float GetAbsPrecisionX() const { return m_absPrecisionX; }
    [[nodiscard]] virtual wstring name() const { return {}; }
    [[nodiscard]] virtual std::uint32_t GetXnOctave() const { return 0; }
    virtual void SetXnOctave(std::uint32_t /*bands*/) {}
    [[nodiscard]] virtual float GetMax() const { return 0.0F; }
    [[nodiscard]] virtual float GetMin() const { return 0.0F; }
    [[nodiscard]] virtual float GetValue() const { return 0.0F; }
    [[nodiscard]] virtual std::int32_t GetZSize() const { return 0; }
    [[nodiscard]] virtual float GetRealMax() const { return 0.0F; }
    [[nodiscard]] virtual float GetRealMin() const { return 0.0F; }
    [[nodiscard]] virtual float GetImMax() const { return 0.0F; }
    [[nodiscard]] virtual float GetImMin() const { return 0.0F; }
    [[nodiscard]] virtual CGrandeur* GetYMagnitude() const { return GetMagnitude(); }
    [[nodiscard]] virtual float GetYMax() const { return 0.0F; }
    [[nodiscard]] virtual float GetYMin() const { return 0.0F; }
    virtual void SetYMin(float /*value*/) {}
    virtual void SetYMax(float /*value*/) {}
    [[nodiscard]] virtual std::int32_t GetFilled() const { return 0; }
    // Rebuilds the arrays of a class from Size and ComplexType, all zeros.
    virtual void ReAlloc() = 0;
    // Whether the class has one of the bits of the mask: 1 any result, 8 vector, 0x400 scalar, 0x100 reference, 0x40
    // waterfall and so on. False for 0.
    [[nodiscard]] virtual bool IsOfType(std::uint32_t mask) const = 0;
    // lends the axis of a result whose X values are references, null for any other.
    [[nodiscard]] virtual CReferencedAxis* GetReferencedAxis() { return nullptr; }
    // A deep copy of another result into this one: the fields of this class, and those of the derived class when the
    // other is of it too. Null changes nothing.
    virtual CResult& operator=(CResult* other);
    // gives a new object of the same class, filled by operator=(CResult*); null when the class has no copies.
    [[nodiscard]] virtual CResult* GetCopy() { return nullptr; }
    virtual void setName(const wstring& /*name*/) {}

    [[nodiscard]] SizeType GetResultType() const { return m_resultType; }
    void SetResultType(SizeType type) { m_resultType = type; }
    [[nodiscard]] SignalType GetComplexType() const { return m_complexType; }
    // Rebuilds the arrays when the type changes; with force always.
    void SetComplexType(SignalType type, bool force);
    [[nodiscard]] std::uint32_t GetDimension() const { return m_dimension; } // 1 scalar, 2 vector, 3 waterfall
    void SetDimension(std::uint32_t dimension) { m_dimension = dimension; }
    [[nodiscard]] TypeUnite GetUnitFormat() const { return m_unitFormat; }
    void SetUnitFormat(TypeUnite format) { m_unitFormat = format; }
    [[nodiscard]] std::uint32_t GetProcessType() const { return m_processType; } // the kind of the result
    void SetProcessType(std::uint32_t process) { m_processType = process; }
    [[nodiscard]] std::uint32_t GetWtfProcessType() const { return m_wtfProcessType; }
    void SetWtfProcessType(std::uint32_t process) { m_wtfProcessType = process; }
    [[nodiscard]] otype::ResultProcess resultProcess() const;
    [[nodiscard]] std::int32_t GetSize() const { return m_size; }
    // Stores the size without changing the arrays: values that they don't hold count as 0. For an array that the host
    // has set, the host warrants its length: Size values, here and in SetSize.
    void AdjustSize(std::int32_t size)
    {
        m_size = size;
        FollowSize();
    }
    [[nodiscard]] std::uint32_t GetRotationDir() const { return m_rotationDir; }
    void SetRotationDir(std::uint32_t direction) { m_rotationDir = direction; }
    [[nodiscard]] float GetCurrentSpeed() const { return m_currentSpeed; } // -1 when unknown
    void SetCurrentSpeed(float speed) { m_currentSpeed = speed; }
    [[nodiscard]] const OFILETIME& GetResultDate() const { return m_resultDate; }
    void SetResultDate(const OFILETIME& date) { m_resultDate = date; }
    [[nodiscard]] bool IsReferencedResult() const;

    [[nodiscard]] float GetRelPrecisionY() const { return m_relPrecisionY; }
    [[nodiscard]] float GetAbsPrecisionY() const { return m_absPrecisionY; }
    [[nodiscard]] float GetRelPrecisionZ() const { return m_relPrecisionZ; }
    [[nodiscard]] float GetAbsPrecisionZ() const { return m_absPrecisionZ; }
    // The Y pair raises values below 1e-30 to 1e-30; the others store any value.
    void SetRelPrecisionY(float precision) { m_relPrecisionY = AtLeastPrecision(precision); }
    void SetAbsPrecisionY(float precision) { m_absPrecisionY = AtLeastPrecision(precision); }
    void SetRelPrecisionX(const float& precision) { m_relPrecisionX = precision; }
    void SetAbsPrecisionX(const float& precision) { m_absPrecisionX = precision; }
    void SetRelPrecisionZ(const float& precision) { m_relPrecisionZ = precision; }
    void SetAbsPrecisionZ(const float& precision) { m_absPrecisionZ = precision; }
    [[nodiscard]] static bool debug_isPrecisionInitializedX() { return true; }

    // Start positions in revolutions, 32 slots; -1 marks an empty one. lends the slots, never null.
    [[nodiscard]] const float* GetStartRevPosTabPtr() const { return m_startRevPosTab; }
    float* GetStartRevPosTabPtr() { return m_startRevPosTab; }
    void SetStartRevPosTab(const float* source, std::int32_t n); // the first 32 of n
    // Fills slots from the first one on, or from the first empty one with append. It stops when slots or values run
    // out, or when an empty value would go to an empty slot.
    void CopyStartRevPosTab(bool append, const float* source, std::int32_t n);

    // The value of the last significant decimal digit of x, of at most six decimals: 0.05 for 0.25. For hosts.
    static float ComputeAbsPrec(float x);

    // What a kind of result is.
    static AvgOctaveTarget GetOctaveTarget(std::uint32_t process);
    static bool IsSpectral(std::uint32_t process);
    static bool IsXSpectrum(std::uint32_t process);
    static bool IsProcessOrbit(std::uint32_t process);
    static bool IsRmsPeakPossible(std::uint32_t process);

    // Describes the stored block; see storage/record_io.h.
    void Outline(RecordOutline& out) const;

protected:
    // The host has set a new size, which the arrays that it lent have too.
    virtual void FollowSize() {}
    static bool SharesBit(std::uint32_t mask, std::uint32_t constant) { return (mask & constant) != 0; }
    // The lower limit of Y precisions; a NaN isn't changed.
    static float AtLeastPrecision(float precision) { return precision < 1e-30F ? 1e-30F : precision; }

    SizeType m_resultType = SizeType::Vector;
    SignalType m_complexType = SignalType::Real;
    std::uint32_t m_dimension = 0;
    TypeUnite m_unitFormat = TypeUnite::EU;
    std::uint32_t m_processType = 0;
    std::uint32_t m_wtfProcessType = 0;
    std::int32_t m_size = 0;
    CGrandeur* m_magnitude = nullptr;
    std::uint32_t m_rotationDir = 1;
    float m_currentSpeed = -1.0F;
    float m_startRevPosTab[kStartRevPositions];
    OFILETIME m_resultDate;
    float m_absPrecisionY = 0.0F;
    float m_absPrecisionX = 0.0F;
    float m_relPrecisionX = 0.0F;
    float m_relPrecisionY = 0.0F;
    float m_absPrecisionZ = 0.0F;
    float m_relPrecisionZ = 0.0F;

private:
    friend class CListVectorRef; // copies precisions without the lower limit of the setters

    template <class Io, class Self>
    static bool fields(Io& io, Self& v);
};

} // namespace ZelmResult
