#pragma once

#include "tools/zmxf/exporting/uff_text.h"
#include "zelmresult/reading/labelled_result.h"

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace zmxf {

// Takes what a Universal File can't hold of a result, in words.
using UffWarn = std::function<void(const std::string&)>;

// What the values along an axis of a function are: a line of its header.
struct UffAxis {
    // Specific data types.
    static constexpr int kUnknown = 0;
    static constexpr int kGeneral = 1;
    static constexpr int kTime = 17;
    static constexpr int kFrequency = 18;
    static constexpr int kSpeed = 19; // in rpm
    static constexpr int kOrder = 20;

    int type = kUnknown;
    int length = 0; // exponents of the units
    int force = 0;
    int temperature = 0;
    std::string label;
    std::string unit;
    double factor = 1.0; // from SI to what the type asks for

    [[nodiscard]] float operator()(float si) const;
    // Without a line feed. Warns of a label that is cut.
    [[nodiscard]] std::string Line(const UffWarn& warn) const;
};

// label is for values without a quantity, and for orders.
UffAxis UffAxisOf(const std::optional<ZelmResult::LabelledQuantity>& quantity, const ZelmResult::wstring& label,
                  const UffWarn& warn);
// Of a coordinate; null for points that are only counted.
UffAxis UffAxisOf(const ZelmResult::LabelledArray* coordinate, const UffWarn& warn);

// The text in its columns, of which it has count. Warns, by the name of the place, of what is cut off.
std::string UffColumns(const std::string& text, std::size_t count, const char* place, const UffWarn& warn);

// Where points are: at steps, as far as their floats can tell, or anywhere.
struct UffAbscissa {
    // Those of bands are no steps, however few there are.
    UffAbscissa(std::span<const float> points, bool areBands, const UffWarn& warn);

    bool isEven = false;
    UffReal first; // 0 for points that aren't even
    UffReal step;
};

} // namespace zmxf
