#include "tools/zmxf/exporting/exported_scale.h"

#include "tools/zmxf/base/text.h"
#include "tools/zmxf/showing/value_text.h"

#include <limits>

namespace zmxf {

ExportedScale::ExportedScale(const ZelmResult::LabelledArray& array, Role role, const ExportChoices& choices)
    : m_quantity(array.quantity), m_isShown(choices.units == ExportUnits::Shown && !UnitLabel(m_quantity).empty()),
      m_isDecibels(choices.decibels && role == Role::Data && HasDecibels(m_quantity))
{
    if (m_isDecibels)
        m_unit = "dB re " + DecibelReference(m_quantity);
    else if (m_isShown)
        m_unit = UnitLabel(m_quantity);
    else if (m_quantity)
        m_unit = Printable(m_quantity->siSymbol);
}

float ExportedScale::operator()(float si) const
{
    if (m_isDecibels) {
        const std::optional<double> level = InDecibels(si, m_quantity);
        return level ? static_cast<float>(*level) : std::numeric_limits<float>::quiet_NaN();
    }
    return m_isShown ? static_cast<float>(InUnit(si, m_quantity)) : si;
}

} // namespace zmxf
