#include "tools/zmxf/base/program_version.h"

#include "zelmresult/version.h"

#include <fmt/format.h>

namespace zmxf {

std::string ProgramVersion()
{
    return fmt::format("zmxf {}.{}.{}", ZelmResult::VersionMajor, ZelmResult::VersionMinor, ZelmResult::VersionPatch);
}

} // namespace zmxf
