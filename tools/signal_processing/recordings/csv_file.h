#pragma once

#include "tools/signal_processing/recordings/sample_source.h"

#include <memory>

namespace zmxf {

// What a file with columns of numbers doesn't say itself.
struct CsvFormat {
    std::optional<double> rate = {}; // Hz; else from the times
    // Counted from 1; no channel; 0: there is none. Else the first column, where its name is that of a time and its
    // values are even times.
    std::optional<std::size_t> timeColumn = {};
    std::optional<char> delimiter = {}; // else by the content, as the decimal mark
    std::optional<char> decimal = {};
    std::size_t skip = 0; // lines at the start

    [[nodiscard]] bool IsGiven() const { return *this != CsvFormat(); }
    bool operator==(const CsvFormat&) const = default;
};

// A row per sample, a column per channel, in front of them a line of names or none: "Casing [g]" names a unit too.
// Gives nothing when the file has no row of numbers; throws RecordingError when it can't be read as the format says.
// Keeps a pointer to the file; path is for messages.
std::unique_ptr<SampleSource> OpenCsvFile(ZelmResult::FileHandle& file, const std::string& path,
                                          const CsvFormat& format);

} // namespace zmxf
