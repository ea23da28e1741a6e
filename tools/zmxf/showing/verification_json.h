#pragma once

#include "tools/zmxf/damage/verification.h"
#include "tools/zmxf/showing/description.h"

namespace zmxf {

Json VerificationJson(const Verification& found);

} // namespace zmxf
