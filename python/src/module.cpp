#include "python/src/bindings.h"
#include "python/src/failures.h"
#include "zelmresult/version.h"

#include <string>

PYBIND11_MODULE(_core, module)
{
    binding::RegisterFailures();
    binding::BindQuantity(module);
    binding::BindReader(module);
    binding::BindWriter(module);
    using namespace ZelmResult;
    module.attr("version") =
        std::to_string(VersionMajor) + '.' + std::to_string(VersionMinor) + '.' + std::to_string(VersionPatch);
}
