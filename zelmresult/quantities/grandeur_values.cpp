// The values of a quantity in its current unit.

#include "zelmresult/quantities/grandeur.h"

namespace ZelmResult {

void CGrandeur::SI_to_string(wstring& out, float value, float absPrecision, float relPrecision, wstring& prefix,
                             wstring& label, bool dB, const CPonderationUnite* weighting, int rounding,
                             std::int16_t notation) const
{
    if (m_uniteCourante == nullptr)
        out = CUnite::textNotANumber();
    else
        m_uniteCourante->ScalaireSIToString(out, value, absPrecision, relPrecision, prefix, label, dB, weighting,
                                            rounding, notation);
}

void CGrandeur::courant_to_string(wstring& out, float value, float absPrecision, float relPrecision, wstring& prefix,
                                  wstring& label, bool dB, const CPonderationUnite* weighting,
                                  std::int16_t notation) const
{
    if (m_uniteCourante == nullptr)
        out = CUnite::textNotANumber();
    else
        m_uniteCourante->ScalaireCourantToString(out, value, absPrecision, relPrecision, prefix, label, dB, weighting,
                                                 CUnite::kRoundNearest, notation);
}

float CGrandeur::ConvertSIToScalaire(float value, bool dB) const
{
    return m_uniteCourante == nullptr ? value : m_uniteCourante->ScalaireSIToScalaire(value, dB);
}

double CGrandeur::ConvertToScalaire(double value, bool dB) const
{
    return m_uniteCourante == nullptr ? value : m_uniteCourante->ScalaireToScalaireSI(value, dB);
}

double CGrandeur::AdjustScalaire(float value, float absPrecision, float relPrecision, bool dB) const
{
    return m_uniteCourante == nullptr ? static_cast<double>(value)
                                      : m_uniteCourante->AdjustScalaire(value, absPrecision, relPrecision, dB);
}

float CGrandeur::LinTodB(float value) const
{
    return m_uniteCourante == nullptr ? value : m_uniteCourante->LinTodB(value);
}

float CGrandeur::DbToLin(float level) const
{
    return m_uniteCourante == nullptr ? level : m_uniteCourante->DbToLin(level);
}

float CGrandeur::DiffDbToRatioLin(float difference) const
{
    return m_uniteCourante == nullptr ? difference : m_uniteCourante->DiffDbToRatioLin(difference);
}

void CGrandeur::concat_SI_string(wstring& text, const wstring& prefix, const wstring& label, bool blank)
{
    const bool isZero = text == u"0";
    if (blank) text += CUnite::M_chEmpty;
    if (!isZero) text += prefix;
    text += label;
}

} // namespace ZelmResult
