// Whatever a result accepts to write, it reads back, of every class, type and size, alone in its file: nothing stands
// after it that a reader could mistake for more of it.

#include "tests/builders/record_check.h"
#include "zelmresult/results/compressed_result.h"
#include "zelmresult/results/double_result.h"
#include "zelmresult/results/kinds.h"
#include "zelmresult/results/level_results.h"
#include "zelmresult/results/order_track.h"
#include "zelmresult/results/result_factory.h"
#include "zelmresult/waterfalls/ref_waterfall.h"
#include "zelmresult/waterfalls/wtf_octave.h"

#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <numeric>
#include <set>
#include <typeinfo>

namespace ZelmResult {
namespace {

using namespace test;
using Values = std::vector<float>;
using Maker = std::function<std::unique_ptr<CResult>()>;

// What was made together with a result lives as long.
struct Made {
    explicit Made(const Maker& make) : result(make())
    {
        if (auto* series = dynamic_cast<CRefWaterfall*>(result.get()); series != nullptr)
            reference.reset(series->GetMyVecteurReference());
    }
    std::unique_ptr<CWaterfallRef> reference;
    std::unique_ptr<CResult> result;
};

void Number(float* values, std::int32_t n, float first)
{
    if (values != nullptr) std::iota(values, values + n, first);
}

void AddReference(CReferencedAxis& axis, std::int32_t size, std::int32_t filled)
{
    auto* speed = new CVectorRef(24, size, u"Speed", SignalType::Real);
    Number(speed->GetRefValue(), size, 3);
    axis.AddVectorRef(speed);
    axis.SetChosenReference(speed);
    axis.SetFilled(filled);
}

void FillSeries(CRefWaterfall& series, std::int32_t filled)
{
    for (std::int32_t block = 0; block < filled; ++block)
        (void)series.AddRefValue(static_cast<float>(block), block, false);
    std::vector<std::int32_t> blocks(static_cast<std::size_t>(filled));
    std::iota(blocks.begin(), blocks.end(), 0);
    if (series.GetMyVecteurReference() == nullptr) (void)series.CopyBlocNumber(blocks.data(), filled);
    series.SetFilled(filled);
}

void FillWaterfall(CWaterfall& waterfall, std::int32_t points, std::int32_t filled)
{
    waterfall.SetZSize(std::max(filled, 1) + 2, true);
    (void)waterfall.AllocateTabBlockNumber(waterfall.GetZSize());
    for (std::int32_t block = 0; block < filled; ++block) {
        (void)waterfall.AddBlock(block, -1);
        waterfall.SetBlocNumber(block, block);
        for (std::int32_t dimension = 0; dimension < CWaterfall::GetComplexDim(waterfall.GetComplexType()); ++dimension)
            if (auto slice = waterfall.GetTabData(dimension, block); slice.HasSlice())
                Number(slice.GetSlicePointer(), waterfall.GetRealSize(points), static_cast<float>(block + dimension));
    }
    waterfall.SetFilled(filled);
}

void FillBands(CRegVector& bands, std::int32_t size)
{
    Number(bands.GetRealValueMin(), size, 5);
    Number(bands.GetRealValueMax(), size, 6);
    bands.SetXMin(21);
    bands.SetXMax(22);
    bands.SetXnOctave(3);
    bands.SetPonderationGlob(7);
    float value = 30;
    for (const auto target : {AvgOctaveTarget::None, AvgOctaveTarget::Minimum, AvgOctaveTarget::Maximum}) {
        bands.SetGlobPondLevel(target, ++value);
        bands.SetGlobLevel(target, ++value);
    }
}

// Each level with values of its own.
void FillLevels(CResult& result)
{
    float value = 40;
    const auto next = [&value] {
        ++value;
        return Type_Level{value, value + 0.5F, value - 0.5F, 0, 0};
    };
    if (auto* broad = dynamic_cast<CBroadBand*>(&result); broad != nullptr) {
        broad->SetShortLpk(next());
        for (std::int32_t i = 0; i < 3; ++i) {
            broad->SetInstantLeq(i, next());
            broad->SetShortLeq(i, next());
            broad->SetLeq(i, next());
        }
    }
    if (auto* global = dynamic_cast<CGlobalLevel*>(&result); global != nullptr)
        for (int i = 0; i < 10; ++i) global->SetStatistic(static_cast<CGlobalLevel::Statistic>(i), next());
    if (auto* orders = dynamic_cast<CSuiviOrdre*>(&result); orders != nullptr) {
        for (std::int32_t i = 0; i < 8; ++i) orders->SetOrderValue(i, next());
        orders->SetOverallValue(next());
    }
}

// Gives a result its size and values, of which so many count as filled.
void Fill(CResult& result, SignalType type, std::int32_t size, std::int32_t filled)
{
    if (auto* pair = dynamic_cast<CDoubleResult*>(&result); pair != nullptr) {
        for (CVector* vector : {pair->GetMinVector(), pair->GetMaxVector()}) Fill(*vector, type, size, filled);
        return;
    }
    result.SetComplexType(type, true);
    result.SetSize(size);
    if (auto* vector = dynamic_cast<CVector*>(&result); vector != nullptr) {
        Number(vector->GetRealValue(), size, 1);
        Number(vector->GetImValue(), size, 2);
        if (auto* bands = dynamic_cast<CRegVector*>(&result); bands != nullptr) FillBands(*bands, size);
    }
    FillLevels(result);
    if (auto* series = dynamic_cast<CRefWaterfall*>(&result); series != nullptr)
        FillSeries(*series, filled);
    else if (auto* along = dynamic_cast<CRefVector*>(&result); along != nullptr)
        AddReference(*along, size, filled);
    if (auto* envelope = dynamic_cast<CCompressedVector*>(&result); envelope != nullptr) {
        Number(envelope->TabUp(), size, 7);
        Number(envelope->TabDown(), size, 8);
    }
    if (auto* points = dynamic_cast<CCompressedScalar*>(&result); points != nullptr)
        for (std::int32_t i = 0; i < 6; ++i)
            Number(points->GetScalarTab(OffsetScalarArray(i)), size, static_cast<float>(i));
    if (auto* compressed = dynamic_cast<CCompressedAbstract*>(&result); compressed != nullptr)
        compressed->SetCompSize(filled);
    if (auto* track = dynamic_cast<COrderTracking*>(&result); track != nullptr) {
        Values table(static_cast<std::size_t>(filled));
        Number(table.data(), filled, 1);
        track->SetTables(1, filled, table.data(), type == SignalType::Complex ? table.data() : nullptr);
    }
    if (auto* track = dynamic_cast<CRefOrderTrack*>(&result); track != nullptr) AddReference(*track, size, filled);
    if (auto* reference = dynamic_cast<CWaterfallRef*>(&result); reference != nullptr)
        for (std::int32_t i = 0; i < filled; ++i) (void)reference->AddUnsortedValue(static_cast<float>(i), i);
    if (auto* reference = dynamic_cast<CVectorRef*>(&result); reference != nullptr) {
        if (typeid(*reference) == typeid(CVectorRef)) reference->AdjustSize(filled); // as the code that stores one does
        Number(reference->GetRefValue(), filled, 0);
        reference->SetFilled(filled);
    }
    if (auto* waterfall = dynamic_cast<CWaterfall*>(&result); waterfall != nullptr)
        FillWaterfall(*waterfall, size, std::min(filled, 2));
    if (auto* level = dynamic_cast<CScalar*>(&result); level != nullptr) level->lastValue(static_cast<float>(size));
}

// After what is there, n values that a copy operation gives.
template <class Copy>
void Append(Values& all, std::int32_t n, Copy copy)
{
    Values values(static_cast<std::size_t>(n));
    copy(values.data(), n);
    all.insert(all.end(), values.begin(), values.end());
}

// The first n values of everything that a file holds.
Values Held(CResult& result, std::int32_t n)
{
    Values all{result.GetValue()};
    const SignalType type = result.GetComplexType();
    if (auto* pair = dynamic_cast<CDoubleResult*>(&result); pair != nullptr)
        for (CVector* vector : {pair->GetMinVector(), pair->GetMaxVector()}) {
            const Values values = Held(*vector, n);
            all.insert(all.end(), values.begin(), values.end());
        }
    auto* bands = dynamic_cast<CRegVector*>(&result);
    if (auto* vector = dynamic_cast<CVector*>(&result);
        vector != nullptr && (type < SignalType::OctaveMin || bands != nullptr) && type < SignalType::Compressed) {
        Append(all, n, [&](float* out, std::int32_t count) { vector->GetRealValues(out, count); });
        Append(all, n, [&](float* out, std::int32_t count) { vector->GetImValues(out, count); });
    }
    if (bands != nullptr) {
        Append(all, n, [&](float* out, std::int32_t count) { bands->GetRealValuesMin(out, count); });
        Append(all, n, [&](float* out, std::int32_t count) { bands->GetRealValuesMax(out, count); });
    }
    if (auto* envelope = dynamic_cast<CCompressedVector*>(&result); envelope != nullptr) {
        Append(all, n, [&](float* out, std::int32_t count) { envelope->GetUpValues(out, count); });
        Append(all, n, [&](float* out, std::int32_t count) { envelope->GetDownValues(out, count); });
    }
    if (auto* points = dynamic_cast<CCompressedScalar*>(&result); points != nullptr)
        for (int i = 0; i < 6; ++i)
            Append(all, n,
                   [&](float* out, std::int32_t count) { points->GetScalarValues(OffsetScalarArray(i), out, count); });
    if (auto* track = dynamic_cast<COrderTracking*>(&result); track != nullptr) {
        Append(all, n, [&](float* out, std::int32_t count) { track->GetRealValues(out, 1, count); });
        Append(all, n, [&](float* out, std::int32_t count) { track->GetImValues(out, 1, count); });
    }
    if (auto* axis = result.GetReferencedAxis(); axis != nullptr && axis->GetChosenReference() != nullptr)
        Append(all, n, [&](float* out, std::int32_t count) { axis->GetChosenReference()->GetRefValues(out, count); });
    if (auto* reference = dynamic_cast<CVectorRef*>(&result); reference != nullptr)
        Append(all, n, [&](float* out, std::int32_t count) { reference->GetRefValues(out, count); });
    return all;
}

// Of the first slices. A plain waterfall stores no minimum and no maximum, one of bands nothing else than bands.
Values HeldSlices(CWaterfall& waterfall, std::int32_t slices)
{
    Values all;
    const bool isOctave = dynamic_cast<CWtfOctave*>(&waterfall) != nullptr;
    const SignalType type = waterfall.GetComplexType();
    const std::int32_t dimensions = isOctave || type == SignalType::Complex ? CWaterfall::GetComplexDim(type) : 1;
    if (isOctave ? type < SignalType::Octave : type >= SignalType::OctaveMin) return all;
    for (std::int32_t slot = 0; slot < slices; ++slot)
        for (std::int32_t dimension = 0; dimension < dimensions; ++dimension)
            Append(all, waterfall.GetSize(),
                   [&](float* out, std::int32_t count) { waterfall.GetValues(dimension, slot, out, count); });
    return all;
}

void ExpectComesBack(const Maker& make, SignalType type, std::int32_t size, std::int32_t filled)
{
    const Made sample(make), read(make);
    Fill(*sample.result, type, size, filled);
    MemoryDisk disk;
    CMmioFile out(false, disk.backend()), in(false, disk.backend());
    ASSERT_TRUE(out.Open(u"r", nullptr, OMMIO_WRITE | OMMIO_CREATE));
    ASSERT_TRUE(sample.result->Write(&out));
    const std::int64_t foreseen = out.bounds().Charged();
    ASSERT_TRUE(out.Close());
    ASSERT_TRUE(in.Open(u"r", nullptr, OMMIO_READ));
    ASSERT_TRUE(read.result->Read(&in));
    EXPECT_LE(in.bounds().Charged(), foreseen + 4 * std::ssize(disk[u"r"])) << "what the data doesn't fill";
    if (auto* waterfall = dynamic_cast<CWaterfall*>(sample.result.get()); waterfall != nullptr) {
        auto& other = dynamic_cast<CWaterfall&>(*read.result);
        EXPECT_EQ(other.GetFilled(), waterfall->GetFilled());
        EXPECT_EQ(HeldSlices(other, other.GetFilled()), HeldSlices(*waterfall, waterfall->GetFilled()));
    } else {
        EXPECT_EQ(Held(*read.result, filled), Held(*sample.result, filled));
    }
}

// One maker for each class and type that the factory knows, and for what it doesn't make by itself.
std::vector<Maker> Makers()
{
    std::vector<Maker> makers{
        [] { return std::make_unique<CVector>(); },
        [] { return std::make_unique<CRegOrderTrack>(); },
        [] { return std::make_unique<CVectorRef>(); },
        [] { return std::make_unique<CWaterfallRef>(); },
    };
    std::set<std::string> known;
    for (const ResultKind& kind : ResultKind::All())
        for (const int dimension : {0, 1, 2, 5}) {
            const auto process =
                otype::ElementaryResultProcess::fromInteger(static_cast<std::int32_t>(kind.numbers.first));
            const Maker make = [process, dimension] { return ResultFactory::create(process, dimension, u"Time"); };
            const Made made(make);
            if (made.result == nullptr) continue;
            const CResult& result = *made.result;
            const std::string inside = [&] {
                const auto* pair = dynamic_cast<const CDoubleResult*>(&result);
                const CVector* vector = pair != nullptr ? pair->GetMinVector() : nullptr;
                return vector != nullptr ? typeid(*vector).name() : made.reference != nullptr ? "reference" : "";
            }();
            if (known.insert(typeid(result).name() + inside).second) makers.push_back(make);
        }
    return makers;
}

TEST(StoredSizes, WhatIsWrittenComesBack)
{
    const std::vector<Maker> makers = Makers();
    EXPECT_EQ(makers.size(), 19U);
    for (std::size_t i = 0; i < makers.size(); ++i)
        for (const std::uint32_t type : {0U, 1U, 2U, 3U, 4U, 5U, 6U, 7U})
            for (const std::int32_t size : {0, 1, 65536, 65537, 300000})
                for (const std::int32_t filled : {size, size / 3, size - 1}) {
                    const bool isTried = filled == size || type == 0 || size < 2 || filled == 100000;
                    if (filled < 0 || !isTried) continue;
                    SCOPED_TRACE("maker " + std::to_string(i) + ", type " + std::to_string(type) + ", " +
                                 std::to_string(filled) + " of " + std::to_string(size));
                    ExpectComesBack(makers[i], SignalType(type), size, filled);
                    if (HasFatalFailure()) return;
                }
}

// Order tracks take numbers of their copies from a limit, and copies along references have no references yet.
bool IsCopiedWhole(CResult& result)
{
    const auto* pair = dynamic_cast<const CDoubleResult*>(&result);
    CResult& held = pair != nullptr ? *pair->GetMinVector() : result;
    return typeid(held) != typeid(CRefVector) && dynamic_cast<COrderTracking*>(&held) == nullptr;
}

// Whoever keeps a copy may delete what it was made from.
TEST(StoredSizes, CopiesStoreTheSame)
{
    for (const Maker& make : Makers())
        for (const std::uint32_t type : {0U, 1U, 3U, 4U, 5U}) {
            auto sample = std::make_unique<Made>(make);
            if (!IsCopiedWhole(*sample->result)) continue;
            Fill(*sample->result, SignalType(type), 5, 5);
            const CResult& original = *sample->result;
            SCOPED_TRACE(::testing::Message() << typeid(original).name() << ", type " << type);
            const std::vector<char> stored = written(*sample->result);
            const std::unique_ptr<CResult> copy(sample->result->GetCopy());
            const Made assigned(make);
            if (const auto* pair = dynamic_cast<const CDoubleResult*>(assigned.result.get()); pair != nullptr) {
                delete pair->GetMinVector(); // which an assignment doesn't
                delete pair->GetMaxVector();
            }
            *assigned.result = sample->result.get();
            sample.reset();
            EXPECT_EQ(written(*copy), stored);
            EXPECT_EQ(written(*assigned.result), stored);
        }
}

// The bytes and the dump of each class. Other programs read both.
TEST(StoredSizes, BytesAndDumpsMatchGoldenFiles)
{
    std::string bytes;
    std::string dump;
    for (const Maker& make : Makers())
        for (const std::uint32_t type : {1U, 3U, 4U, 6U}) {
            const Made sample(make);
            Fill(*sample.result, SignalType(type), 9, 3);
            const std::vector<char> stored = written(*sample.result);
            bytes.append(stored.begin(), stored.end());
            dump += dumpOf(*sample.result) + "\n";
        }
    EXPECT_EQ(dump, readDiskFile(ZELMRESULT_TEST_DATA_DIR "/every_result.zmxfd"));
    expectBytes({bytes.begin(), bytes.end()}, Bytes{}.raw(readDiskFile(ZELMRESULT_TEST_DATA_DIR "/every_result.bin")));
    if (!HasFailure()) return;
    const std::string made = ::testing::TempDir() + "/every_result";
    std::ofstream(made + ".zmxfd", std::ios::binary) << dump;
    std::ofstream(made + ".bin", std::ios::binary) << bytes;
    ADD_FAILURE() << "what is stored now is in " << made << ".*";
}

TEST(StoredSizes, ManySlicesComeBack)
{
    for (const bool isOctave : {false, true}) {
        std::unique_ptr<CWaterfall> sample, read;
        for (auto* each : {&sample, &read})
            *each = isOctave ? std::make_unique<CWtfOctave>(true) : std::make_unique<CWaterfall>(true);
        sample->SetComplexType(isOctave ? SignalType::OctaveMinMax : SignalType::Complex, true);
        sample->SetSize(2);
        FillWaterfall(*sample, 2, 65537);
        readInto(*read, written(*sample));
        EXPECT_EQ(HeldSlices(*read, 65537), HeldSlices(*sample, 65537));
    }
}

} // namespace
} // namespace ZelmResult
