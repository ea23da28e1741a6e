#pragma once

#include "tools/zmxf/exporting/exported_scale.h"

#include <cstdint>
#include <string>
#include <vector>

namespace zmxf {

// The values of an array of numbers as they are exported, or one half of complex ones. Keeps a reference to the array.
class ExportedPart {
public:
    enum class Half : std::uint8_t { None, Real, Imaginary, Magnitude, Phase };

    ExportedPart(const ZelmResult::LabelledResult& result, const ZelmResult::LabelledArray& array, ExportedScale scale,
                 Half half);

    [[nodiscard]] const ZelmResult::LabelledArray& array() const { return *m_array; }
    [[nodiscard]] Half half() const { return m_half; }
    [[nodiscard]] std::string Title() const;  // "H1 real"
    [[nodiscard]] const char* Suffix() const; // of the name: "_real"
    [[nodiscard]] std::string Unit() const;
    // NaN for what is missing, also for a block that was left out. Phases are in degrees.
    [[nodiscard]] float operator[](std::size_t i) const;

private:
    [[nodiscard]] float Stored(std::size_t i) const;

    const ZelmResult::LabelledArray* m_array;
    ExportedScale m_scale;
    Half m_half;
    bool m_hasGaps; // which are infinities
};

// All that is exported of an array: one part, or two of complex values. An array of texts has none.
std::vector<ExportedPart> PartsOf(const ZelmResult::LabelledResult& result, const ZelmResult::LabelledArray& array,
                                  ExportedScale::Role role, const ExportChoices& choices);

} // namespace zmxf
