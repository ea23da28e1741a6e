#pragma once

#include "zelmresult/zelmresult.h"

#include <vector>

// Waterfalls whose references are stored in lists of a system.

namespace ZelmResult::test {

// What was added, lent: a waterfall of four slices and two series along it, "Slice number" and "Speed", of which the
// waterfall shows the latter. All use one list, which holds the references of the series.
struct TiedWaterfall {
    CGrandeur* quantity = nullptr;
    CListVectorRef* list = nullptr;
    std::vector<CRefWaterfall*> series;
    CWaterfall* waterfall = nullptr;
};
// Without inList the list stays empty; without isRegistered the system doesn't know it.
TiedWaterfall AddTiedWaterfall(CZMXFFile& document, std::uint16_t system = 0, bool inList = true,
                               bool isRegistered = true);

CResultHeader* NewTiedHeader(std::uint32_t process, std::uint32_t dimension, const wstring& response);
// Of four values of blocks 0 to 3. list may be null.
CRefWaterfall* NewSeries(const wstring& name, CListVectorRef* list, CGrandeur* quantity);

} // namespace ZelmResult::test
