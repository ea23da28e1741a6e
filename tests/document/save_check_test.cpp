// What a document says of a save before and after it: reasons why something wouldn't be restored, and the file that
// stays as it was until the new one is whole.

#include "tests/builders/platform.h"
#include "tests/builders/waterfall_samples.h"
#include "tests/document/document_fixture.h"
#include "zelmresult/zelmresult.h"

#include <filesystem>
#include <gmock/gmock.h>

namespace ZelmResult {
namespace {

using namespace test;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

std::vector<std::string> Reasons(CZMXFFile& document)
{
    std::vector<wstring> reasons;
    const bool isGood = document.CheckSave(reasons);
    EXPECT_EQ(isGood, reasons.empty());
    std::vector<std::string> texts;
    for (const wstring& reason : reasons) texts.push_back(ToUtf8(reason));
    return texts;
}

class SaveCheck : public LoadsDocuments {
protected:
    SaveCheck() { document.NeedToRemoveEverything(true); }

    // A result of a kind, of the class that the kind has, for a test to spoil.
    template <class Result>
    Result& Add(std::uint32_t kind, CGrandeur* quantity = nullptr)
    {
        auto header = std::make_unique<CResultHeader>(*std::unique_ptr<CResultHeader>(NewHeader(kind, u"r")));
        auto result = ResultFactory::create(header->processType(), 0, u"");
        if (quantity != nullptr) result->SetMagnitude(quantity);
        auto& added = dynamic_cast<Result&>(*result);
        document.AjouteResultat(header.release(), result.release(), 0, true);
        document.NeedToRemoveEverything(true);
        return added;
    }
    CGrandeur* Quantity(const wstring& name, const std::vector<CGrandeur*>& operands = {})
    {
        CGrandeur* quantity = NewQuantity(name, operands);
        document.AjouteGrandeur(quantity, OwnershipOwned);
        return quantity;
    }

