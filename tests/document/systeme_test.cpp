#include "zelmresult/document/systeme.h"

#include "tests/document/document_fixture.h"
#include "zelmresult/support/text.h"
#include "zelmresult/waterfalls/list_vector_ref.h"
#include "zelmresult/waterfalls/vector_ref.h"

#include <array>
#include <cmath>

namespace ZelmResult {
namespace {

using namespace test;

// Counts those that live.
template <class Base>
struct Counted final : Base {
    explicit Counted(const Base& base) : Base(base) { ++alive; }
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;
    ~Counted() override { --alive; }
    static inline int alive = 0;
};
using CountedHeader = Counted<CResultHeader>;
using CountedResult = Counted<CScalar>;

CScalar* Level(float level)
{
    CScalar scalar(9, 1, SignalType::Real, false);
    scalar.lastValue(level);
    return new CountedResult(scalar);
}

// A header of kind 9 with a caption, which comparisons of this kind pass over.
CResultHeader* Header(const wstring& caption, std::int32_t window = -1, std::uint32_t opere = 0)
{
    return new CountedHeader(HeaderOf({.processType = 9, .opere = opere, .caption = caption, .numWindow = window}));
}

class Systeme : public LoadsDocuments {
protected:
    Systeme()
    {
        CountedHeader::alive = CountedResult::alive = 0;
        EXPECT_TRUE(document.AddSysteme(&system));
        document.NeedToRemoveEverything(true);
    }

    // a and b, of different windows, each with results that were worked out from it.
    void AddFamilies()
    {
        system.AjouteResultat(Header(u"a", 1), Level(1), false);
        system.AjouteResultat(Header(u"a2", 1, 2), Level(12), false);
        system.AjouteResultat(Header(u"b", 2), Level(2), false);
        system.AjouteResultat(Header(u"a3", 1, 3), Level(13), false);
        system.AjouteResultat(Header(u"b2", 2, 2), Level(22), false);
    }
    // What the system holds, as caption=level in the order of addition.
    static std::string Held(const CSysteme& system)
    {
        std::string text;
        for (const auto& [header, result] : system.getMapResult())
            text += ToUtf8(header->caption()) + "=" +
                    (result != nullptr ? std::to_string(std::lround(result->GetValue())) : "none") + " ";
        return text;
    }
    // What a save of the system gives, read back.
    std::string Saved() { return Held(*Load(SavedAnyway(document))->getSystem(0)); }

