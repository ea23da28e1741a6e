#pragma once

#include "tools/zmxf/base/failure.h"
#include "zelmresult/document/hard_info.h"
#include "zelmresult/document/result_header.h"
#include "zelmresult/document/systeme.h"
#include "zelmresult/quantities/grandeur.h"
#include "zelmresult/recordings/itrack.h"
#include "zelmresult/recordings/record.h"
#include "zelmresult/results/result.h"
#include "zelmresult/settings/config_data.h"
#include "zelmresult/waterfalls/list_vector_ref.h"
#include "zelmresult/waterfalls/waterfall_ref.h"

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

// Result documents on disk, as info and show look at them. All functions throw Failure.

namespace zmxf {

// A result header with the system that holds the result.
struct ListedResult {
    std::int32_t system = 0;
    std::unique_ptr<ZelmResult::CResultHeader> header;
};

// What a document tells without the data of its results.
struct DocumentOutline {
    std::uint16_t version = 0;
    std::uint32_t type = 0; // see ZelmResult::FileType
    std::vector<ZelmResult::strHardInfo> hardware;
    std::int32_t systems = 0;
    std::vector<std::unique_ptr<ZelmResult::CGrandeurFichier>> quantities;
    // Codes of the stored quantities, in file order. Equal quantities come as one.
    std::vector<std::pair<std::string, const ZelmResult::CGrandeurFichier*>> codes;
    std::vector<ListedResult> results; // in file order: the index is the number by which users name a result
};

DocumentOutline ReadOutline(const std::string& path);

// The settings of a system.
struct StoredSettings {
    std::int32_t system = 0;
    ZelmResult::CConfigData config;
    bool isWhole = true; // false: what could be read before the first damage
};

// Of the systems that hold some.
std::vector<std::unique_ptr<StoredSettings>> ReadSettings(const std::string& path);

// The recording of a system, and the transducers of its channels.
struct StoredRecording {
    std::int32_t system = 0;
    std::unique_ptr<ZelmResult::CSysteme> branches;
    bool isWhole = true; // false: what could be read before the first damage of each

    [[nodiscard]] const ZelmResult::CRecord* record() const { return branches->getRecord(); } // null without one
    [[nodiscard]] const std::vector<ZelmResult::CITrack*>& transducers() const { return branches->iTracks(); }
};

// Those of all systems, with the quantities that their tracks use.
struct StoredRecordings {
    std::vector<std::unique_ptr<ZelmResult::CGrandeur>> quantities;
    std::vector<StoredRecording> systems;
};

StoredRecordings ReadRecordings(const std::string& path);

// The headers alone, as in DocumentOutline.
std::vector<ListedResult> ReadHeaders(const std::string& path);

// One result with its data, what it uses, and of a result along a waterfall its references.
struct StoredResult {
    ListedResult listed;
    std::vector<std::unique_ptr<ZelmResult::CGrandeur>> quantities;
    std::unique_ptr<ZelmResult::CListVectorRef> references; // null for any other result
    std::unique_ptr<ZelmResult::CWaterfallRef> ownReference;
    std::unique_ptr<ZelmResult::CResult> result;
};

// Reads the headers and the data of that result only. Its units are ready to show decibels.
StoredResult ReadResult(const std::string& path, std::size_t number);
// For a result that was read and is of a class that the program can't show.
Failure Unshowable(const std::string& path, const StoredResult& stored, std::size_t number);

} // namespace zmxf
