// A file of any bytes.

#include "fuzz/laws.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    ZelmResult::fuzz::CheckDocument(ZelmResult::fuzz::Input(data, size).rest());
    return 0;
}
