#pragma once

#include "zelmresult/storage/field_observer.h"

#include <cstdint>
#include <string>
#include <vector>

namespace zmxf {

// A waterfall with slices for whose blocks one of its references holds no value.
struct BlocksWithoutReference {
    std::uint32_t code = 0; // of the waterfall's data
    std::size_t slices = 0;
    std::size_t count = 0; // of those without
    std::int32_t first = 0;
};

// What the library takes from a document.
struct LoadOutcome {
    bool isLoaded = false; // as a whole
    std::size_t settings = 0;
    std::size_t tracks = 0; // of recordings
    std::size_t transducers = 0;
    std::size_t references = 0;
    std::vector<BlocksWithoutReference> withoutReference;
};
// observer may be null; it hears of the fields that are read.
LoadOutcome TryToLoad(const std::string& path, ZelmResult::FieldObserver* observer);

} // namespace zmxf
