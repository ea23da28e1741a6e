#pragma once

#include "tools/zmxf/base/selection.h"
#include "tools/zmxf/comparing/branch_difference.h"
#include "tools/zmxf/comparing/result_difference.h"
#include "zelmresult/reading/listed_result.h"

#include <cstddef>
#include <string>
#include <vector>

namespace zmxf {

// What of which documents is compared.
struct CompareChoice {
    std::string a;
    std::string b;
    Selection selection; // when it is made, settings and recordings aren't compared
    Tolerance tolerance;
};

// A result with its number.
struct NumberedResult {
    std::size_t number = 0;
    ZelmResult::ListedResult listed;
};

// A pair of results that aren't the same.
struct ResultDifference {
    NumberedResult a;
    std::size_t numberInB = 0;
    std::vector<Difference> differences;

    // That of the data with the largest share; null when no data differ.
    [[nodiscard]] const Difference* Largest() const;
};

struct DocumentDifference {
    std::size_t compared = 0; // pairs
    std::vector<NumberedResult> onlyInA;
    std::vector<NumberedResult> onlyInB;
    std::vector<ResultDifference> results;
    std::vector<BranchDifference> settings;
    std::vector<BranchDifference> recordings;
    // Why results could not be compared: a line each.
    std::vector<std::string> failures;

    [[nodiscard]] bool IsEmpty() const;
    // The result whose data are furthest apart, in parts of their largest value; null when no data differ.
    [[nodiscard]] const ResultDifference* Largest() const;
};

// No more than two results are in memory. Throws Failure for documents, settings and recordings that can't be read as a
// whole.
DocumentDifference CompareDocuments(const CompareChoice& choice);

} // namespace zmxf
