// Time signals of Universal Files.

#include "fuzz/recorded.h"
#include "tools/signal_processing/recordings/uff_file.h"

using namespace ZelmResult;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::Input input(data, size);
    fuzz::CheckRecording(input.rest(), zmxf::OpenUffFile);
    return 0;
}
