#pragma once

#include "zelmresult/reading/labelled_quantity.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <optional>

namespace zmxf {

// Between two values; infinite where only one of them is a finite number.
double Distance(double a, double b);
double Distance(const std::complex<float>& a, const std::complex<float>& b);

// How far values may be apart and still count as the same. As it is, not at all.
struct Tolerance {
    double relative = 0.0;               // parts of the larger value
    double absolute = 0.0;               // in SI units; both add up
    std::optional<double> decibels = {}; // of data whose quantity has levels, besides

    // Two NaNs are the same, and so are two equal infinities.
    [[nodiscard]] bool Holds(double a, double b) const;
    [[nodiscard]] bool Holds(const std::complex<float>& a, const std::complex<float>& b) const;
    // The same for values of a quantity that has levels: they may also be apart by what the decibels allow. Signs and
    // phases count: what has the opposite one is no near level.
    template <class T>
    [[nodiscard]] bool HoldsForLevels(const T& a, const T& b, const ZelmResult::LabelledQuantity& quantity) const
    {
        return Holds(a, b) || (decibels && AreNear(Distance(a, b), std::min(std::abs(a), std::abs(b)), quantity));
    }

private:
    [[nodiscard]] bool AreNear(double distance, double smaller, const ZelmResult::LabelledQuantity& quantity) const;
};

} // namespace zmxf
