#pragma once

#include "tools/zmxf/showing/value_text.h"
#include "zelmresult/results/reg_vector.h"
#include "zelmresult/waterfalls/waterfall.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

// Waterfalls slice by slice, as they are after a load.

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
    const ZelmResult::CGrandeur* quantity = nullptr; // lent, may be null
    Precision precision;
    std::vector<float> values;
    bool isChosen = false;
};

struct ShownWaterfall {
    ZelmResult::CWaterfall* waterfall = nullptr; // lent
    std::vector<std::int32_t> blocks;            // of the slices, in rising order
    std::vector<SliceReference> references;

    // The index of a slice. Throws Failure for one that there isn't.
    [[nodiscard]] std::size_t Find(const SliceChoice& choice) const;
    // A copy of a slice, with the X axis of the waterfall.
    [[nodiscard]] std::unique_ptr<ZelmResult::CRegVector> Slice(std::size_t index) const;
};

// Nothing for a result that isn't a waterfall.
std::optional<ShownWaterfall> DescribeWaterfall(ZelmResult::CResult& result);

} // namespace zmxf
