#include "zelmresult/quantities/ponderation_unite.h"

#include "zelmresult/quantities/ponderation_string.h"
#include "zelmresult/quantities/result_weighting_function_string.h"

namespace ZelmResult {

void CPonderationUnite::SetPonderationLabelUnite(int function)
{
    const PonderationString::Labels* labels = PonderationString::translated(function);
    m_hasLinString = m_hasDbString = labels != nullptr;
    m_lin = labels != nullptr ? labels->lin : wstring();
    m_db = labels != nullptr ? labels->db : wstring();
    m_abreviation = GetFunctionName(function);
}

wstring CPonderationUnite::GetFunctionName(int function)
{
    return function == 0 ? wstring() : ResultWeightingFunctionString::constant_to_translated_tstring(function);
}

void CPonderationUnite::loadString() { PonderationString::initialize_translated(); }

} // namespace ZelmResult
