#pragma once

#include "zelmresult/document/result_header.h"
#include "zelmresult/reading/read_error.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace ZelmResult {

// What was found, as far as it could be read. An entry that could not be read is left out.
template <class T>
struct Listing {
    std::vector<T> items;
    std::optional<ReadError> damage; // why the first of them is missing

    void NoteDamage(ReadError error)
    {
        if (!damage) damage = std::move(error);
    }
};

// Where a chunk is in the file.
struct ChunkPlace {
    std::uint32_t code = 0;
    std::int32_t offset = -1; // of its header, 8 bytes before the data; -1 for a chunk that isn't there
    std::uint32_t size = 0;   // of its data, as the header has it

    [[nodiscard]] bool IsThere() const { return offset >= 0; }
};

// A result in a listing. Copies share the header, which outlives the reader.
struct ListedResult {
    std::int32_t system = 0;
    std::shared_ptr<const CResultHeader> header; // never null
    ChunkPlace headerChunk;
    ChunkPlace data;
};

} // namespace ZelmResult
