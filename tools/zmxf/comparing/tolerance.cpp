#include "tools/zmxf/comparing/tolerance.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zmxf {

namespace {

std::complex<double> Wide(const std::complex<float>& value) { return {value.real(), value.imag()}; }

} // namespace

double Distance(double a, double b)
{
    if (a == b || (std::isnan(a) && std::isnan(b))) return 0.0;
    const double distance = std::fabs(a - b);
    return std::isnan(distance) ? std::numeric_limits<double>::infinity() : distance;
}

double Distance(const std::complex<float>& a, const std::complex<float>& b)
{
    return std::hypot(Distance(Wide(a).real(), Wide(b).real()), Distance(Wide(a).imag(), Wide(b).imag()));
}

bool Tolerance::Holds(double a, double b) const
{
    const double distance = Distance(a, b);
    return distance == 0.0 ||
           (std::isfinite(distance) && distance <= absolute + relative * std::max(std::fabs(a), std::fabs(b)));
}

bool Tolerance::Holds(const std::complex<float>& a, const std::complex<float>& b) const
{
    const double distance = Distance(a, b);
    return distance == 0.0 || (std::isfinite(distance) &&
                               distance <= absolute + relative * std::max(std::abs(Wide(a)), std::abs(Wide(b))));
}

bool Tolerance::AreNear(double distance, double smaller, const ZelmResult::LabelledQuantity& quantity) const
{
    const auto factor = static_cast<double>(quantity.shown->decibelFactor);
    return std::isfinite(distance) && distance <= (std::pow(10.0, *decibels / factor) - 1.0) * smaller;
}

} // namespace zmxf
