// Waterfalls and their references in documents: what comes back, and who frees what.

#include "tests/document/samples.h"
#include "zelmresult/zelmresult.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ZelmResult {
namespace {

using namespace test;
using Values = std::vector<float>;

constexpr std::int32_t kBlocks = 4;
const wstring kPath = u"document.zmxf";
const wstring kNames[] = {u"Slice number", u"Speed"};

CResultHeader* NewHeaderOf(std::uint32_t process, std::uint32_t dimension, const wstring& response)
{
    CResultHeader* header = NewHeader(process);
    header->SetWaterfallDimension(dimension);
    header->setResponseName(response);
    header->setChosenReference(kNames[1]);
    return header;
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

CWaterfall* NewWaterfall(CListVectorRef* list)
{
    auto* waterfall = new CWaterfall(2, 2, 3, kBlocks, list, SignalType::Real, true);
    (void)waterfall->AllocateTabBlockNumber(kBlocks);
    for (std::int32_t block = 0; block < kBlocks; ++block) {
        waterfall->SetBlocNumber(waterfall->AddBlock(block, -1), block);
        waterfall->GetTabData(0, block).CopySliceFrom(Values{1, 2, static_cast<float>(block)}.data(), 3);
    }
    waterfall->SetFilled(kBlocks);
    return waterfall;
}

Values ValuesOf(CRefWaterfall& series)
{
    return series.GetRealValue() == nullptr ? Values{}
                                            : Values(series.GetRealValue(), series.GetRealValue() + series.GetSize());
}

CRefWaterfall* SeriesOf(const CSysteme& system, const wstring& name)
{
    for (const auto& [header, result] : system.getMapResult())
        if (auto* series = dynamic_cast<CRefWaterfall*>(result); series != nullptr && header->responseName() == name)
            return series;
    return nullptr;
}

CWaterfall* WaterfallOf(const CSysteme& system)
{
    for (const auto& [header, result] : system.getMapResult())
        if (auto* waterfall = dynamic_cast<CWaterfall*>(result); waterfall != nullptr) return waterfall;
    return nullptr;
}

class References : public ::testing::Test {
protected:
    // A waterfall and two series along it. With inList their references are in the list that all of them use.
    void Build(CZMXFFile& document, bool inList, bool isRegistered)
    {
        document.AjouteGrandeur(quantity = NewQuantity(u"speed"), OwnershipOwned);
        list = new CListVectorRef(false);
        series.clear();
        for (const wstring& name : kNames) {
            series.push_back(NewSeries(name, list, quantity));
            if (inList) list->AddVectorRef(series.back()->GetMyVecteurReference());
        }
        waterfall = NewWaterfall(list);
        waterfall->SetReference(kNames[1], nullptr, nullptr);
        for (int i = 0; i < 2; ++i)
            document.AjouteResultat(NewHeaderOf(42, 1, kNames[i]), series[static_cast<std::size_t>(i)], 0,
                                    isRegistered);
        document.AjouteResultat(NewHeaderOf(2, 2, u"Microphone"), waterfall, 0, isRegistered);
    }
    std::unique_ptr<CZMXFFile> Load(bool good = true)
    {
        auto document = std::make_unique<CZMXFFile>(true, false);
        EXPECT_EQ(document->Load(kPath.c_str(), ZMXFFileLoadScope::all()), good);
        return document;
    }

    CGrandeur* quantity = nullptr;
    CListVectorRef* list = nullptr;
    std::vector<CRefWaterfall*> series;
    CWaterfall* waterfall = nullptr;
    MemoryDisk disk;
    UseBackend use{disk};
};

} // namespace

TEST_F(References, ComeBackTied)
{
    CZMXFFile document(true, false);
    Build(document, true, true);
    document.NeedToRemoveEverything(true);
    const auto bytes = SavedBytes(document);
    disk[kPath] = bytes;
    const auto loaded = Load();
    loaded->NeedToRemoveEverything(true);
    const CSysteme& system = *loaded->getSystem(0);
    ASSERT_EQ(system.GetArPtrListeReferences().size(), 1U);
    CListVectorRef* shared = system.getListeReference(0);
    EXPECT_EQ(shared->GetCount(), 2);
    CWaterfall* read = WaterfallOf(system);
    CRefWaterfall* speed = SeriesOf(system, u"Speed");
    ASSERT_TRUE(read != nullptr && speed != nullptr);
    EXPECT_TRUE(read->GetReferences() == shared && speed->GetReferences() == shared);
    EXPECT_EQ(read->GetChosenReference(), speed->GetMyVecteurReference());
    EXPECT_TRUE(system.IsInListReferences(speed->GetMyVecteurReference()));
    EXPECT_EQ(speed->GetRealValue(), speed->GetMyVecteurReference()->GetRefValue());
    EXPECT_EQ(ValuesOf(*speed), (Values{0, 100, 200, 300}));
    const auto* reference = dynamic_cast<CWaterfallRef*>(read->GetChosenReference());
    EXPECT_TRUE(reference->GetSortedBlocNumbers()[2] == 2 && reference->IsTacho());
    EXPECT_EQ(reference->GetMagnitude(), loaded->GetGrandeur(u"speed"));
    EXPECT_EQ(read->GetTabPoint(0, 2, 2), 2);
    expectBytes(SavedBytes(*loaded), AsBytes(bytes));

    // The references by themselves, and what a cut file leaves.
    CListVectorRef fetched(true);
    CZMXFFile reader(true, false);
    CRefWaterfall& plain = *speed;
    EXPECT_TRUE(reader.FillListeVecteurRef(&plain, u"", fetched, kPath.c_str(), 0, 0));
    EXPECT_TRUE(fetched.GetCount() == 2 && fetched.GetRef(1)->name() == u"Speed");
    const std::unique_ptr<CGrandeur> ofFetched(fetched.GetFirstRef()->GetMagnitude());
    EXPECT_FALSE(reader.FillListeVecteurRef(nullptr, nullptr, fetched, kPath.c_str(), 0, 5)) << "no such system";
    EXPECT_TRUE(reader.FillListeVecteurRef(nullptr, nullptr, fetched, kPath.c_str(), 7, 0)) << "nothing to read";
    EXPECT_EQ(fetched.GetCount(), 2);
    for (std::size_t cut = bytes.size() / 3; cut < bytes.size(); cut += 7) {
        disk[kPath] = std::vector<char>(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(cut));
        CZMXFFile broken(true, false);
        (void)broken.Load(kPath.c_str(), ZMXFFileLoadScope::all());
        broken.NeedToRemoveEverything(true);
    }
}

// A second list that fits, a reference that nobody shows, a failure behind one that was taken over.
TEST_F(References, OfWhichSomeFitNobody)
{
    CZMXFFile document(true, false);
    Build(document, true, true);
    document.NeedToRemoveEverything(true);
    auto* stray = new CWaterfallRef(23, 2, u"Torque", SignalType::Real, false);
    list->AddVectorRef(stray);
    CListVectorRef unused(true); // registered, with no user
    auto* other = new CWaterfallRef(23, 2, u"Speed", SignalType::Real, false);
    unused.AddVectorRef(other);
    document.getSystem(0)->SetArPtrListeReferences({&unused});
    const auto bytes = SavedBytes(document);
    disk[kPath] = bytes;
    for (const bool removesEverything : {true, false}) {
        auto loaded = Load();
        loaded->NeedToRemoveEverything(removesEverything);
        EXPECT_EQ(loaded->getSystem(0)->GetArPtrListeReferences().size(), 2U);
        EXPECT_EQ(loaded->getSystem(0)->getListeReference(0)->GetCount(), 3);
        EXPECT_EQ(loaded->getSystem(0)->getListeReference(1)->GetCount(), 1);
        std::set<CResult*> results;
        for (const auto& entry : loaded->getSystem(0)->getMapResult()) results.insert(entry.second);
        loaded.reset();
        if (!removesEverything)
            for (CResult* result : results) delete result;
    }

    std::vector<char> spoilt = bytes; // the version of the last reference
    const char code[] = {'V', '0', '0', '0'};
    const auto last = std::find_end(spoilt.begin(), spoilt.end(), std::begin(code), std::end(code));
    ASSERT_NE(last, spoilt.end());
    *(last + 8 + 4) = 'x'; // in the block of the base
    *(last + 8 + 5) = 'x';
    disk[kPath] = spoilt;
    const auto loaded = Load();
    loaded->NeedToRemoveEverything(true);
    CRefWaterfall* speed = SeriesOf(*loaded->getSystem(0), u"Speed");
    EXPECT_NE(speed->GetMyVecteurReference(), nullptr);
    EXPECT_EQ(ValuesOf(*speed).size(), 4U);
}

// Every way in which results, references and lists go, with the leak checker watching.
TEST_F(References, GoWithWhoHoldsThem)
{
    const std::function<void(CZMXFFile&)> ways[] = {
        [](CZMXFFile&) {},
        [](CZMXFFile& document) { EXPECT_TRUE(document.getSystem(0)->RemoveAllResultats()); },
        [](CZMXFFile& document) {
            CSysteme& system = *document.getSystem(0);
            while (system.GetResultsNumber() > 0)
                EXPECT_TRUE(system.RemoveResultat(system.getMapResult().begin()->first));
        },
        [](CZMXFFile& document) {
            CSysteme& system = *document.getSystem(0);
            EXPECT_TRUE(system.RemoveResultat(system.getMapResult().begin()->first));
        },
        [](CZMXFFile& document) {
            CSysteme& system = *document.getSystem(0);
            EXPECT_TRUE(
                system.ReplaceResultat(NewHeader(9), system.getMapResult().begin()->first, NewScalar(9, 1, nullptr)));
        },
        [](CZMXFFile& document) { EXPECT_FALSE(SavedBytes(document).empty()); },
    };
    for (const auto& way : ways)
        for (const bool inList : {true, false})
            for (const bool isRegistered : {true, false})
                for (const bool isLoaded : {false, true}) {
                    SCOPED_TRACE(::testing::Message() << &way - ways << inList << isRegistered << isLoaded);
                    auto document = std::make_unique<CZMXFFile>(true, false);
                    Build(*document, inList, isRegistered);
                    if (isLoaded) {
                        document->NeedToRemoveEverything(true);
                        disk[kPath] = SavedBytes(*document);
                        document = Load();
                    }
                    document->NeedToRemoveEverything(true);
                    way(*document);
                }

    // Results that outlive their document: the host deletes them and their references, in any order.
    for (const bool inList : {true, false})
        for (int order = 0; order < 6; ++order) {
            auto document = std::make_unique<CZMXFFile>(true, false);
            Build(*document, inList, true);
            CWaterfallRef* reference = series[1]->GetMyVecteurReference();
            std::vector<std::function<void()>> deletions = {[&] { delete series[0]; }, [&] { delete waterfall; },
                                                            [&] { delete series[1]; }};
            if (!inList) {
                CWaterfallRef* first = series[0]->GetMyVecteurReference();
                deletions.emplace_back([first] { delete first; });
                deletions.emplace_back([reference] { delete reference; });
                deletions.emplace_back([&document] { document.reset(); });
            }
            std::rotate(deletions.begin(), deletions.begin() + order % static_cast<int>(deletions.size()),
                        deletions.end());
            document.reset();
            for (const auto& deletion : deletions) deletion();
        }

    // Lists behind one that died are stored and come back under their indexes.
    {
        CZMXFFile document(true, false);
        Build(document, true, true);
        document.NeedToRemoveEverything(true);
        auto* second = new CListVectorRef(false);
        CRefWaterfall* shown = NewSeries(u"Torque", second, quantity);
        second->AddVectorRef(shown->GetMyVecteurReference());
        document.AjouteResultat(NewHeaderOf(42, 1, u"Torque"), shown, 0, true);
        CSysteme& system = *document.getSystem(0);
        while (system.GetResultsNumber() > 1) (void)system.RemoveResultat(system.getMapResult().begin()->first);
        EXPECT_TRUE(system.getListeReference(0) == nullptr && system.getListeReference(1) == second);
        disk[kPath] = SavedBytes(document);
        const auto loaded = Load();
        loaded->NeedToRemoveEverything(true);
        CRefWaterfall* read = SeriesOf(*loaded->getSystem(0), u"Torque");
        ASSERT_TRUE(read != nullptr && loaded->getSystem(0)->GetArPtrListeReferences().size() == 2);
        EXPECT_EQ(read->GetReferences(), loaded->getSystem(0)->getListeReference(1));
        loaded->getSystem(0)->SetArPtrListeReferences({});
    }

    // A list that dies leaves its place.
    CZMXFFile document(true, false);
    Build(document, true, true);
    document.NeedToRemoveEverything(true);
    CSysteme& system = *document.getSystem(0);
    EXPECT_EQ(system.getListeReference(0), list);
    delete list;
    EXPECT_TRUE(system.getListeReference(0) == nullptr && system.GetArPtrListeReferences().size() == 1);
    EXPECT_TRUE(waterfall->GetReferences() == nullptr && series[0]->GetMyVecteurReference() == nullptr);
}

} // namespace ZelmResult
