// Recordings as columns of numbers: a byte each for what the user says of them, then the file.

#include "fuzz/recorded.h"
#include "tools/signal_processing/recordings/csv_file.h"

using namespace ZelmResult;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::Input input(data, size);
    zmxf::CsvFormat format;
    if (const std::size_t column = input.choice(5); column != 4) format.timeColumn = column;
    if (format.timeColumn == 0 || input.choice(2) == 0) format.rate = 48000.0;
    if (const std::size_t delimiter = input.choice(6); delimiter != 0) format.delimiter = " ,;|\t:"[delimiter];
    if (const std::size_t decimal = input.choice(3); decimal != 0) format.decimal = decimal == 1 ? '.' : ',';
    format.skip = input.choice(3);
    fuzz::CheckRecording(input.rest(), [&format](FileHandle& file, const std::string& path) {
        return zmxf::OpenCsvFile(file, path, format);
    });
    return 0;
}
