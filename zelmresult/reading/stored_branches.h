#pragma once

#include "zelmresult/document/systeme.h"
#include "zelmresult/quantities/grandeur.h"
#include "zelmresult/reading/read_error.h"
#include "zelmresult/recordings/itrack.h"
#include "zelmresult/recordings/record.h"
#include "zelmresult/settings/config_data.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace ZelmResult {

class StoredQuantities;

// What a reader gives besides results. All of these can be moved, own what they hold and outlive the reader.

// A quantity and the code by which results name it. Equal quantities are one object.
struct StoredQuantity {
    std::uint32_t code = 0;
    std::shared_ptr<const CGrandeurFichier> quantity; // never null
};

// The settings of a system.
struct StoredSettings {
    std::int32_t system = 0;
    std::unique_ptr<CConfigData> tree; // never null
    std::optional<ReadError> damage;   // why the tree ends early, when it isn't whole
};

// The recording of a system, and the transducers of its channels, each as far as it could be read.
class StoredRecording {
public:
    StoredRecording(std::int32_t system, std::unique_ptr<CSysteme> branches,
                    std::shared_ptr<StoredQuantities> quantities, std::optional<ReadError> damage)
        : m_system(system), m_quantities(std::move(quantities)), m_branches(std::move(branches)),
          m_damage(std::move(damage))
    {
    }

    [[nodiscard]] std::int32_t system() const { return m_system; }
    [[nodiscard]] const CRecord* record() const { return m_branches->getRecord(); } // lends; null without one
    [[nodiscard]] const std::vector<CITrack*>& transducers() const { return m_branches->iTracks(); } // lends
    // Why a part of it is missing.
    [[nodiscard]] const std::optional<ReadError>& damage() const { return m_damage; }

private:
    std::int32_t m_system;
    std::shared_ptr<StoredQuantities> m_quantities; // those of the tracks
    std::unique_ptr<CSysteme> m_branches;
    std::optional<ReadError> m_damage;
};

} // namespace ZelmResult
