#pragma once

#include "zelmresult/quantities/grandeur.h"

#include <cstdint>
#include <map>

namespace ZelmResult {

class CMmioFile;
class RecordOutline;

// An X axis with evenly spaced points between two limits, in SI units of its quantity, or with octave bands. It is a
// second base of the results that use it, with its own stored block.
// Stored as  version 1: quantity, XMax, XMin, XnOctave.
// Owns       nothing; the quantity is kept as a pointer, and copies share it.
class CRegXAxis {
public:
    static constexpr const char* kRecordName = "CRegXAxis";

    CRegXAxis() = default;
    // The arguments have no effect: an axis starts empty, and hosts set its fields.
    CRegXAxis(CGrandeur* quantity, float min, float max, std::uint32_t xnOctave);
    CRegXAxis(const CRegXAxis&) = default;
    CRegXAxis& operator=(const CRegXAxis&) = default;
    virtual ~CRegXAxis() = default;

    [[nodiscard]] virtual bool Write(CMmioFile* file);
    [[nodiscard]] virtual bool Read(CMmioFile* file);
    virtual void AddInvolvedGrandeur(std::map<CGrandeur*, int>& counts) const;
    virtual void ReplaceGrandeur(CGrandeurFichier* old, CGrandeur* replacement);
    virtual CRegXAxis& operator=(CRegXAxis* other);        // null changes nothing
    [[nodiscard]] virtual CRegXAxis* GetXAxisCopy() const; // gives

    [[nodiscard]] CGrandeur* GetXMagnitude() const { return m_xMagnitude; } // may be null
    void SetXMagnitude(CGrandeur* quantity) { m_xMagnitude = quantity; }
    // 0 on a linear axis.
    [[nodiscard]] std::uint32_t GetXnOctave() const { return m_xnOctave; }
    void SetXnOctave(std::uint32_t bands) { m_xnOctave = bands; }
    [[nodiscard]] float GetXMin() const { return m_xMin; }
    void SetXMin(float value) { m_xMin = value; }
    [[nodiscard]] float GetXMax() const { return m_xMax; }
    void SetXMax(float value) { m_xMax = value; }
    bool operator==(const CRegXAxis& other) const; // the quantity by pointer
    void Outline(RecordOutline& out) const;

private:
    template <class Io, class Self>
    static bool fields(Io& io, Self& axis);

    CGrandeur* m_xMagnitude = nullptr;
    std::uint32_t m_xnOctave = 0;
    float m_xMin = 0.0F;
    float m_xMax = 0.0F;
};

} // namespace ZelmResult
