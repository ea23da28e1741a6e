#include "tools/zmxf/exporting/uff_axis.h"

#include "tools/zmxf/base/text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <fmt/format.h>
#include <limits>
#include <numbers>

namespace zmxf {

namespace {

using ZelmResult::LabelledQuantity;
using Exponents = std::array<double, LabelledQuantity::kBaseUnits>;

constexpr std::size_t kLabelColumns = 20;

bool IsSpecificType(int type)
{
    constexpr std::array types = {2, 3, 5, 6, 8, 9, 11, 12, 13, 15, 16, 17, 18, 19, 20, 21, 22, 23};
    return std::find(types.begin(), types.end(), type) != types.end();
}

Exponents PerSecond(double radians)
{
    Exponents exponents{};
    exponents[LabelledQuantity::Radian] = radians;
    exponents[LabelledQuantity::Second] = -1.0;
    return exponents;
}

// In turns per minute; none for what isn't a speed of rotation.
std::optional<double> FactorToRpm(const Exponents& exponents)
{
    if (exponents == PerSecond(0.0)) return 60.0;
    if (exponents == PerSecond(1.0)) return 30.0 / std::numbers::pi;
    return std::nullopt;
}

int TypeOf(const LabelledQuantity& quantity)
{
    const int type = quantity.uffType;
    const bool isOtherSpeed = type == UffAxis::kSpeed && !FactorToRpm(quantity.exponents);
    if (IsSpecificType(type) && !isOtherSpeed) return type;
    Exponents time{};
    if (quantity.exponents == time) return type == UffAxis::kUnknown ? UffAxis::kUnknown : UffAxis::kGeneral;
    time[LabelledQuantity::Second] = 1.0;
    if (quantity.exponents == time) return UffAxis::kTime;
    return quantity.exponents == PerSecond(0.0) ? UffAxis::kFrequency : UffAxis::kGeneral;
}

// What length, force and temperature leave of a dimension: "s^-1 A^-1".
std::string LeftOver(const Exponents& exponents)
{
    std::string rest;
    const auto add = [&](std::size_t unit, double exponent) {
        if (exponent == 0.0) return;
        rest += fmt::format("{}{}^{}", rest.empty() ? "" : " ", Printable(LabelledQuantity::kBaseSymbols[unit]),
                            ExactText(exponent));
    };
    for (std::size_t unit = 0; unit < exponents.size(); ++unit) {
        const bool isHeld =
            unit == LabelledQuantity::Meter || unit == LabelledQuantity::Kilogram || unit == LabelledQuantity::Kelvin;
        if (unit == LabelledQuantity::Second)
            add(unit, exponents[unit] + 2.0 * exponents[LabelledQuantity::Kilogram]);
        else if (!isHeld || exponents[unit] != std::floor(exponents[unit]))
            add(unit, exponents[unit]);
    }
    return rest;
}

} // namespace

float UffAxis::operator()(float si) const
{
    return factor == 1.0 ? si : static_cast<float>(static_cast<double>(si) * factor);
}

std::string UffColumns(const std::string& text, std::size_t count, const char* place, const UffWarn& warn)
{
    if (text.empty()) return fmt::format("{:{}}", "NONE", count);
    if (text.size() > count) {
        constexpr std::size_t most = 30; // that a warning quotes
        warn(text.size() > most ? fmt::format("the {} is cut to {} characters", place, count)
                                : fmt::format("the {} \"{}\" is cut to {} characters", place, text, count));
    }
    return fmt::format("{:{}}", text.substr(0, count), count);
}

std::string UffAxis::Line(const UffWarn& warn) const
{
    std::string line =
        fmt::format("{:10}{:5}{:5}{:5} {} {}", type, length, force, temperature,
                    UffColumns(label, kLabelColumns, "label", warn), UffColumns(unit, kLabelColumns, "unit", warn));
    return line.erase(line.find_last_not_of(' ') + 1);
}

UffAxis UffAxisOf(const std::optional<LabelledQuantity>& quantity, const ZelmResult::wstring& label,
                  const UffWarn& warn)
{
    UffAxis axis;
    axis.label = AsciiText(label);
    if (!quantity) return axis;
    if (!quantity->name.empty()) axis.label = AsciiText(quantity->name);
    axis.unit = AsciiText(quantity->siSymbol);
    axis.type = TypeOf(*quantity);
    const Exponents& exponents = quantity->exponents;
    axis.force = static_cast<int>(exponents[LabelledQuantity::Kilogram]);
    axis.length = static_cast<int>(exponents[LabelledQuantity::Meter] - exponents[LabelledQuantity::Kilogram]);
    axis.temperature = static_cast<int>(exponents[LabelledQuantity::Kelvin]);
    if (axis.type == UffAxis::kSpeed) {
        axis.factor = *FactorToRpm(exponents);
        axis.unit = "rpm";
    }
    if (const std::string rest = LeftOver(exponents); axis.type == UffAxis::kGeneral && !rest.empty())
        warn(fmt::format(
            "the unit {} is more than length, force and temperature, which is all that the file can say: {} "
            "is left over",
            Printable(quantity->siSymbol), rest));
    return axis;
}

UffAxis UffAxisOf(const ZelmResult::LabelledArray* coordinate, const UffWarn& warn)
{
    if (coordinate == nullptr) return {UffAxis::kUnknown, 0, 0, 0, "Point", "", 1.0};
    UffAxis axis = UffAxisOf(coordinate->quantity, coordinate->title, warn);
    if (coordinate->name == u"order" && axis.type == UffAxis::kUnknown) axis.type = UffAxis::kOrder;
    return axis;
}

UffAbscissa::UffAbscissa(std::span<const float> points, bool areBands, const UffWarn& warn)
{
    if (points.size() < 2 || areBands) return;
    const double start = ShortestDouble(points.front());
    const double end = ShortestDouble(points.back());
    const auto steps = static_cast<double>(points.size() - 1);
    const double rounding =
        std::max(std::fabs(start), std::fabs(end)) * static_cast<double>(std::numeric_limits<float>::epsilon());
    const double distance = (end - start) / steps;
    if (distance == 0.0) return;
    for (std::size_t i = 0; i < points.size(); ++i)
        if (std::fabs(start + distance * static_cast<double>(i) - static_cast<double>(points[i])) > rounding) return;
    isEven = true;
    first = UffReal(start, rounding / 2.0);
    step = UffReal(distance, rounding / 2.0 / steps);
    constexpr double most = 0.01; // of a step
    const double error = std::fabs(first.value + step.value * steps - end) / std::fabs(distance);
    if (error * std::fabs(distance) > rounding && error > most)
        warn(fmt::format("the step of its points, {}, has more digits than the file has room for: the last point is "
                         "off by {} of a step",
                         ExactText(distance), NumberText(error)));
}

} // namespace zmxf
