#include "python/src/bindings.h"
#include "python/src/failures.h"
#include "zelmresult/quantities/unite.h"
#include "zelmresult/quantities/user_strings.h"
#include "zelmresult/version.h"

#include <string>

PYBIND11_MODULE(_core, module)
{
    ZelmResult::ZelmResult_initializeUserStrings();
    ZelmResult::CUnite::setPrefix_micro(u"\u00B5"); // instead of the library's plain "u", as zmxf shows it
    binding::RegisterFailures();
    binding::BindQuantity(module);
    binding::BindReader(module);
    binding::BindWriter(module);
    using namespace ZelmResult;
    module.attr("version") =
        std::to_string(VersionMajor) + '.' + std::to_string(VersionMinor) + '.' + std::to_string(VersionPatch);
}
