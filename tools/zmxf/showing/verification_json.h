#pragma once

#include "tools/zmxf/damage/verification.h"
#include "tools/zmxf/showing/description.h"

namespace zmxf {

const char* VerdictText(Verification::Verdict verdict);
Json VerificationJson(const Verification& found);

} // namespace zmxf