    CZMXFFile document{true, false};
};

TEST_F(SaveCheck, ChangesNothing)
{
    Add<CScalar>(9);
    CResultHeader& header = *document.getSystem(0)->getMapResult().begin()->first;
    header.SetChunkId(77);
    CGrandeur* quantity = Quantity(u"p");
    quantity->SetChunkId(78);
    document.addErrorMessage(u"mine");
    EXPECT_THAT(Reasons(document), IsEmpty());
    EXPECT_EQ(header.GetChunkId(), 77U);
    EXPECT_EQ(quantity->GetChunkId(), 78U);
    EXPECT_EQ(document.fileHeader().GetSystemeNumber(), 0);
    EXPECT_THAT(Messages(document), ElementsAre("mine"));
}

TEST_F(SaveCheck, QuantitiesMustBeListedAndNotTooDeep)
{
    const std::unique_ptr<CGrandeur> stranger(NewQuantity(u"stranger"));
    Add<CScalar>(9, stranger.get());
    Quantity(u"built", {stranger.get()});
    EXPECT_THAT(
        Reasons(document),
        ElementsAre("The quantity built is built from the quantity stranger, which isn't in the document's list.",
                    "Result 0 (r) uses the quantity stranger, which isn't in the document's list."));
    document.AjouteGrandeur(stranger.get(), OwnershipCaller);
    EXPECT_THAT(Reasons(document), IsEmpty());

    CGrandeur* top = stranger.get();
    for (int i = 0; i < 64; ++i) top = Quantity(u"q" + ToDecimal(i), {top});
    EXPECT_THAT(Reasons(document), IsEmpty());
    Quantity(u"deepest", {top});
    EXPECT_THAT(Reasons(document), ElementsAre(HasSubstr("deepest is built from itself, or more than 64 deep")));
    stranger->SetGrandeurInvolved(1);
    stranger->SetGrandeurLeft(top);
    EXPECT_THAT(Reasons(document), ElementsAre(HasSubstr("is built from itself")));
    stranger->SetGrandeurInvolved(0);
}

TEST_F(SaveCheck, QuantitiesThatALoadTakesForOneMustBeEqual)
{
    CGrandeur* pascal = Quantity(u"p");
    CGrandeur* same = Quantity(u"p");
    EXPECT_THAT(Reasons(document), IsEmpty());
    same->GetUniteCourante()->SetCoeffA(2 * pascal->GetUniteCourante()->GetCoeffA());
    EXPECT_THAT(Reasons(document), ElementsAre(HasSubstr("Several quantities p")));
}

TEST_F(SaveCheck, MemoryOfHardwareEntries)
{
    for (int i = 0; i < 600000; ++i) document.writeHardInfo().addHardInfoData({});
    const bool isGood = Reasons(document).empty();
    disk[kPath] = SavedAnyway(document);
    CZMXFFile loaded(true, false);
    EXPECT_EQ(loaded.Load(kPath.c_str(), ZMXFFileLoadScope::all()), isGood);
}

TEST_F(SaveCheck, OnlySoManyQuantitiesHaveACode)
{
    for (int i = 0; i < 9999; ++i) Quantity(u"q" + ToDecimal(i));
    EXPECT_THAT(Reasons(document), IsEmpty());
    Quantity(u"last");
    EXPECT_THAT(Reasons(document), ElementsAre(HasSubstr("has 10000 quantities")));
}

TEST_F(SaveCheck, ResultsMustBeWhatTheirHeadersSay)
{
    document.AjouteResultat(NewHeader(4), NewScalar(9, 1), 0, true);   // the header of a spectrum
    document.AjouteResultat(NewHeader(999), NewScalar(9, 1), 0, true); // of no kind
    document.AjouteResultat(NewHeader(9), nullptr, 0, true);           // without data
    Add<CRegVector>(4).AdjustSize(-1);                                 // no read takes that
    EXPECT_THAT(Reasons(document), ElementsAre(HasSubstr("Result 0 isn't of the class"), HasSubstr("Result 1 isn't"),
                                               HasSubstr("Result 2 has a header but no data"),
                                               HasSubstr("Result 3 (r) is in a state that no load gives back"),
                                               HasSubstr("saving system 0")));
}

TEST_F(SaveCheck, PreviewsNeedAnotherResultBesideThem)
{
    Add<CCompressedVector>(191);
    EXPECT_THAT(Reasons(document), ElementsAre(HasSubstr("are recording previews")));
    Add<CScalar>(9);
    EXPECT_THAT(Reasons(document), IsEmpty());
}

// References of lists that no load looks for.
TEST_F(SaveCheck, ReferenceListsMustBeReached)
{
    TiedWaterfall sample = AddTiedWaterfall(document);
    document.NeedToRemoveEverything(true);
    CSysteme& system = *document.getSystem(0);
    CListVectorRef unnamed(true);
    CListVectorRef empty(true);
    unnamed.AddVectorRef(new CWaterfallRef(23, 2, u"Time", SignalType::Real, false));
    system.SetArPtrListeReferences({&empty, &unnamed});
    EXPECT_THAT(Reasons(document), ElementsAre(HasSubstr("Reference list 2 of system 0 comes after an empty place")));
    system.getMapResult().begin()->first->SetIndexListe(1);
    EXPECT_THAT(Reasons(document),
                ElementsAre(HasSubstr("The references along result 0"),
                            HasSubstr("The reference Slice number of system 0 comes back in another"),
                            HasSubstr("Reference list 2 of system 0")));

    CZMXFFile beginsEmpty(true, false);
    (void)beginsEmpty.AddSysteme(new CSysteme);
    beginsEmpty.getSystem(0)->SetArPtrListeReferences({nullptr, &unnamed});
    EXPECT_THAT(Reasons(beginsEmpty), ElementsAre(HasSubstr("lists of system 0 begin with an empty place")));
}

// A load gives memory in proportion to the file, so what is hardly filled may not be restored.
TEST_F(SaveCheck, MemoryThatAFileDoesNotFill)
{
    constexpr std::int32_t points = 1000000; // allocated for this type, and not stored
    constexpr auto notStored = static_cast<SignalType>(7);
    for (int i = 0; i < 18; ++i) {
        auto& vector = Add<CRegVector>(4);
        vector.SetComplexType(notStored, true);
        vector.SetSize(points);
        if (i < 15) continue;
        const bool isGood = Reasons(document).empty();
        const auto bytes = SavedAnyway(document);
        (void)Messages(document);
        disk[kPath] = bytes;
        CZMXFFile loaded(true, false);
        EXPECT_EQ(loaded.Load(kPath.c_str(), ZMXFFileLoadScope::all()), isGood) << i;
        EXPECT_EQ(Messages(loaded).empty(), isGood) << i;
        loaded.NeedToRemoveEverything(true);
    }
    EXPECT_THAT(Reasons(document), ElementsAre(HasSubstr("reserves far more memory than it fills")));
}

// A load finds the result that shows a reference by its name, and a waterfall's references by its header.
TEST_F(SaveCheck, ReferencesMustFindTheirResults)
{
    (void)AddTiedWaterfall(document);
    document.NeedToRemoveEverything(true);
    CSysteme& system = *document.getSystem(0);
    const auto series = (system.getMapResult().begin() + 1)->first; // after that of the slice number
    series->setResponseName(u"Speed of the slice number");
    EXPECT_THAT(Reasons(document), IsEmpty());
    system.getMapResult().begin()->first->setResponseName(u"Slice number and Speed");
    EXPECT_THAT(Reasons(document), ElementsAre(HasSubstr("The reference Speed of system 0 comes back in another")));

    document.AjouteResultat(NewTiedHeader(2, 2, u"Alone"), new CWaterfall(true), 0, true);
    EXPECT_THAT(Reasons(document), ::testing::Contains(HasSubstr("has no references, but its header names a list")));
}

TEST_F(SaveCheck, SlicesMustRiseByTheirBlocks)
{
    const TiedWaterfall sample = AddTiedWaterfall(document);
    document.NeedToRemoveEverything(true);
    for (const std::int32_t block : {1, 0, -1, INT32_MAX}) {
        sample.waterfall->SetBlocNumber(1, block);
        EXPECT_EQ(Reasons(document).empty(), block == 1) << block;
    }
}

TEST_F(SaveCheck, ResultsThatALoadPassedOverWouldBeLost)
{
    document.AjouteResultat(NewHeader(999), NewScalar(9, 1), 0, true);
    document.NeedToRemoveEverything(true);
    const auto loaded = Load(SavedAnyway(document));
    EXPECT_THAT(Reasons(*loaded), ElementsAre(HasSubstr("1 results of system 0 were of kinds")));
}

TEST_F(SaveCheck, OfDeadListsTheOthersKeepTheirPlaces)
{
    (void)AddTiedWaterfall(document);
    (void)AddTiedWaterfall(document);
    document.NeedToRemoveEverything(true);
    CSysteme& system = *document.getSystem(0);
    while (system.GetArPtrListeReferences()[0] != nullptr)
        ASSERT_TRUE(system.RemoveResultat(system.getMapResult().begin()->first));
    auto bytes = SavedBytes(document);
    for (int time = 0; time < 4; ++time) {
        const auto loaded = Load(bytes);
        const auto& lists = loaded->getSystem(0)->GetArPtrListeReferences();
        ASSERT_EQ(lists.size(), 2U) << time;
        EXPECT_EQ(lists[0], nullptr);
        ASSERT_NE(lists[1], nullptr);
        EXPECT_EQ(lists[1]->GetCount(), 2);
        bytes = SavedBytes(*loaded);
    }
}

TEST_F(SaveCheck, EachOfSeventeenSystemsHasItsOwnReferences)
{
    for (std::uint16_t i = 0; i < 17; ++i) {
        (void)document.AddSysteme(new CSysteme);
        const TiedWaterfall sample = AddTiedWaterfall(document, i);
        sample.list->GetRef(0)->SetRefMax(static_cast<float>(i));
    }
    document.NeedToRemoveEverything(true);
    const auto loaded = Load(SavedBytes(document));
    for (std::int32_t i = 0; i < 17; ++i)
        EXPECT_EQ(loaded->getSystem(i)->getListeReference(0)->GetRef(0)->GetRefMax(), static_cast<float>(i));
}

// ---- On the real disk ----

class SafeSave : public ::testing::Test {
protected:
    static std::unique_ptr<CZMXFFile> Level(float level)
    {
        auto document = std::make_unique<CZMXFFile>(true, false);
        document->AjouteResultat(NewHeader(9), NewScalar(9, level), 0, true);
        document->NeedToRemoveEverything(true);
        return document;
    }
    // The level in a file; -1 when it doesn't load.
    static float Stored(const wstring& path)
    {
        CZMXFFile document(true, false);
        const bool isLoaded = document.Load(path.c_str(), ZMXFFileLoadScope::all());
        document.NeedToRemoveEverything(true);
        return isLoaded ? document.getSystem(0)->getMapResult().begin()->second->GetValue() : -1.0F;
    }
    std::size_t FilesInFolder() const
    {
        const std::filesystem::directory_iterator files(folder.path());
        return static_cast<std::size_t>(std::distance(begin(files), end(files)));
    }

