#pragma once

#include "zelmresult/results/result.h"

#include <memory>

namespace ZelmResult {

// What GetCopy gives, for a class of results that can be made without arguments.
template <class Result>
CResult* CopyOf(Result& result)
{
    auto copy = std::make_unique<Result>();
    *copy = static_cast<CResult*>(&result);
    return copy.release();
}

} // namespace ZelmResult
