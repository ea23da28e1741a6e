#pragma once

#include "zelmresult/document/file_header.h"
#include "zelmresult/storage/chunk_kinds.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

namespace zmxf {

// A branch of systems.
struct Branch {
    ZelmResult::ChunkKind kind; // a list, or one of the references
    std::uint32_t bits;         // that name it in the type word
    bool isNeeded;              // in each system of a document whose type word names it
};

inline constexpr Branch kBranches[] = {
    {ZelmResult::ChunkKind::Recording, ZelmResult::FileType::kRecording, true},
    {ZelmResult::ChunkKind::Results, ZelmResult::FileType::kResults | ZelmResult::FileType::kRecordPreview, true},
    {ZelmResult::ChunkKind::Transducers, ZelmResult::FileType::kTracks, false},
    {ZelmResult::ChunkKind::Settings, ZelmResult::FileType::kSettings, true},
    {ZelmResult::ChunkKind::Reference, ZelmResult::FileType::kReferences, false},
};

constexpr bool IsBranch(ZelmResult::ChunkKind kind)
{
    return std::any_of(std::begin(kBranches), std::end(kBranches),
                       [kind](const Branch& branch) { return branch.kind == kind; });
}

} // namespace zmxf
