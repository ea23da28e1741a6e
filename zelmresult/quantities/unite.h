#pragma once

#include "zelmresult/storage/stored_record.h"
#include "zelmresult/support/wstring.h"

#include <cstdint>
#include <vector>

namespace ZelmResult {

class CPonderationUnite;

// One unit in which a quantity can be shown: unit value = SI value * CoeffA + CoeffB, and its decibel scale.
// Stored are the two coefficients, Ref0dB, CoefdB, the name and the linear label; all else has its default in a unit
// from a file. A plain value.
class CUnite {
public:
    CUnite() = default;

    [[nodiscard]] std::uint16_t GetId() const { return m_id; } // 10000 and up are user units
    void SetId(std::uint16_t id) { m_id = id; }
    [[nodiscard]] const wstring& GetUnitKey() const { return m_unitKey; } // the same in every language
    [[nodiscard]] const wstring& unitKey() const { return m_unitKey; }
    void SetUnitKey(const wstring& key) { m_unitKey = key; }
    [[nodiscard]] const wstring& GetNomUnite() const { return m_nomUnite; }
    void SetNomUnite(const wstring& name) { m_nomUnite = name; }
    [[nodiscard]] const wstring& GetLabelLinUnite() const { return m_labelLinUnite; }
    void SetLabelLinUnite(const wstring& label) { m_labelLinUnite = label; }
    [[nodiscard]] const wstring& GetLabeldBUnite() const { return m_labeldBUnite; }
    void SetLabeldBUnite(const wstring& label) { m_labeldBUnite = label; }
    [[nodiscard]] float GetCoeffA() const { return m_coeffA; }
    void SetCoeffA(float slope) { m_coeffA = slope; }
    [[nodiscard]] float GetCoeffB() const { return m_coeffB; }
    void SetCoeffB(float offset) { m_coeffB = offset; }

    // The linear value that reads 0 dB, and its cached inverse, by which linear values become decibels. Reading a unit
    // from a file leaves the inverse at 1: call SetRef0dB(GetRef0dB()) before showing such a unit in decibels.
    [[nodiscard]] float GetRef0dB() const { return m_ref0dB; }
    [[nodiscard]] float GetInvRef0dB() const { return m_invRef0dB; }
    void SetRef0dB(float reference); // sets both; 0 changes nothing
    void SetInvRef0dB(float inverse) { m_invRef0dB = inverse; }

    [[nodiscard]] float GetCoefdB() const { return m_coefdB; } // 20 for amplitudes, 10 for powers
    void SetCoefdB(float factor) { m_coefdB = factor; }
    // Powers of ten between which an SI prefix may be chosen.
    [[nodiscard]] std::int16_t GetLowPrefix() const { return m_lowPrefix; }
    void SetLowPrefix(std::int16_t power) { m_lowPrefix = power; }
    [[nodiscard]] std::int16_t GetHighPrefix() const { return m_highPrefix; }
    void SetHighPrefix(std::int16_t power) { m_highPrefix = power; }
    [[nodiscard]] bool isPrefixForced() const { return m_lowPrefix == m_highPrefix; }
    [[nodiscard]] std::uint16_t GetNotation() const
    {
        return m_notation;
    } // 0 fixed, 1 prefix, 2 engineering, 3 scientific
    void SetNotation(std::uint16_t notation) { m_notation = notation; }
    [[nodiscard]] bool GetNoZero() const { return m_noZero; }
    void SetNoZero(bool noZero) { m_noZero = noZero; }
    [[nodiscard]] bool GetDigits() const { return m_digits; } // a fixed number of decimals is printed
    void SetDigits(bool digits) { m_digits = digits; }
    [[nodiscard]] std::int32_t GetNbDigits() const { return m_nbDigits; } // printed with GetDigits, 1000 at most
    void SetNbDigits(std::int32_t digits) { m_nbDigits = digits; }
    [[nodiscard]] bool GetModifiable() const { return m_modifiable; } // a user unit
    void SetModifiable(bool modifiable) { m_modifiable = modifiable; }
    [[nodiscard]] std::uint16_t GetScaleAuthorized() const { return m_scaleAuthorized; }
    void SetScaleAuthorized(std::uint16_t mask) { m_scaleAuthorized = mask; }
    [[nodiscard]] bool IsScaleAuthorized(std::uint16_t mask) const { return (m_scaleAuthorized & mask) == mask; }
    [[nodiscard]] bool GetHideDecimalDigit() const { return m_hideDecimalDigit; } // kept for the host
    void SetHideDecimalDigit(bool hide) { m_hideDecimalDigit = hide; }

