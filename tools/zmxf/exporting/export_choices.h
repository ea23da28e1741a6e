#pragma once

#include <cstdint>

namespace zmxf {

enum class ExportFormat : std::uint8_t { Csv, Json, Uff, UffBinary, Hdf5, Mat };
enum class ExportUnits : std::uint8_t { Si, Shown };

// How a user wants results to be written.
struct ExportChoices {
    ExportFormat format = ExportFormat::Csv;
    ExportUnits units = ExportUnits::Si;
    bool decibels = false; // data of quantities that have decibels; complex data become magnitude and phase
    bool isPolar = false;  // complex data as magnitude and phase, of CSV and JSON
    // CSV alone
    bool isLong = false;     // a row per value
    bool isJoined = false;   // results with equal axes in one table
    bool levelsOnly = false; // all scalars of all documents in one table
    bool isForExcel = false; // byte-order mark, semicolon, decimal comma
    char delimiter = ',';
    char decimalMark = '.';
    // HDF5 alone
    bool isCompressed = false;
};

} // namespace zmxf
