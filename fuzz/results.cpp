// The data of a result: two bytes for its kind, one for its dimension, then the record.

#include "fuzz/laws.h"

using namespace ZelmResult;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::Input input(data, size);
    const auto kind = input.take<std::uint16_t>();
    const auto dimension = input.take<std::uint8_t>();
    const auto make = [&] { return std::shared_ptr<CResult>(fuzz::MakeResult(kind, dimension)); };
    if (make() != nullptr) fuzz::CheckRecord(input.rest(), [&] { return fuzz::SubjectOf(make()); });
    return 0;
}