    const TempFolder folder;
    const wstring path = folder.wideFile("d.zmxf");
};

TEST_F(SafeSave, ReplacesTheFileAndKeepsItsModeAndLinks)
{
    EXPECT_TRUE(Level(1)->SaveSafely(path.c_str()));
    EXPECT_EQ(Stored(path), 1);
    const auto mode = static_cast<std::filesystem::perms>(0640);
    std::filesystem::permissions(folder.file("d.zmxf"), mode);
    std::filesystem::create_symlink("d.zmxf", folder.file("link"));
    EXPECT_TRUE(Level(2)->SaveSafely(folder.wideFile("link").c_str()));
    EXPECT_TRUE(std::filesystem::is_symlink(folder.file("link")));
    EXPECT_EQ(Stored(path), 2);
    EXPECT_EQ(std::filesystem::status(folder.file("d.zmxf")).permissions(), mode);
    EXPECT_EQ(FilesInFolder(), 2U);
}

TEST_F(SafeSave, FollowsALinkThatLeadsNowhere)
{
    std::filesystem::create_symlink("d.zmxf", folder.file("link"));
    EXPECT_TRUE(Level(3)->SaveSafely(folder.wideFile("link").c_str()));
    EXPECT_EQ(Stored(path), 3);
}

TEST_F(SafeSave, KeepsTheFileWhenSomethingWouldNotComeBack)
{
    ASSERT_TRUE(Level(1)->SaveSafely(path.c_str()));
    const auto document = Level(2);
    document->AjouteResultat(NewHeader(999), NewScalar(9, 1), 0, true);
    const std::uint32_t code = document->getSystem(0)->getMapResult().begin()->first->GetChunkId();
    EXPECT_FALSE(document->SaveSafely(path.c_str()));
    EXPECT_THAT(Messages(*document), ElementsAre(HasSubstr("Result 1 isn't"), HasSubstr("was left as it was")));
    document->GenerateInfoFile(true);
    EXPECT_FALSE(document->SaveSafely(path.c_str()));
    (void)Messages(*document);
    document->GenerateInfoFile(false);
    EXPECT_EQ(FilesInFolder(), 1U) << "no dump of what was refused";
    EXPECT_EQ(document->getSystem(0)->getMapResult().begin()->first->GetChunkId(), code);
    EXPECT_EQ(Stored(path), 1);
    EXPECT_TRUE(document->SaveSafely(path.c_str(), true));
    EXPECT_EQ(Stored(path), 2);
    EXPECT_EQ(FilesInFolder(), 1U);
}

TEST_F(SafeSave, RefusesWhatIsNoPlaceForAFile)
{
    const TempFolder elsewhere;
    std::vector<wstring> places = NamesOfNoFile(elsewhere);
    places.insert(places.end(),
                  {folder.wideFile("no/such/folder"), FromUtf8(folder.path()), wstring(), folder.wideFile("no/")});
    for (const wstring& place : places) {
        const auto document = Level(1);
        EXPECT_FALSE(document->SaveSafely(place.c_str())) << ToUtf8(place);
        EXPECT_EQ(Messages(*document).size(), 2U) << "the reason of the system and what failed";
    }
    EXPECT_EQ(FilesInFolder(), 0U);
}

TEST_F(SafeSave, ADumpGoesBesideTheFile)
{
    const auto document = Level(1);
    document->GenerateInfoFile(true);
    EXPECT_TRUE(document->SaveSafely(path.c_str()));
    EXPECT_THAT(readDiskFile(folder.file("d.zmxfd")), HasSubstr("CScalar"));
    EXPECT_EQ(FilesInFolder(), 2U);
}

TEST_F(SafeSave, LoadsFromTheNameOfTheDocumentItself)
{
    ASSERT_TRUE(Level(1)->SaveSafely(path.c_str()));
    CZMXFFile document(true, false);
    ASSERT_TRUE(document.Load(path.c_str(), ZMXFFileLoadScope::all()));
    EXPECT_TRUE(document.Load(document.filename().c_str(), ZMXFFileLoadScope::all()));
    EXPECT_EQ(document.getNbrSys(), 2);
    document.NeedToRemoveEverything(true);
}

} // namespace
} // namespace ZelmResult
