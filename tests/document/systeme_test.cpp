#include "zelmresult/document/systeme.h"

#include "tests/document/samples.h"
#include "zelmresult/storage/mmio_file.h"
#include "zelmresult/support/text.h"
#include "zelmresult/waterfalls/list_vector_ref.h"
#include "zelmresult/waterfalls/vector_ref.h"

#include <cmath>
#include <functional>
#include <gtest/gtest.h>

namespace ZelmResult {
namespace {

using namespace test;

template <class Base>
class Counted final : public Base {
public:
    template <class... Arguments>
    explicit Counted(Arguments&&... arguments) : Base(std::forward<Arguments>(arguments)...)
    {
        ++alive;
    }
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;
    ~Counted() override { --alive; }
    static inline int alive = 0;
};
using CountedHeader = Counted<CResultHeader>;
using CountedResult = Counted<CScalar>;

CScalar* Level(float level)
{
    CScalar* scalar = new CountedResult(9U, 1, SignalType::Real, false);
    scalar->lastValue(level);
    return scalar;
}

// A header of kind 9 with a caption, which comparisons of this kind pass over.
CResultHeader* Header(const wstring& caption, std::int32_t window = -1, std::uint32_t opere = 0)
{
    CResultHeader* header = new CountedHeader;
    header->SetProcessType(9);
    header->setCaption(caption);
    header->SetNumWindow(window);
    header->SetOpere(opere);
    return header;
}

class Systeme : public ::testing::Test {
protected:
    Systeme()
    {
        CountedHeader::alive = CountedResult::alive = 0;
        system.NeedToRemoveEverything(true);
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
    std::string Saved()
    {
        MemoryDisk disk;
        CMmioFile file(false, disk.backend());
        OMMCKINFO chunk;
        std::int32_t number = 0;
        EXPECT_TRUE(file.Open(u"f", nullptr, OMMIO_CREATE | OMMIO_WRITE) && file.CreateChunkRIFF(chunk));
        EXPECT_TRUE(system.Save(&file, false, FileType::kResults, number) && file.ExitChunk(chunk));
        EXPECT_TRUE(file.Close() && file.Open(u"f", nullptr, OMMIO_READ) && file.TopOfChunkSystem(chunk, 0));
        file.CurrentMmckinfo(chunk);
        CSysteme loaded;
        loaded.NeedToRemoveEverything(true);
        EXPECT_TRUE(loaded.Load(&file, FileType::kResults, false, false, ZMXFFileLoadScope::all()));
        return Held(loaded);
    }

    CSysteme system;
};

TEST_F(Systeme, DeletesHeadersAlwaysAndResultsOnRequest)
{
    for (const bool remove : {false, true}) {
        std::unique_ptr<CResult> results[2] = {std::unique_ptr<CResult>(Level(1)), std::unique_ptr<CResult>(Level(2))};
        {
            CSysteme owner;
            owner.AjouteResultat(Header(u"a"), results[0].get(), true);
            owner.AjouteResultat(Header(u"b"), results[1].get(), true);
            owner.AjouteResultat(Header(u"b again"), results[1].get(), true);
            owner.AjouteResultat(nullptr, results[1].get(), true);
            EXPECT_EQ(owner.GetResultsNumber(), 3);
            owner.NeedToRemoveEverything(remove);
        }
        EXPECT_EQ(CountedHeader::alive, 0);
        EXPECT_EQ(CountedResult::alive, remove ? 0 : 2);
        if (remove)
            for (auto& result : results) (void)result.release();
    }
}

TEST_F(Systeme, RemovesAResultWithWhatWasWorkedOutFromIt)
{
    AddFamilies();
    CResultHeader wanted;
    EXPECT_FALSE(system.RemoveResultat(&wanted)) << "another kind";
    EXPECT_EQ(CountedResult::alive, 5);

    wanted = *system.getMapResult().begin()->first;
    EXPECT_TRUE(system.RemoveResultat(&wanted));
    EXPECT_EQ(Held(system), "b=2 b2=22 ");
    EXPECT_EQ(Saved(), Held(system));
    EXPECT_FALSE(system.RemoveResultat(&wanted));
    EXPECT_TRUE(system.RemoveResultat(system.getMapResult().begin()->first)) << "by the stored header itself";
    EXPECT_EQ(Held(system), "");
    EXPECT_EQ(CountedHeader::alive + CountedResult::alive, 0);
}

TEST_F(Systeme, AHeaderOfTheSystemMayTakeAnothersPlace)
{
    CResultHeader *first = Header(u"a", 1), *second = Header(u"b", 2);
    system.AjouteResultat(first, Level(1), false);
    system.AjouteResultat(second, Level(2), false);
    EXPECT_TRUE(system.ReplaceResultat(second, first, Level(3)));
    EXPECT_EQ(system.GetResultsNumber(), 1);
    EXPECT_EQ(CountedHeader::alive + CountedResult::alive, 2);
    EXPECT_TRUE(system.RemoveResultat(second));
    EXPECT_EQ(system.TypeBits(), 0U);
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
    EXPECT_EQ(CountedHeader::alive, 2 + 1) << "and the unknown one";
    EXPECT_EQ(CountedResult::alive, 2);
}

TEST_F(Systeme, ResultsThatAreNullKeepHeadersAndDataTogether)
{
    system.AjouteResultat(Header(u"a", 1), nullptr, true);
    system.AjouteResultat(Header(u"b", 2), Level(2), true);
    system.AjouteResultat(Header(u"c", 3), nullptr, true);
    EXPECT_EQ(Saved(), "b=2 ");
    EXPECT_TRUE(system.RemoveResultat((system.getMapResult().end() - 1)->first));
    EXPECT_EQ(Held(system), "a=none b=2 ");
    EXPECT_EQ(Saved(), "b=2 ");
}

TEST_F(Systeme, PlainListsAreWhatIsSaved)
{
    AddFamilies();
    const auto pair = [this](int i) { return *(system.getMapResult().begin() + i); };
    const auto [header, result] = pair(0);
    system.RemoveResultatsFromArray(header, result);
    system.RemoveResultatsFromArray(header, result); // not there any more
    EXPECT_EQ(Saved(), "a2=12 b=2 a3=13 b2=22 ");
    system.ReplaceResultatsFromArray(pair(2).first, pair(2).second, header, result);
    EXPECT_EQ(Saved(), "a2=12 a=1 a3=13 b2=22 ");
    EXPECT_EQ(Held(system), "a=1 a2=12 b=2 a3=13 b2=22 ") << "the map stays";
}

TEST_F(Systeme, RemoveAllDeletesEverythingButReferenceLists)
{
    AddFamilies();
    CListVectorRef list(true);
    system.SetArPtrListeReferences({&list});
    system.SetArPtrListeReferences({nullptr, &list});
    EXPECT_EQ(system.GetArPtrListeReferences().size(), 3U);
    EXPECT_EQ(system.TypeBits(), FileType::kResults | FileType::kReferences);
    auto* reference = new CVectorRef(23, 1, u"Time", SignalType::Real);
    EXPECT_FALSE(system.IsInListReferences(reference));
    list.AddVectorRef(reference);
    EXPECT_TRUE(system.IsInListReferences(reference));
    EXPECT_EQ(system.getListeReference(2), &list);
    for (const std::size_t index : {std::size_t{1}, std::size_t{3}, SIZE_MAX})
        EXPECT_EQ(system.getListeReference(index), nullptr);

    EXPECT_TRUE(system.RemoveAllResultats());
    EXPECT_EQ(CountedHeader::alive + CountedResult::alive, 0);
    EXPECT_EQ(system.GetResultsNumber(), 0);
    EXPECT_EQ(system.getListeReference(0), nullptr);
    EXPECT_EQ(list.GetCount(), 1);
    EXPECT_EQ(system.TypeBits(), 0U);
    EXPECT_TRUE(system.RemoveAllResultats());
    system.SetArPtrListeReferences({nullptr, &list});
    EXPECT_EQ(system.TypeBits(), 0U) << "the first list is null";
}

TEST_F(Systeme, TypeBitsFollowTheResults)
{
    CResultHeader* preview = Header(u"preview");
    preview->SetProcessType(191);
    system.AjouteResultat(preview, Level(0), true);
    EXPECT_EQ(system.TypeBits(), FileType::kRecordPreview);
    CResultHeader* level = Header(u"level");
    system.AjouteResultat(level, Level(0), true);
    EXPECT_EQ(system.TypeBits(), FileType::kResults | FileType::kRecordPreview);
    EXPECT_TRUE(system.HasRecordPreview() && system.RemoveResultat(preview) && !system.HasRecordPreview());
    EXPECT_EQ(system.TypeBits(), FileType::kResults);
    EXPECT_TRUE(system.RemoveResultat(level));
    EXPECT_EQ(system.TypeBits(), 0U);
}

// For each key: a pair that differs in it and, the other way round, in all keys behind it.
TEST_F(Systeme, OrderedListsGoByTheirKeys)
{
    using Set = std::function<void(CResultHeader&, std::uint32_t)>;
    const std::pair<const char*, Set> keys[] = {
        {"module kind",
         [](auto& h, auto n) {
             h.SetIdnResponse({{}, {n, 1}, h.GetIdnResponse().submodule(), {}});
         }},
        {"module instance",
         [](auto& h, auto n) {
             h.SetIdnResponse({{}, {h.GetIdnResponse().module().kind, n}, h.GetIdnResponse().submodule(), {}});
         }},
        {"process", [](auto& h, auto n) { h.SetProcessType(0x7FFFFFFF + n); }},
        {"submodule of the response",
         [](auto& h, auto n) {
             h.SetIdnResponse({{}, h.GetIdnResponse().module(), {n, 1}, {}});
         }},
        {"submodule of the reference",
         [](auto& h, auto n) {
             h.SetIdnReference({{}, {9 - n, 1}, {1, n}, {}});
         }},
        {"Temporel", [](auto& h, auto n) { h.SetTemporel(0x7FFFFFFF + n); }},
        {"NumReference", [](auto& h, auto n) { h.SetNumReference(static_cast<std::int32_t>(0x7FFFFFFF + n)); }},
    };
    for (std::size_t key = 0; key < std::size(keys); ++key)
        for (const bool lowFirst : {true, false}) {
            SCOPED_TRACE(keys[key].first);
            CSysteme sorted;
            CResultHeader* low = Header(u"low");
            CResultHeader* high = Header(u"high");
            CResultHeader* highAgain = Header(u"high");
            for (std::size_t i = 0; i < std::size(keys); ++i) {
                const std::uint32_t ofLow = i < key ? 0 : i == key ? 0 : 1;
                keys[i].second(*low, ofLow);
                for (CResultHeader* header : {high, highAgain}) keys[i].second(*header, i < key ? 0 : 1 - ofLow);
            }
            sorted.NeedToRemoveEverything(true);
            if (lowFirst) sorted.AjouteResultat(low, Level(1), true);
            sorted.AjouteResultat(high, Level(2), true);
            sorted.AjouteResultat(highAgain, Level(3), true);
            if (!lowFirst) sorted.AjouteResultat(low, Level(1), true);
            EXPECT_TRUE(sorted.headers().empty()) << "built on request only";
            EXPECT_TRUE(sorted.CreeListesResultatsOrdonnees());
            EXPECT_EQ(sorted.headers(), (std::vector{low, high, highAgain}));
            for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(sorted.results()[i]->GetValue(), static_cast<float>(i + 1));
            EXPECT_TRUE(sorted.RemoveResultat(low));
            EXPECT_EQ(sorted.headers().size(), 3U) << "as built";
        }
}

TEST_F(Systeme, OrderedListsKeepTheOrderOfEqualOnes)
{
    for (int i = 0; i < 100; ++i) {
        CResultHeader* header = Header(u"");
        header->SetNumReference(i % 3);
        system.AjouteResultat(header, Level(static_cast<float>(i)), true);
    }
    EXPECT_TRUE(system.CreeListesResultatsOrdonnees());
    for (std::size_t i = 1; i < 100; ++i)
        if (i != 34 && i != 67) {
            EXPECT_EQ(system.results()[i]->GetValue(), system.results()[i - 1]->GetValue() + 3);
        }
}

} // namespace
} // namespace ZelmResult
