#pragma once

#include "tools/zmxf/showing/value_text.h"
#include "zelmresult/reading/labelled_result.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// Waterfalls slice by slice.

namespace zmxf {

// Which slice a user wants: one of these, or none.
struct SliceChoice {
    std::optional<std::size_t> index;
    std::optional<std::int32_t> block;
    std::string at = {}; // "3000rpm": the slice whose reference of that unit comes next to it

    [[nodiscard]] bool IsMade() const { return index || block || !at.empty(); }
};

// A value per slice, a NaN where there is none.
struct SliceReference {
    std::string name;
    Quantity quantity;
    Precision precision;
    std::vector<float> values;
    bool isChosen = false;
};

struct ShownWaterfall {
    std::vector<std::int32_t> blocks; // of the slices, in rising order
    std::vector<SliceReference> references;

    // The index of a slice. Throws Failure for one that there isn't.
    [[nodiscard]] std::size_t Find(const SliceChoice& choice) const;
};

// Of a waterfall, with or without its data.
ShownWaterfall DescribeWaterfall(const ZelmResult::LabelledResult& labelled);

} // namespace zmxf
