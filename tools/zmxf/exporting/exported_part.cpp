#include "tools/zmxf/exporting/exported_part.h"

#include "tools/zmxf/base/text.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace zmxf {

namespace {

using ZelmResult::LabelledArray;
using ZelmResult::LabelledResult;
using Half = ExportedPart::Half;

constexpr float kMissing = std::numeric_limits<float>::quiet_NaN();

// Whether points lie along references, which then mark blocks that were left out.
bool HasGaps(const LabelledResult& result)
{
    if (result.data.empty() || result.data.front().dimensions.empty()) return false;
    const ZelmResult::wstring& dimension = result.data.front().dimensions.back();
    const LabelledArray* axis = result.Axis(dimension);
    return dimension == u"point" && (axis == nullptr || axis->isReference) &&
           result.form != ZelmResult::LabelledForm::Waterfall;
}

float HalfOf(const std::complex<float>& value, Half half)
{
    switch (half) {
    case Half::Real: return value.real();
    case Half::Imaginary: return value.imag();
    case Half::Phase: return std::arg(value) * 180.0F / std::numbers::pi_v<float>;
    default: return std::hypot(value.real(), value.imag());
    }
}

} // namespace

ExportedPart::ExportedPart(const LabelledResult& result, const LabelledArray& array, ExportedScale scale, Half half)
    : m_array(&array), m_scale(std::move(scale)), m_half(half), m_hasGaps(HasGaps(result))
{
}

std::string ExportedPart::Title() const
{
    std::string title = Printable(m_array->title.empty() ? m_array->name : m_array->title);
    switch (m_half) {
    case Half::Real: return title + " real";
    case Half::Imaginary: return title + " imaginary";
    case Half::Magnitude: return title + " magnitude";
    case Half::Phase: return title + " phase";
    default: return title;
    }
}

const char* ExportedPart::Suffix() const
{
    switch (m_half) {
    case Half::Real: return "_real";
    case Half::Imaginary: return "_imag";
    case Half::Magnitude: return "_magnitude";
    case Half::Phase: return "_phase";
    default: return "";
    }
}

std::string ExportedPart::Unit() const { return m_half == Half::Phase ? "\u00B0" : m_scale.Unit(); }

float ExportedPart::Stored(std::size_t i) const
{
    if (const auto* numbers = m_array->Numbers(); numbers != nullptr) return static_cast<float>((*numbers)[i]);
    if (const auto* complexes = m_array->Complexes(); complexes != nullptr) return HalfOf((*complexes)[i], m_half);
    return (*m_array->Floats())[i];
}

float ExportedPart::operator[](std::size_t i) const
{
    const float stored = Stored(i);
    if (m_hasGaps && std::isinf(stored)) return kMissing;
    return m_half == Half::Phase ? stored : m_scale(stored);
}

std::vector<ExportedPart> PartsOf(const LabelledResult& result, const LabelledArray& array, ExportedScale::Role role,
                                  const ExportChoices& choices)
{
    const ExportedScale scale(array, role, choices);
    if (array.Texts() != nullptr) return {};
    if (array.Complexes() == nullptr) return {{result, array, scale, Half::None}};
    const bool isPolar = choices.isPolar || scale.IsDecibels();
    return {{result, array, scale, isPolar ? Half::Magnitude : Half::Real},
            {result, array, scale, isPolar ? Half::Phase : Half::Imaginary}};
}

} // namespace zmxf
