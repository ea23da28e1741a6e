#pragma once

#include "zelmresult/results/result.h"
#include "zelmresult/support/otype.h"
#include "zelmresult/support/wstring.h"

#include <memory>

namespace ZelmResult {

// Makes the empty object into which a stored result is read.
class ResultFactory {
public:
    // gives a new object for a kind of result and the WaterfallDimension of its header (0 none, 1 a reference of a
    // waterfall, 2 a waterfall, 5 a vector along one); null for a kind without a class. The sizes are provisional,
    // since Read replaces them. name becomes the name of the reference of a waterfall, which is made with the result
    // that shows it and isn't owned by it.
    static std::unique_ptr<CResult> create(const otype::ElementaryResultProcess& process, int waterfallDimension,
                                           const wstring& name);
    // Whether an object is of one of the library's own classes, and not of one that a host derived.
    static bool IsOwnClass(const CResult& result);
    static bool IsTachoProcessType(std::uint32_t process);
};

} // namespace ZelmResult