    // The labels with the suffix of a weighting; weighting may be null.
    [[nodiscard]] wstring GetLabelLinUnite(const CPonderationUnite* weighting) const;
    [[nodiscard]] wstring GetLabelDbUnite(const CPonderationUnite* weighting) const;
    [[nodiscard]] wstring GetLabelLinOrDbUnite(bool dB, const CPonderationUnite* weighting) const;

    // ---- Values: SI to this unit and back, linear and in decibels ----
    static constexpr float M_fNotANumber = -1000000.0F; // the level of a value that has no logarithm
    static constexpr char16_t M_chPoint = u'.';
    static constexpr char16_t M_chEmpty = u' ';
    static constexpr char16_t M_chZero = u'0';
    static constexpr char16_t M_chTiret = u'-';
    static constexpr char16_t M_chPlus = u'+';
    static constexpr char16_t M_chExposant = u'E';
    // Class-wide and unguarded; the host sets them when it starts: the resolution of printed levels in dB, and the
    // separator of ConvertWithRegionalSeparator.
    static inline double M_fPrecisionDb = static_cast<double>(0.01F);
    static inline char16_t M_chRegionalSeparator = M_chPoint;
    // Limited to the range of a float. In decibels with dB; M_fNotANumber for a value that isn't above 0.
    [[nodiscard]] float ScalaireSIToScalaire(float value, bool dB) const;
    [[nodiscard]] float ScalaireToScalaireSI(float value, bool dB) const;
    [[nodiscard]] double ScalaireToScalaireSI(double value, bool dB) const; // 0 for a unit whose slope is 0
    [[nodiscard]] float LinTodB(float value) const;
    [[nodiscard]] float DbToLin(float level) const;
    [[nodiscard]] float DiffDbToRatioLin(float difference) const; // a difference of levels as a ratio
    // An absolute precision in SI as one in this unit: its decade, as a power of ten.
    [[nodiscard]] float getCurrentAbsPrecision(float precision) const;

    // ---- Values as the text that a person reads: digits, SI prefix and label, each on its own ----
    // Which digits are worth printing follows from the absolute and the relative precision. What can't be printed is
    // "N.A.". The decimal point is "." always, see ConvertWithRegionalSeparator. weighting may be null. Formatting
    // corrects prefix limits of the unit that are out of range.
    static constexpr int kRoundDown = 0;
    static constexpr int kRoundNearest = 1;
    static constexpr int kRoundUp = 2;
    static constexpr std::int16_t kNotationOfUnit = -1; // as GetNotation says
    // A value and an absolute precision in SI. A level of a value that isn't above 0, or a value beyond the range,
    // empties prefix and label too.
    void ScalaireSIToString(wstring& out, float value, float absPrecision, float relPrecision, wstring& prefix,
                            wstring& label, bool dB, const CPonderationUnite* weighting, int rounding = kRoundNearest,
                            std::int16_t notation = kNotationOfUnit);
    // Both in this unit.
    void ScalaireCourantToString(wstring& out, float value, float absPrecision, float relPrecision, wstring& prefix,
                                 wstring& label, bool dB, const CPonderationUnite* weighting,
                                 int rounding = kRoundNearest, std::int16_t notation = kNotationOfUnit);
    // The value of the digits that would be printed, 0 for what prints as "0" or "N.A."; a level becomes its linear
    // value.
    [[nodiscard]] double AdjustScalaire(float value, float absPrecision, float relPrecision, bool dB) const;
    // Seconds, minutes with seconds, or hours with both. Two places wide, except for minutes after hours, which take as
    // many as they need: " 5\"", " 1' 5\"" for 65, " 1 2' 5\"" for 3725.
    static wstring TimeToString_seconds(std::int32_t seconds);
    static wstring textNotANumber() { return u"N.A."; }
    // The SI prefix of the power of ten 3 * index - 24, empty for an index outside 0 to 16.
    static wstring prefix(std::int32_t index);
    static void setPrefix_micro(const wstring& text);
    // Replaces every "." by the regional separator.
    static void ConvertWithRegionalSeparator(wstring& text);

    // How many fields differ, not counting the Id, the cached inverse and the scales. 0 means the same unit; null
    // differs.
    [[nodiscard]] int Compare(const CUnite* other) const;

protected:
    // The decimal digits worth printing as characters, the least significant first; the power of ten of the first; and
    // the number of places.
    struct DecimalDigits {
        wstring digits;
        std::int32_t n = 0;
        std::int32_t e = 0;

        [[nodiscard]] char16_t At(std::int32_t i) const;
    };
    struct Precision {
        double absolute;
        double relative;
    };
    // What follows from the choice of a notation: decimals, exponent and prefix.
    struct Form {
        std::int32_t decimals = 0;
        bool hasExponent = false;
        std::int32_t exponent = 0;
        bool hasPrefix = false;
        std::int32_t prefixPower = 0;
    };

