#pragma once

#include "zelmresult/settings/reglage_data.h"

#include <memory>

namespace ZelmResult {

// Settings in a file follow each other in the chunk of their owner: for each a chunk with the key, then one with the
// value.

[[nodiscard]] bool WriteSettings(CMmioFile& file, const ReglageList& settings);
// Appends the settings of the file's current chunk, from the position on. False at the first that can't be read, or is
// of an unknown kind; those before it are kept.
[[nodiscard]] bool ReadSettings(CMmioFile& file, ReglageList& settings);
// The setting of exactly that identifier, searched in the same way; null without one, and when it can't be read.
std::unique_ptr<CReglageData> FindStoredSetting(CMmioFile& file, const idn::Idn& idn);

} // namespace ZelmResult
