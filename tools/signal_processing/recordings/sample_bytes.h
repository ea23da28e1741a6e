#pragma once

#include "zelmresult/storage/file_handle.h"

#include <cstdint>
#include <optional>

namespace zmxf {

// How many bytes of samples the header of a recording claims, and how many there are.
struct SampleBytes {
    std::int64_t announced = 0;
    std::int64_t present = 0;

    bool operator==(const SampleBytes&) const = default;
};

// Of a file that ends before its samples do, as one does whose copy was broken off. Nothing for a whole one, for a
// header that leaves the length open, as those of streams do, and for formats other than WAV, AIFF and AU.
std::optional<SampleBytes> FindCut(ZelmResult::FileHandle& file);

} // namespace zmxf
