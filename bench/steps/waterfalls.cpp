#include "bench/steps/steps.h"

#include <array>
#include <memory>

namespace steps {

namespace {

// A vector along a waterfall, whose reference is in the list.
void AddSeries(Document& document, CListVectorRef* list, const wstring& name)
{
    auto* series = dynamic_cast<CRefWaterfall*>(
        ResultFactory::create(otype::ElementaryResultProcess::fromInteger(42), 1, name).release());
    series->SetReferenceList(list);
    series->SetSize(kValues);
    for (int block = 0; block < kValues; ++block) (void)series->AddRefValue(1.0F, block, false);
    series->SetFilled(kValues);
    list->AddVectorRef(series->GetMyVecteurReference());
    document.AjouteResultat(NewHeader(42, 1, name), series, 0, true);
}

CWaterfall* NewWaterfall(CListVectorRef* list, int lastBlock)
{
    auto* waterfall = new CWaterfall(2, 2, kValues, 2, list, SignalType::Real, true);
    (void)waterfall->AllocateTabBlockNumber(2);
    for (int block : {0, 1}) waterfall->SetBlocNumber(waterfall->AddBlock(block, -1), block * lastBlock);
    waterfall->SetFilled(2);
    return waterfall;
}

void AddOfListsOfTheirOwn(Document& document, int n)
{
    for (int i = 0; i < n; ++i) AddSeries(document, new CListVectorRef(false), Name(u"Speed ", i));
}

void OfListsOfTheirOwn(int n)
{
    Document document;
    AddOfListsOfTheirOwn(document, n);
}

void LoadOfListsOfTheirOwn(int n)
{
    Document document;
    AddOfListsOfTheirOwn(document, n);
    StoreAndLoad(document);
}

void AddOfOneList(Document& document, int n)
{
    auto* list = new CListVectorRef(false);
    AddSeries(document, list, u"Speed");
    for (int i = 0; i < n; ++i) {
        CWaterfall* waterfall = NewWaterfall(list, 1);
        waterfall->SetReference(u"Speed", nullptr, nullptr);
        document.AjouteResultat(NewHeader(2, 2, Name(u"Bearing ", i)), waterfall, 0, true);
    }
}

void OfOneList(int n)
{
    Document document;
    AddOfOneList(document, n);
}

void LoadOfOneList(int n)
{
    Document document;
    AddOfOneList(document, n);
    StoreAndLoad(document);
}

// Stored in the former layout, which has the references inside the result.
class FormerWaterfall : public CWaterfall {
public:
    FormerWaterfall() : CWaterfall(2, 2, kValues, 1, nullptr, SignalType::Real, true) {}
    bool Write(CMmioFile* file) override
    {
        constexpr std::uint16_t axisVersion = 2;
        CVectorRef reference(2, 0, u"Speed", SignalType::Real);
        bool written = file->mmioWrite_ushort(1) && CResult::Write(file) && file->mmioWrite_ushort(axisVersion) &&
                       file->mmioWrite_int(0) && file->mmioWrite_int(1) && reference.Write(file);
        for (int limit = 0; limit < 6; ++limit) written = written && file->mmioWrite_float(0);
        return written && file->WriteGrandeur(nullptr) && file->WriteGrandeur(nullptr);
    }
};

void LoadFormer(int n)
{
    Document document;
    for (int i = 0; i < n; ++i)
        document.AjouteResultat(NewHeader(2, 2, Name(u"Bearing ", i)), new FormerWaterfall, 0, false);
    const File file;
    document.SaveTo(file);
    Document loaded;
    loaded.LoadFrom(file);
    const std::size_t lists = n > 0 ? loaded.getSystem(0)->GetArPtrListeReferences().size() : 0;
    Require(lists == static_cast<std::size_t>(n), "a load of lists");
}

// The distance between blocks is a thousand times the number of waterfalls.
void CopySparse(int n)
{
    (void)CWaterfallBufferFactory::SetStrategy(EStrategy::StrategyDisk);
    for (int i = 0; i < n; ++i) {
        const std::unique_ptr<CWaterfall> waterfall(NewWaterfall(nullptr, 1000 * n));
        Require(waterfall->UpdateDataTab(), "the sparse form");
        const std::unique_ptr<CResult> copy(waterfall->GetCopy());
        const std::unique_ptr<CResult> whole(waterfall->GetWholeCopy());
    }
}

void RemoveAllResults(int n)
{
    Document document;
    AddSpectra(document, n);
    AddOfListsOfTheirOwn(document, n);
    AddOfOneList(document, n);
    Require(document.RemoveAllResultats(), "a removal");
}

// ---- The slices of one waterfall ----

std::unique_ptr<CWaterfall> Fill(int n, EStrategy strategy)
{
    constexpr std::array<float, kValues> values{1, 2, 3, 4};
    (void)CWaterfallBufferFactory::SetStrategy(strategy);
    auto waterfall = std::make_unique<CWaterfall>(2, 2, kValues, n, nullptr, SignalType::Real, true);
    (void)waterfall->AllocateTabBlockNumber(n);
    for (int block = 0; block < n; ++block) {
        const std::int32_t place = waterfall->AddBlock(block, -1);
        waterfall->SetBlocNumber(place, block);
        waterfall->GetTabData(0, place).CopySliceFrom(values.data(), kValues);
    }
    waterfall->SetFilled(n);
    return waterfall;
}

void LookAt(CWaterfall& waterfall, int n)
{
    constexpr int stride = 7919; // a prime: one far from the other
    std::array<float, kValues> values{};
    for (int i = 0; i < n; ++i)
        waterfall.GetValues(0, static_cast<std::int32_t>(std::int64_t{i} * stride % n), values.data(), kValues);
}

void FillInMemory(int n) { (void)Fill(n, EStrategy::StrategyAuto); }
void FillOnDisk(int n) { (void)Fill(n, EStrategy::StrategyDisk); }
void LookInMemory(int n) { LookAt(*Fill(n, EStrategy::StrategyAuto), n); }
void LookOnDisk(int n) { LookAt(*Fill(n, EStrategy::StrategyDisk), n); }

void AddFilled(Document& document, int n)
{
    document.AjouteResultat(NewHeader(2, 2, u"Bearing"), Fill(n, EStrategy::StrategyAuto).release(), 0, true);
}

void SaveSlices(int n)
{
    Document document;
    AddFilled(document, n);
    document.SaveTo(File());
}

void LoadSlices(int n)
{
    Document document;
    AddFilled(document, n);
    StoreAndLoad(document);
}

constexpr Job kJobs[] = {
    {"remove-all-results", RemoveAllResults, 2500, "nothing"},
    {"add-results-of-lists", OfListsOfTheirOwn, 3000, "nothing"},
    {"load-results-of-lists", LoadOfListsOfTheirOwn, 500, "add-results-of-lists"},
    {"add-results-of-one-list", OfOneList, 3000, "nothing"},
    {"load-results-of-one-list", LoadOfOneList, 1500, "add-results-of-one-list"},
    {"load-former-results", LoadFormer, 2500, "nothing"},
    {"copy-sparse-waterfalls", CopySparse, 500, "nothing"},
    {"fill-in-memory", FillInMemory, 10000, "nothing"},
    {"fill-on-disk", FillOnDisk, 10000, "nothing"},
    {"look-in-memory", LookInMemory, 10000, "fill-in-memory"},
    {"look-on-disk", LookOnDisk, 10000, "fill-on-disk"},
    {"save-slices", SaveSlices, 5000, "fill-in-memory"},
    {"load-slices", LoadSlices, 5000, "save-slices"},
};

} // namespace

std::span<const Job> WaterfallJobs() { return kJobs; }

} // namespace steps
