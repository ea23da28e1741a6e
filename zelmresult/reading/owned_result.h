#pragma once

#include "zelmresult/results/result.h"

#include <memory>

namespace ZelmResult {

class CResultHeader;

// Deletes a result, and with a series along a waterfall the reference that it shows, unless a list holds that one.
struct ResultDeleter {
    void operator()(CResult* result) const;
};

// A result of the factory, and its only owner.
using OwnedResult = std::unique_ptr<CResult, ResultDeleter>;

// A new result of the class that a header asks for, without data; null for a kind without a class.
OwnedResult MakeResult(const CResultHeader& header);

} // namespace ZelmResult
