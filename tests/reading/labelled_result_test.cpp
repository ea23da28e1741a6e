// Results as labelled arrays.

#include "tests/builders/record_check.h"
#include "tests/builders/samples.h"
#include "tests/builders/waterfall_samples.h"
#include "zelmresult/support/text.h"

#include <cmath>
#include <functional>
#include <gmock/gmock.h>

namespace ZelmResult {
namespace {

using namespace test;
using ::testing::ElementsAre;
using ::testing::IsNan;
using Values = std::vector<float>;
using Complexes = std::vector<std::complex<float>>;
using By = SliceChoice::By;

// "value[band]", "energy[]"
std::string ListOf(const std::vector<LabelledArray>& arrays)
{
    std::string list;
    for (const LabelledArray& array : arrays) {
        list += (list.empty() ? "" : " ") + ToUtf8(array.name) + "[";
        for (std::size_t i = 0; i < array.dimensions.size(); ++i)
            list += (i > 0 ? "," : "") + ToUtf8(array.dimensions[i]) + ":" + std::to_string(array.shape[i]);
        list += "]";
    }
    return list;
}

class Labelled : public ::testing::Test {
protected:
    // A document of one result, read back; the reader and its document are gone.
    LabelledResult Read(CResultHeader* header, CResult* result)
    {
        CZMXFFile document(true, false);
        document.AjouteResultat(header, result, 0, false);
        document.NeedToRemoveEverything(true);
        return Read(SavedAnyway(document), 0);
    }
    static LabelledResult Read(const std::vector<char>& bytes, std::size_t number)
    {
        auto reader = DocumentReader::OpenBytes(bytes);
        auto labelled = reader->ReadLabelled(number);
        EXPECT_TRUE(labelled) << ToUtf8(labelled.error().Text());
        return *std::move(labelled);
    }
    static Values FloatsOf(const LabelledResult& labelled, const wstring& name)
    {
        const LabelledArray* array = labelled.Data(name);
        return array != nullptr ? *array->Floats() : Values{};
    }
};

// Slices of that many points; the value of a point says which block and place it has.
std::unique_ptr<CWaterfall> NewWaterfall(const std::vector<std::int32_t>& blocks, std::int32_t points)
{
    const auto slices = static_cast<std::int32_t>(blocks.size());
    auto waterfall = std::make_unique<CWaterfall>(2, 2, points, slices, nullptr, SignalType::Real, true);
    (void)waterfall->AllocateTabBlockNumber(slices);
    for (std::int32_t slot = 0; slot < slices; ++slot) {
        (void)waterfall->AddBlock(slot, -1);
        waterfall->SetBlocNumber(slot, blocks[static_cast<std::size_t>(slot)]);
        Values values(static_cast<std::size_t>(points));
        for (std::size_t i = 0; i < values.size(); ++i)
            values[i] = static_cast<float>(1000 * blocks[static_cast<std::size_t>(slot)]) + static_cast<float>(i);
        waterfall->GetTabData(0, slot).CopySliceFrom(values.data(), points);
    }
    waterfall->SetFilled(slices);
    return waterfall;
}

// A document with that record as the data of a waterfall.
std::vector<char> DocumentOf(const Bytes& record)
{
    return fileOf(head(1, 4).append(system(
                      "0", results(resultHeader(0, 2, {.waterfallDimension = 2}).append(resultData(0, record))))))
        .data();
}

} // namespace

TEST_F(Labelled, SaysWhatAResultIsAndInWhichUnit)
{
    auto* quantity = NewQuantity(u"velocity");
    quantity->GetEqDim().GetEqDim()->Seconds = 126;
    CUnite& unit = *quantity->GetUniteCourante();
    unit.SetCoeffA(1000);
    unit.SetCoeffB(10);
    unit.SetRef0dB(20);
    CZMXFFile document(true, false);
    document.AjouteGrandeur(quantity, OwnershipOwned);
    document.AjouteResultat(new CResultHeader(HeaderOf({.processType = 10,
                                                        .comment = u"c",
                                                        .responseName = u"Motor",
                                                        .numReponse = 3,
                                                        .processCaption = u"Level"})),
                            NewScalar(10, 2, quantity), 0, false);
    document.NeedToRemoveEverything(true);
    const LabelledResult level = Read(SavedBytes(document), 0);
    EXPECT_EQ(level.form, LabelledForm::Level);
    EXPECT_EQ(level.information.kind, u"RMS");
    EXPECT_EQ(level.information.group, u"level");
    EXPECT_EQ(level.information.process, u"Level");
    EXPECT_EQ(level.information.channel, u"Motor");
    EXPECT_EQ(level.information.channelNumber, 3);
    EXPECT_EQ(level.information.comment, u"c");
    EXPECT_EQ(FloatsOf(level, u"value"), Values{2});

    ASSERT_TRUE(level.Data(u"value")->quantity);
    const LabelledQuantity& velocity = *level.Data(u"value")->quantity;
    EXPECT_EQ(velocity, level.quantity);
    EXPECT_EQ(velocity.siSymbol, u"m/s");
    EXPECT_EQ(velocity.shown->label, u"uvelocity");
    EXPECT_EQ(velocity.InUnit(2), 2010.0);
    EXPECT_EQ(velocity.ReferenceInSI(), 0.01) << "20 in the unit, of which 10 are the offset";
    EXPECT_NEAR(*velocity.InDecibels(2), 20.0 * std::log10(2010.0 / 20.0), 1e-12);
    EXPECT_FALSE(velocity.InDecibels(-1));
    const LabelledQuantity energy = LabelledQuantity::EnergyOf(velocity);
    EXPECT_EQ(energy.siSymbol, u"m\u00B2/s");
    EXPECT_EQ(energy.shown->label, u"uvelocity\u00B2 s");
    EXPECT_EQ(energy.InUnit(2), 2e6);
    EXPECT_FALSE(energy.HasDecibels());
}

TEST_F(Labelled, LevelsStandAlongWhatTheyAreOf)
{
    const auto broadBand = [&](const wstring& process) {
        auto* result = new CBroadBand(46, 1, SignalType::Real);
        for (std::int32_t i = 0; i < 3; ++i) {
            const auto value = static_cast<float>(i);
            result->SetLeq(i, {.lastValue = value, .maxValue = value + 0.5F, .minValue = value - 0.5F});
        }
        return Read(new CResultHeader(HeaderOf({.processType = 46, .processCaption = process})), result);
    };
    const LabelledResult named = broadBand(u"Broad band A, C, Z");
    EXPECT_EQ(*named.Coordinate(u"weighting")->Texts(), (std::vector<wstring>{u"A", u"C", u"Z"}));
    EXPECT_EQ(named.Data(u"short_lpk")->weighting, 3U);
    EXPECT_EQ(named.Data(u"leq")->shape, std::vector<std::size_t>{3});
    EXPECT_EQ(FloatsOf(named, u"leq"), (Values{0, 1, 2}));
    EXPECT_EQ(FloatsOf(named, u"leq_maximum"), (Values{0.5F, 1.5F, 2.5F}));
    EXPECT_EQ(FloatsOf(named, u"leq_minimum"), (Values{-0.5F, 0.5F, 1.5F}));
    for (const wstring& other : {wstring(u"Broad band A, C"), wstring(u"Broad band A, A, Z"), wstring(u"A, C, Z")})
        EXPECT_EQ(*broadBand(other).Coordinate(u"weighting")->Texts(), (std::vector<wstring>{u"1", u"2", u"3"}));

    auto* statistics = new CGlobalLevel(29, 1, SignalType::Real);
    statistics->SetStatistic(CGlobalLevel::Kurtosis, {.lastValue = 3});
    const LabelledResult global = Read(NewHeader(29), statistics);
    EXPECT_EQ(FloatsOf(global, u"kurtosis"), Values{3});
    EXPECT_EQ(global.data.size(), 30U);
    auto* ofOrders = new CSuiviOrdre(44, 9, SignalType::Real);
    ofOrders->SetOrderValue(7, {.lastValue = 8});
    EXPECT_EQ(FloatsOf(Read(NewHeader(44), ofOrders), u"level"), (Values{0, 0, 0, 0, 0, 0, 0, 8}));
}

TEST_F(Labelled, VectorsHaveTheirAxes)
{
    auto* transfer = new CRegVector(31, 3, 0, SignalType::Complex, 0, true);
    transfer->SetXMax(20);
    for (int i = 0; i < 3; ++i) transfer->GetRealValue()[i] = static_cast<float>(i), transfer->GetImValue()[i] = -1;
    const LabelledResult complex = Read(NewHeader(31), transfer);
    EXPECT_EQ(ListOf(complex.coordinates), "frequency[frequency:3]");
    EXPECT_EQ(*complex.Axis(u"frequency")->Floats(), (Values{0, 10, 20}));
    EXPECT_EQ(*complex.Data(u"value")->Complexes(), (Complexes{{0, -1}, {1, -1}, {2, -1}}));

    auto* octaves = new CRegVector(131, 2, 1, SignalType::OctaveMinMax, 0, true);
    octaves->SetXMin(1000);
    octaves->GetRealValueMin()[1] = 4;
    octaves->SetPonderationGlob(1);
    octaves->SetGlobPondLevel(AvgOctaveTarget::Maximum, 7);
    const LabelledResult bands = Read(NewHeader(131), octaves);
    EXPECT_EQ(bands.form, LabelledForm::Bands);
    EXPECT_EQ(ListOf(bands.data), "value[band:2] global[] global_weighted[] minimum[band:2] global_minimum[] "
                                  "global_minimum_weighted[] maximum[band:2] global_maximum[] "
                                  "global_maximum_weighted[]");
    EXPECT_EQ(*bands.Axis(u"band")->Floats(), (Values{1000, 1250}));
    EXPECT_NEAR((*bands.Coordinate(u"exact_middle")->Floats())[1], 1258.925F, 0.01F);
    EXPECT_EQ(FloatsOf(bands, u"minimum"), (Values{0, 4}));
    EXPECT_EQ(FloatsOf(bands, u"global_maximum_weighted"), Values{7});
    EXPECT_EQ(bands.Data(u"global_maximum_weighted")->weighting, 1U);

    auto* lower = new CRegVector(119, 3, 0, SignalType::Real, 0, true);
    auto* upper = new CRegVector(119, 2, 0, SignalType::Real, 0, true);
    const LabelledResult pair = Read(NewHeader(119), new CDoubleResult(lower, upper));
    EXPECT_THAT(FloatsOf(pair, u"maximum"), ElementsAre(0, 0, IsNan())) << "what the shorter one lacks";
    EXPECT_EQ(FloatsOf(pair, u"minimum"), (Values{0, 0, 0}));
}

TEST_F(Labelled, ReferencesAreCoordinates)
{
    const auto read = [&](const wstring& process, int chosen) {
        auto* track = new CRefOrderTrack(22, 3, 2, SignalType::Complex);
        const Values real{1, 2, 3, 4, 5, 6};
        track->SetTables(2, 3, real.data(), real.data());
        for (const char16_t* name : {u"Time", u"Speed", u"Speed"}) {
            auto* reference = new CVectorRef(ResultKind::kReference, 3, name, SignalType::Real);
            for (int i = 0; i < 3; ++i) reference->GetRefValue()[i] = static_cast<float>(i * i);
            reference->SetFilled(3);
            track->AddVectorRef(reference);
        }
        track->SetFilled(3);
        track->SetChosenReference((*track->GetReferencesList())[static_cast<std::size_t>(chosen)]);
        return Read(new CResultHeader(HeaderOf({.processType = 22, .processCaption = process})), track);
    };
    const LabelledResult track = read(u"Orders 1, 2.5", 1);
    EXPECT_EQ(ListOf(track.coordinates),
              "order[order:2] order_name[order:2] Time[point:3] Speed[point:3] Speed_2[point:3]");
    EXPECT_EQ(track.chosenReference, u"Speed");
    EXPECT_EQ(track.Axis(u"point"), track.Coordinate(u"Speed"));
    EXPECT_EQ(*track.Coordinate(u"Time")->Floats(), (Values{0, 1, 4}));
    EXPECT_EQ(*track.Axis(u"order")->Floats(), (Values{1, 2.5F}));
    EXPECT_EQ(ListOf(track.data), "value[order:2,point:3]");
    EXPECT_EQ((*track.Data(u"value")->Complexes())[3], std::complex<float>(4, 4));
    EXPECT_EQ(ListOf(read(u"Orders 1, 2.5x", 0).coordinates).find("order_name"), 0U) << "no numbers";
    EXPECT_EQ(ListOf(read(u"Tracks", 0).coordinates).find("Time"), 0U);
}

TEST_F(Labelled, SlicesAreReadAlone)
{
    CZMXFFile document(true, false);
    const TiedWaterfall tied = AddTiedWaterfall(document);
    constexpr std::int32_t points = 2000;
    constexpr std::int64_t fewWindows = 160 * 1024; // a file is read in windows of 128 KiB at most
    std::vector<std::int32_t> blocks(500);
    for (std::size_t i = 0; i < blocks.size(); ++i) blocks[i] = static_cast<std::int32_t>(i);
    auto waterfall = NewWaterfall(blocks, points);
    waterfall->SetReferenceList(tied.list);
    document.AjouteResultat(NewTiedHeader(2, 2, u"Large"), waterfall.release(), 0, true);
    document.NeedToRemoveEverything(true);
    MemoryDisk disk;
    const wstring path = u"large.zmxf";
    disk[path] = SavedAnyway(document);
    auto reader = DocumentReader::Open(path, disk.backend());
    const std::size_t large = reader->Results().items.size() - 1;
    (void)reader->Quantities();

    disk.counts() = {};
    const auto slice = reader->ReadSlice(large, {By::Block, 3});
    ASSERT_TRUE(slice) << ToUtf8(slice.error().Text());
    EXPECT_LE(disk.counts().bytesRead, fewWindows) << "of 4 MB: the slice, 500 block numbers and the references";
    const Values& values = *slice->Data(u"value")->Floats();
    EXPECT_EQ(slice->Data(u"value")->dimensions, std::vector<wstring>{u"frequency"});
    EXPECT_EQ(values.size(), std::size_t{points});
    EXPECT_EQ(values[17], 3017.0F);
    EXPECT_EQ(slice->chosenReference, u"Speed");
    EXPECT_EQ(*slice->Coordinate(u"Speed")->Floats(), Values{300});
    EXPECT_EQ(*slice->Coordinate(u"slice")->Numbers(), std::vector<std::int32_t>{3});

    disk.counts() = {};
    const auto slices = reader->ReadSlices(large);
    EXPECT_LE(disk.counts().bytesRead, fewWindows);
    EXPECT_TRUE(slices->data.empty());
    EXPECT_EQ(*slices->Coordinate(u"block")->Numbers(), blocks);
    EXPECT_THAT((*slices->Coordinate(u"Speed")->Floats())[4], IsNan()) << "the reference has four blocks";
    const auto text = [](const Outcome<LabelledResult>& read) { return ToUtf8(read.error().Text()); };
    EXPECT_THAT(text(reader->ReadSlice(large, {By::Index, 500})), ::testing::HasSubstr("slice 500 of result 3"));
    EXPECT_THAT(text(reader->ReadSlice(0, {By::Index, 0})), ::testing::HasSubstr("expected a waterfall"));
}

// Slices in any order of blocks; the first never moves. Bytes after the record, here like the code of no quantity,
// cost time only.
TEST_F(Labelled, EachSliceIsThatOfTheWholeWaterfall)
{
    for (const std::vector<std::int32_t>& blocks : {std::vector{0, 1, 2, 5}, {3, 9, 5}, {4, 9, 2, 7}, {6}})
        for (const std::size_t padding : {std::size_t{0}, std::size_t{5}, 4 * blocks.size()}) {
            SCOPED_TRACE(::testing::PrintToString(blocks) + " and " + std::to_string(padding));
            const auto bytes = DocumentOf(AsBytes(written(*NewWaterfall(blocks, 3))).raw(std::string(padding, '9')));
            const LabelledResult whole = Read(bytes, 0);
            auto reader = DocumentReader::OpenBytes(bytes);
            const auto slices = reader->ReadSlices(0);
            ASSERT_TRUE(slices);
            EXPECT_EQ(slices->Coordinate(u"block")->values, whole.Coordinate(u"block")->values);
            Values joined;
            for (std::size_t i = 0; i < blocks.size(); ++i) {
                const auto slice = reader->ReadSlice(0, {By::Index, static_cast<std::int64_t>(i)});
                ASSERT_TRUE(slice);
                const Values& values = *slice->Data(u"value")->Floats();
                joined.insert(joined.end(), values.begin(), values.end());
            }
            EXPECT_EQ(joined, *whole.Data(u"value")->Floats());
        }
}

} // namespace ZelmResult
