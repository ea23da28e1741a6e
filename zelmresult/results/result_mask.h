#pragma once

#include "zelmresult/support/otype.h"

namespace ZelmResult {

// Which kinds of result are masks, limits drawn against a measurement, and which forms belong together: single or
// double, interpolated or not.
class ResultMask {
public:
    using Process = otype::ElementaryResultProcess;

    static bool isMask(Process process);
    static bool isMaskSingle(Process process);
    static bool isMaskDouble(Process process);
    static bool isMaskInterpolated(Process process);
    static bool isMaskNarrowBands(Process process);
    static bool isMaskProfile(Process process);
    static bool isMaskNOctave(Process process);
    // Whether a mask can be made from a result of this process.
    static bool isMaskGenerator(const otype::ResultProcess& process);

    // 37 for an unknown kind.
    static Process maskSingle(Process process);
    static Process maskDouble(Process process);
    // An unknown kind is returned as it is.
    static Process maskInterpolated(Process process);
    static Process maskNotInterpolated(Process process);
};

} // namespace ZelmResult
