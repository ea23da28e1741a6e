#pragma once

#include "fuzz/laws.h"
#include "zelmresult/document/zmxf_file.h"

#include <string>
#include <utility>
#include <vector>

// Whole documents to begin with, and their chunks.

namespace ZelmResult::fuzz {

struct Chunk {
    std::uint32_t code = 0;
    std::uint32_t type = 0; // of a list
    Data data;              // of a plain chunk
    std::vector<Chunk> children;
    std::uint32_t falseSize = 0; // written instead of the true one, unless 0
    bool isBare = false;         // data without a header, such as the text that settings begin with

    [[nodiscard]] bool isList() const { return type != 0; }
};
// The chunks of a valid file, one after the other.
std::vector<Chunk> ChunksOf(const Data& bytes);
Data BytesOf(const std::vector<Chunk>& chunks);

// Adds a small result of a kind; nothing for one without a class.
void AddResult(CZMXFFile& document, int kind, int dimension);

// What a document stores. older names records to be stored at older versions.
using Versions = std::vector<std::pair<std::string, std::uint16_t>>;
Data Saved(CZMXFFile& document, const Versions& older = {});

// Documents that hold all there is between them: branches, references, one result of each class.
const std::vector<Data>& WholeDocuments();

} // namespace ZelmResult::fuzz
