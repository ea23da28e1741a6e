#pragma once

#include "zelmresult/reading/listed_result.h"

namespace ZelmResult {

class CMmioFile;
struct OMMCKINFO;

// Appends the results in the list "RESU" of a system, in the order of their headers and without those that listings
// leave out. results is the list, with the file at its first chunk. One walk finds headers and data: no chunk is
// visited twice.
void ListResults(CMmioFile& file, OMMCKINFO& results, std::int32_t system, Listing<ListedResult>& listing);

} // namespace ZelmResult
