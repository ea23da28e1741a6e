#pragma once

#include "zelmresult/support/wstring.h"

namespace ZelmResult {

// The weighting functions: the constant that is stored, the index at which it is listed for users, and its name in the
// host's language. The constants 13 and 14 are older codes of 9 and 10.
class ResultWeightingFunctionString {
public:
    // "Unknown" for any other value.
    static wstring constant_to_translated_tstring(int constant);
    static wstring index_to_translated_tstring(int index);
    static int constant_to_index(int constant); // -1 for an unknown constant
    static int index_to_constant(int index);    // 0 for an index outside 0 to 18
    // One less than the number of indexes: a loop up to it leaves out the last, and callers depend on that.
    static int weightingFunctionCount() { return 18; }
};

} // namespace ZelmResult
