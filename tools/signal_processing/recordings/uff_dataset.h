#pragma once

#include "tools/signal_processing/recordings/line_reader.h"
#include "tools/signal_processing/recordings/sample_source.h"

#include <string>
#include <vector>

namespace zmxf {

// A function at nodal DOF, dataset 58 or 58b: what its header says, and where its data are.
struct UffDataset {
    std::int64_t line = 0; // on which it begins
    std::string name = {};
    std::string description = {};
    std::string entity = {}; // of the response
    std::string unit = {};
    int function = 0;
    bool isOverTime = false;
    bool isEven = true;
    bool isDouble = false;
    bool isComplex = false;
    bool isBinary = false;
    bool isBigEndian = false;
    double rate = 0.0; // Hz
    std::int64_t points = 0;
    std::int64_t dataAt = 0;   // in the file
    std::int64_t dataLine = 0; // lines in front of the data

    // In binary data.
    [[nodiscard]] std::int64_t bytesPerPoint() const
    {
        return (isDouble ? 8 : 4) * (isComplex ? 2 : 1) + (isEven ? 0 : 4);
    }
    [[nodiscard]] bool IsTimeSignal() const;
};

// The datasets that are recordings, in their order. Others are skipped; notes says how many functions are no time
// signals. Throws RecordingError.
std::vector<UffDataset> FindUffDatasets(ZelmResult::FileHandle& file, const std::string& path,
                                        std::vector<std::string>& notes);

// Whether the file begins as one of datasets does.
bool IsUff(ZelmResult::FileHandle& file, const std::string& path);

} // namespace zmxf
