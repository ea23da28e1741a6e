#include "tests/builders/platform.h"

#include <cstdlib>

namespace ZelmResult::test {

std::optional<std::string> Variable::Value(const char* name)
{
    const char* value = std::getenv(name);
    return value != nullptr ? std::optional<std::string>(value) : std::nullopt;
}

} // namespace ZelmResult::test
