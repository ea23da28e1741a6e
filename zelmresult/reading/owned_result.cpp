#include "zelmresult/reading/owned_result.h"

#include "zelmresult/document/result_header.h"
#include "zelmresult/results/result_factory.h"
#include "zelmresult/waterfalls/ref_waterfall.h"

namespace ZelmResult {

void ResultDeleter::operator()(CResult* result) const
{
    const auto* series = dynamic_cast<const CRefWaterfall*>(result);
    CWaterfallRef* reference = series != nullptr ? series->GetMyVecteurReference() : nullptr;
    if (reference != nullptr && !reference->IsInList()) delete reference;
    delete result;
}

OwnedResult MakeResult(const CResultHeader& header)
{
    return OwnedResult(ResultFactory::create(header.processType(), static_cast<int>(header.GetWaterfallDimension()),
                                             header.responseName())
                           .release());
}

} // namespace ZelmResult