    bool CalculResolution(float value, Precision precision, DecimalDigits& found, bool fixedDigits, int rounding,
                          bool dB) const;
    bool CalculResolutionDigits(float value, DecimalDigits& found) const;
    std::int32_t CalculFormat(wstring& out, bool negative, bool zero, DecimalDigits& found, wstring& prefix, bool dB,
                              std::int16_t notation);
    static std::int64_t SmartRound(float value, int rounding);
    [[nodiscard]] double AdjustScalaireLin(float value, float absPrecision, float relPrecision) const;
    [[nodiscard]] bool isNDigitsApplicable(std::int16_t notation) const;
    static void Traitement_Notation_Fixed(const DecimalDigits& found, Form& form);
    static void Traitement_Notation_Scientifique(const DecimalDigits& found, Form& form);
    static void Traitement_Notation_Ingenieur(const DecimalDigits& found, Form& form);
    void Traitement_Notation_Prefixe(const DecimalDigits& found, Form& form);

private:
    friend class CUniteMmioReaderWriter;

    [[nodiscard]] Form ChooseForm(const DecimalDigits& found, bool zeroOrLevel, std::int16_t notation);
    void FitDecimals(wstring& out, std::int32_t& decimals, bool hasPoint) const;
    [[nodiscard]] double NDigitResolution() const;

    std::uint16_t m_id = 0;
    wstring m_unitKey;
    wstring m_nomUnite;
    wstring m_labelLinUnite;
    wstring m_labeldBUnite = u"dB";
    float m_coeffA = 1.0F;
    float m_coeffB = 0.0F;
    float m_ref0dB = 1.0F;
    float m_invRef0dB = 1.0F;
    float m_coefdB = 20.0F;
    std::int16_t m_lowPrefix = -3;
    std::int16_t m_highPrefix = 3;
    std::uint16_t m_notation = 1;
    bool m_noZero = true;
    bool m_digits = false;
    std::int32_t m_nbDigits = 0;
    bool m_modifiable = false;
    std::uint16_t m_scaleAuthorized = 7;
    bool m_hideDecimalDigit = false;
};

// A list of units. It owns the array and never the units: those belong to whoever calls LiberationMemoire or
// DeleteUniteUser. A null in it counts in its size and is ignored otherwise.
class CListeUnite : public std::vector<CUnite*> {
public:
    CListeUnite() = default;
    CListeUnite(const CListeUnite&) = default;
    CListeUnite& operator=(const CListeUnite&) = default;
    virtual ~CListeUnite() = default;

    [[nodiscard]] int GetCount() const { return static_cast<int>(size()); }
    [[nodiscard]] CUnite* First() const; // lends; null when there is none
    // lends the first unit with that Id, or null.
    [[nodiscard]] CUnite* GetUnite(std::uint16_t id) const;
    [[nodiscard]] bool ObjetExiste(const CUnite* unit) const; // by Id
    // 0 when an equal unit is in the list, or the list is empty; else the sum of the differences to all units.
    [[nodiscard]] int UnitExist(const CUnite* unit) const;
    // 0 when every unit of the other list exists in this one.
    [[nodiscard]] int Compare(const CListeUnite* other) const;
    // Appends the units of the other list whose Id is new here; both lists then point at them.
    void Ajouter(const CListeUnite* other);
    // The smallest Id from 10000 up that no unit has; 65535 when all are taken.
    [[nodiscard]] std::uint16_t GetUniqueId() const;
    [[nodiscard]] int GetNbUserUnit() const;
    [[nodiscard]] std::vector<CUnite*> GetUserUnits() const;
    // Removes that very unit from the list and deletes it; nothing when it isn't in the list.
    void DeleteUniteUser(CUnite* unit);
    // Deletes every unit, each once even if it is listed twice, and empties the list.
    void LiberationMemoire();
};

// The stored form of a unit. False at the first failed field.
class CUniteMmioReaderWriter : public StoredFields<CUniteMmioReaderWriter, CUnite> {
public:
    static constexpr const char* kRecordName = "CUnite";
    [[nodiscard]] bool Read(CMmioFile& file, CUnite& unit) const;
    [[nodiscard]] bool Write(CMmioFile& file, const CUnite& unit) const;

private:
    friend StoredFields;
    template <class Io, class Unit>
    static bool fields(Io& io, Unit& unit);
};
extern template class StoredFields<CUniteMmioReaderWriter, CUnite>;

} // namespace ZelmResult
