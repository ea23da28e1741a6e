#pragma once

#include "tools/zmxf/exporting/export_choices.h"
#include "zelmresult/reading/labelled_result.h"

#include <cstdint>
#include <optional>
#include <string>

namespace zmxf {

// In which unit the values of an array are exported.
class ExportedScale {
public:
    // Decibels are for data; coordinates keep their unit.
    enum class Role : std::uint8_t { Coordinate, Data };

    ExportedScale(const ZelmResult::LabelledArray& array, Role role, const ExportChoices& choices);

    [[nodiscard]] bool IsDecibels() const { return m_isDecibels; }
    // "m/s²", "dB re 1 µm/s²"; empty for a plain number.
    [[nodiscard]] const std::string& Unit() const { return m_unit; }
    // Of a float of the array, or of the magnitude of a complex value in decibels. A float of the unit: NaN for a NaN,
    // and for what has no level.
    [[nodiscard]] float operator()(float si) const;

private:
    std::optional<ZelmResult::LabelledQuantity> m_quantity;
    bool m_isShown = false;
    bool m_isDecibels = false;
    std::string m_unit;
};

} // namespace zmxf
