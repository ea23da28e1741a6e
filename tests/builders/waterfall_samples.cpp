#include "tests/builders/waterfall_samples.h"

#include "tests/builders/samples.h"

namespace ZelmResult::test {

namespace {

constexpr std::int32_t kBlocks = 4;
const wstring kShown = u"Speed";

CWaterfall* NewWaterfall(CListVectorRef* list)
{
    auto* waterfall = new CWaterfall(2, 2, 3, kBlocks, list, SignalType::Real, true);
    (void)waterfall->AllocateTabBlockNumber(kBlocks);
    for (std::int32_t block = 0; block < kBlocks; ++block) {
        waterfall->SetBlocNumber(waterfall->AddBlock(block, -1), block);
        waterfall->GetTabData(0, block).CopySliceFrom(std::vector<float>{1, 2, static_cast<float>(block)}.data(), 3);
    }
    waterfall->SetFilled(kBlocks);
    return waterfall;
}

} // namespace

CResultHeader* NewTiedHeader(std::uint32_t process, std::uint32_t dimension, const wstring& response)
{
    return new CResultHeader(HeaderOf({.processType = process,
                                       .responseName = response,
                                       .waterfallDimension = dimension,
                                       .chosenReference = kShown}));
}

CRefWaterfall* NewSeries(const wstring& name, CListVectorRef* list, CGrandeur* quantity)
{
    auto* result = dynamic_cast<CRefWaterfall*>(
        ResultFactory::create(otype::ElementaryResultProcess::fromInteger(42), 1, name).release());
    if (list != nullptr) result->SetReferenceList(list);
    result->SetMagnitude(quantity);
    result->SetSize(kBlocks);
    for (std::int32_t block = 0; block < kBlocks; ++block)
        (void)result->AddRefValue(static_cast<float>(100 * block), block, false);
    result->SetFilled(kBlocks);
    return result;
}

TiedWaterfall AddTiedWaterfall(CZMXFFile& document, std::uint16_t system, bool inList, bool isRegistered)
{
    TiedWaterfall added;
    document.AjouteGrandeur(added.quantity = NewQuantity(u"rotation"), OwnershipOwned);
    added.list = new CListVectorRef(false);
    for (const wstring& name : {wstring(u"Slice number"), kShown}) {
        added.series.push_back(NewSeries(name, added.list, added.quantity));
        if (inList) added.list->AddVectorRef(added.series.back()->GetMyVecteurReference());
        document.AjouteResultat(NewTiedHeader(42, 1, name), added.series.back(), system, isRegistered);
    }
    added.waterfall = NewWaterfall(added.list);
    added.waterfall->SetReference(kShown, nullptr, nullptr);
    document.AjouteResultat(NewTiedHeader(2, 2, u"Microphone"), added.waterfall, system, isRegistered);
    return added;
}

} // namespace ZelmResult::test