    CZMXFFile document{true, false};
    CSysteme& system = *new CSysteme; // of the document
};

TEST_F(Systeme, RemovesAResultWithWhatWasWorkedOutFromIt)
{
    AddFamilies();
    CResultHeader wanted;
    EXPECT_FALSE(system.RemoveResultat(&wanted)) << "another kind";
    wanted = *system.getMapResult().begin()->first;
    EXPECT_TRUE(system.RemoveResultat(&wanted));
    EXPECT_EQ(Held(system), "b=2 b2=22 ");
    EXPECT_EQ(Saved(), Held(system));
    EXPECT_FALSE(system.RemoveResultat(&wanted));
    EXPECT_TRUE(system.RemoveResultat(system.getMapResult().begin()->first)) << "by the stored header itself";
    EXPECT_EQ(Held(system), "");
    EXPECT_EQ(CountedHeader::alive + CountedResult::alive, 0);
}

TEST_F(Systeme, ReplacesAResultInItsPlace)
{
    AddFamilies();
    const std::unique_ptr<CResultHeader> unknown(Header(u"unknown", 3));
    CResultHeader* b = (system.getMapResult().begin() + 2)->first;
    EXPECT_FALSE(system.ReplaceResultat(b, unknown.get(), nullptr));
    // The new pair would itself pass for a result worked out from b.
    EXPECT_TRUE(system.ReplaceResultat(Header(u"new", 2, 1), b, Level(99)));
    EXPECT_EQ(Held(system), "a=1 a2=12 a3=13 new=99 ");
    EXPECT_EQ(Saved(), "a=1 a2=12 new=99 a3=13 ");
    EXPECT_EQ(CountedResult::alive, 4);

    // The same header and the same result may stay.
    const auto [header, result] = *system.getMapResult().begin();
    EXPECT_TRUE(system.ReplaceResultat(header, header, Level(7)));
    EXPECT_TRUE(system.ReplaceResultat(Header(u"renamed", 1), header, (system.getMapResult().end() - 1)->second));
    EXPECT_EQ(Saved(), "renamed=7 new=99 ");

    // And a header of the system may take another's place.
    EXPECT_TRUE(system.ReplaceResultat((system.getMapResult().end() - 1)->first, system.getMapResult().begin()->first,
                                       Level(5)));
    EXPECT_EQ(Held(system), Saved());
    EXPECT_EQ(system.GetResultsNumber(), 1);
    EXPECT_EQ(CountedHeader::alive, 1 + 1) << "and the unknown one";
    EXPECT_EQ(CountedResult::alive, 1);
}

TEST_F(Systeme, RemoveAllDeletesEverythingButReferenceLists)
{
    AddFamilies();
    CListVectorRef list(true);
    system.SetArPtrListeReferences({&list});
    system.SetArPtrListeReferences({nullptr, &list});
    EXPECT_EQ(system.TypeBits(), FileType::kResults | FileType::kReferences);
    auto* reference = new CVectorRef(23, 1, u"Time", SignalType::Real);
    EXPECT_FALSE(system.IsInListReferences(reference));
    list.AddVectorRef(reference);
    EXPECT_TRUE(system.IsInListReferences(reference));
    EXPECT_EQ(system.getListeReference(2), &list);
    EXPECT_EQ(system.getListeReference(3), nullptr);
    EXPECT_TRUE(system.RemoveAllResultats());
    EXPECT_EQ(CountedHeader::alive + CountedResult::alive, 0);
    EXPECT_EQ(system.GetResultsNumber(), 0);
    EXPECT_EQ(system.getListeReference(0), nullptr);
    EXPECT_EQ(list.GetCount(), 1);
    system.SetArPtrListeReferences({nullptr, &list});
    EXPECT_EQ(system.TypeBits(), 0U) << "the first list is null";
}

// For each key: a pair that differs in it and, the other way round, in all keys after it.
TEST_F(Systeme, OrderedListsGoByTheirKeys)
{
    using Keys = std::array<std::uint32_t, 7>; // the most important first
    const auto headerOf = [](const Keys& k) {
        CResultHeader* header = Header(u"");
        header->SetIdnResponse({{}, {k[0], k[1]}, {k[3], 1}, {}});
        header->SetProcessType(0x7FFFFFFF + k[2]); // numbers have no sign here
        header->SetIdnReference({{}, {9 - k[4], 1}, {1, k[4]}, {}});
        header->SetTemporel(0x7FFFFFFF + k[5]);
        header->SetNumReference(static_cast<std::int32_t>(0x7FFFFFFF + k[6]));
        return header;
    };
    for (std::size_t key = 0; key < std::tuple_size_v<Keys>; ++key)
        for (const bool lowFirst : {true, false}) {
            SCOPED_TRACE(key);
            Keys ofLow{};
            Keys ofHigh{};
            ofHigh[key] = 1;
            std::fill(ofLow.begin() + static_cast<std::ptrdiff_t>(key) + 1, ofLow.end(), 1);
            CResultHeader *low = headerOf(ofLow), *high = headerOf(ofHigh);
            CSysteme sorted;
            sorted.NeedToRemoveEverything(true);
            if (lowFirst) sorted.AjouteResultat(low, Level(1), true);
            sorted.AjouteResultat(high, Level(2), true);
            if (!lowFirst) sorted.AjouteResultat(low, Level(1), true);
            EXPECT_TRUE(sorted.headers().empty()) << "built on request only";
            EXPECT_TRUE(sorted.CreeListesResultatsOrdonnees());
            EXPECT_EQ(sorted.headers(), (std::vector{low, high}));
            for (std::size_t i = 0; i < 2; ++i) EXPECT_EQ(sorted.results()[i]->GetValue(), static_cast<float>(i + 1));
        }
}

TEST_F(Systeme, OrderedListsKeepTheOrderOfEqualOnes)
{
    for (int i = 0; i < 100; ++i) system.AjouteResultat(Header(u""), Level(static_cast<float>(i)), true);
    EXPECT_TRUE(system.CreeListesResultatsOrdonnees());
    for (std::size_t i = 0; i < 100; ++i) EXPECT_EQ(system.results()[i]->GetValue(), static_cast<float>(i));
}

} // namespace
} // namespace ZelmResult
