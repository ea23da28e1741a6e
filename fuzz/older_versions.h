#pragma once

#include "fuzz/documents.h"

// Valid documents as older versions stored them, where a version moved or left out more than fields of a record.

namespace ZelmResult::fuzz {

// With the settings of all systems at a version of their list. Before 1025 modules and submodules had no flags.
std::vector<Chunk> WithSettingsOfVersion(std::vector<Chunk> chunks, std::uint16_t version);

// With the axes of references at a version. Only axes without references before their results' data are known.
std::vector<Chunk> WithAxesOfVersion(std::vector<Chunk> chunks, std::uint16_t version);

} // namespace ZelmResult::fuzz
