#pragma once

#include "tools/zmxf/showing/shown_levels.h"
#include "tools/zmxf/showing/shown_vector.h"
#include "tools/zmxf/showing/shown_waterfall.h"
#include "zelmresult/reading/document_reader.h"

#include <optional>
#include <string>
#include <vector>

namespace zmxf {

// What of which result a user wants to see.
struct ShowOptions {
    std::string document;
    std::size_t number = 0;
    std::size_t top = 0; // peaks; 0: all points
    bool decibels = false;
    SliceChoice slice;

    [[nodiscard]] Scale ShownScale() const { return decibels ? Scale::Decibels : Scale::Linear; }
};

// A result as it is shown: a level, several of them, a vector, or a waterfall with the slice that was chosen, if any.
struct ShownResult {
    ZelmResult::ListedResult listed;
    ZelmResult::LabelledResult labelled; // of a chosen slice, that one
    std::vector<ShownScalar> levels;
    std::optional<ShownWaterfall> waterfall;
    std::optional<std::size_t> slice;
    std::optional<ShownVector> vector;
};

// Throws Failure for options that don't suit the result, and for one that can't be shown.
ShownResult ReadShownResult(ZelmResult::DocumentReader& reader, const ShowOptions& options);

} // namespace zmxf
