// Waterfalls and their references in documents: what is restored, and who frees what.

#include "tests/builders/waterfall_samples.h"
#include "tests/document/document_fixture.h"
#include "zelmresult/zelmresult.h"

#include <functional>

namespace ZelmResult {
namespace {

using namespace test;
using Values = std::vector<float>;

Values ValuesOf(CRefWaterfall& series) { return {series.GetRealValue(), series.GetRealValue() + series.GetSize()}; }

template <class Result>
Result& ResultOf(const CSysteme& system, const wstring& name)
{
    for (const auto& [header, result] : system.getMapResult())
        if (header->responseName() == name) return dynamic_cast<Result&>(*result);
    throw std::out_of_range("no such result");
}

class References : public LoadsDocuments {
protected:
    // The sample dies with the document unless it outlives it.
    void Build(CZMXFFile& document, bool inList = true, bool isRegistered = true, bool outlives = false)
    {
        const TiedWaterfall sample = AddTiedWaterfall(document, 0, inList, isRegistered);
        quantity = sample.quantity;
        list = sample.list;
        series = sample.series;
        waterfall = sample.waterfall;
        document.NeedToRemoveEverything(!outlives);
    }
    CGrandeur* quantity = nullptr;
    CListVectorRef* list = nullptr;
    std::vector<CRefWaterfall*> series;
    CWaterfall* waterfall = nullptr;
};

} // namespace

TEST_F(References, ComeBackTied)
{
    CZMXFFile document(true, false);
    Build(document);
    const auto bytes = SavedBytes(document);
    const auto loaded = Load(bytes);
    const CSysteme& system = *loaded->getSystem(0);
    ASSERT_EQ(system.GetArPtrListeReferences().size(), 1U);
    CListVectorRef* shared = system.getListeReference(0);
    EXPECT_EQ(shared->GetCount(), 2);
    auto& read = ResultOf<CWaterfall>(system, u"Microphone");
    auto& speed = ResultOf<CRefWaterfall>(system, u"Speed");
    EXPECT_EQ(read.GetReferences(), shared);
    EXPECT_EQ(speed.GetReferences(), shared);
    EXPECT_EQ(read.GetChosenReference(), speed.GetMyVecteurReference());
    EXPECT_TRUE(system.IsInListReferences(speed.GetMyVecteurReference()));
    EXPECT_EQ(speed.GetRealValue(), speed.GetMyVecteurReference()->GetRefValue());
    EXPECT_EQ(ValuesOf(speed), (Values{0, 100, 200, 300}));
    const auto* reference = dynamic_cast<CWaterfallRef*>(read.GetChosenReference());
    EXPECT_EQ(reference->GetSortedBlocNumbers()[2], 2);
    EXPECT_TRUE(reference->IsTacho());
    EXPECT_EQ(reference->GetMagnitude(), loaded->GetGrandeur(u"rotation"));
    EXPECT_EQ(read.GetTabPoint(0, 2, 2), 2);
    expectBytes(SavedBytes(*loaded), AsBytes(bytes));

    // The references by themselves.
    CListVectorRef fetched(true);
    CZMXFFile reader(true, false);
    EXPECT_TRUE(reader.FillListeVecteurRef(&speed, u"", fetched, kPath.c_str(), 0, 0));
    const std::unique_ptr<CGrandeur> ofFetched(fetched.GetFirstRef()->GetMagnitude());
    EXPECT_FALSE(reader.FillListeVecteurRef(nullptr, nullptr, fetched, kPath.c_str(), 0, 5)) << "no such system";
    EXPECT_TRUE(reader.FillListeVecteurRef(nullptr, nullptr, fetched, kPath.c_str(), 7, 0)) << "nothing to read";
    EXPECT_EQ(fetched.GetCount(), 2);
    EXPECT_EQ(fetched.GetRef(1)->name(), u"Speed");
}

// Every way in which results, references and lists die, with the leak checker watching.
TEST_F(References, GoWithWhoHoldsThem)
{
    const auto removeFirst = [](CSysteme& system) {
        EXPECT_TRUE(system.RemoveResultat(system.getMapResult().begin()->first));
    };
    const std::function<void(CSysteme&)> ways[] = {
        [](CSysteme&) {},
        removeFirst,
        [&](CSysteme& system) {
            while (system.GetResultsNumber() > 0) removeFirst(system);
        },
        [](CSysteme& system) { EXPECT_TRUE(system.RemoveAllResultats()); },
        [](CSysteme& system) {
            EXPECT_TRUE(
                system.ReplaceResultat(NewHeader(9), system.getMapResult().begin()->first, NewScalar(9, 1, nullptr)));
        },
    };
    for (const auto& way : ways)
        for (const bool inList : {true, false})
            for (const bool isRegistered : {true, false})
                for (const bool isLoaded : {false, true}) {
                    SCOPED_TRACE(::testing::Message() << &way - ways << inList << isRegistered << isLoaded);
                    auto document = std::make_unique<CZMXFFile>(true, false);
                    Build(*document, inList, isRegistered);
                    if (isLoaded) document = Load(SavedAnyway(*document));
                    way(*document->getSystem(0));
                }
}

// The host deletes them and their references, in any order.
TEST_F(References, OfResultsMayOutliveTheirDocument)
{
    for (const bool inList : {true, false})
        for (int order = 0; order < 6; ++order) {
            auto document = std::make_unique<CZMXFFile>(true, false);
            Build(*document, inList, true, true);
            std::vector<std::function<void()>> deletions = {[&] { delete series[0]; }, [&] { delete waterfall; },
                                                            [&] { delete series[1]; }};
            if (!inList)
                for (const CRefWaterfall* shown : series)
                    deletions.emplace_back([reference = shown->GetMyVecteurReference()] { delete reference; });
            std::rotate(deletions.begin(), deletions.begin() + order % static_cast<int>(deletions.size()),
                        deletions.end());
            document.reset();
            for (const auto& deletion : deletions) deletion();
        }
}

} // namespace ZelmResult
