#pragma once

#include "tools/zmxf/damage/chunk_writer.h"
#include "tools/zmxf/damage/salvage.h"
#include "tools/zmxf/damage/salvage_plan.h"

#include <span>
#include <string>

namespace zmxf {

struct Rebuilt {
    Salvaged report;
    ChunkWriter::Origins origins;
};

// Writes the document that a plan describes. root is that of the source's tree, and bytes its file. Throws Failure.
Rebuilt RebuildDocument(const std::string& path, std::span<const char> bytes, const Chunk& root,
                        const SalvagePlan& plan);

} // namespace zmxf
