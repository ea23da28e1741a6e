#include "zelmresult/results/vector.h"

#include "tests/builders/record_check.h"
#include "zelmresult/results/double_result.h"
#include "zelmresult/results/scalar.h"

#include <algorithm>
#include <array>
#include <climits>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>

namespace ZelmResult {
namespace {

using namespace test;
using ::testing::ElementsAre;
using Values = std::vector<float>;

Bytes BlockOf(const std::vector<char>& bytes) { return Bytes{}.raw({bytes.data(), bytes.size()}, "block"); }

// The base block of an object, whose own bytes are the matter of another test.
Bytes BaseBlock(CResult& result)
{
    return BlockOf(written([&](CMmioFile& file) { return result.CResult::Write(&file); }));
}

std::unique_ptr<CVector> FilledVector(SignalType type, int size = 2)
{
    auto vector = std::make_unique<CVector>(2, size, type, 0, true);
    float* arrays[] = {vector->GetRealValue(), type == SignalType::Complex ? vector->GetImValue() : nullptr};
    float value = 1;
    for (float* array : arrays)
        for (int i = 0; array != nullptr && i < size; ++i) array[i] = value++;
    vector->SetRealMax(11), vector->SetRealMin(12), vector->SetImMax(13), vector->SetImMin(14);
    return vector;
}

Values Shown(float* values, int n = 2) { return values == nullptr ? Values{} : Values(values, values + n); }

TEST(Vector, TheTypeDecidesWhatIsHeldAndStored)
{
    const struct {
        int type;
        Values stored, shown, imaginary;
        float max;
    } rows[] = {{0, {1, 2}, {1, 2}, {}, 11}, {1, {1, 2}, {1, 2}, {3, 4}, 0},
                {2, {1, 2}, {1, 2}, {}, 11}, {3, {1, 2}, {1, 2}, {1, 2}, 11},
                {4, {}, {}, {}, 11},         {5, {}, {}, {}, 11},
                {6, {}, {}, {}, 11},         {7, {}, {1, 2}, {1, 2}, 0}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.type);
        const auto type = SignalType(row.type);
        const auto filled = FilledVector(type);
        CVector& vector = *filled;
        EXPECT_EQ(Shown(vector.GetRealValue()), row.shown);
        EXPECT_EQ(Shown(vector.GetImValue()), row.imaginary);
        EXPECT_TRUE(vector.GetYMax() == row.max && vector.GetYMin() == (row.max == 0 ? 0 : 12));
        Bytes stored = Bytes{}.u16(1).append(BaseBlock(vector)).f32s(row.stored, "real").f32s({11, 12}, "real limits");
        if (type == SignalType::Complex) stored.f32s({3, 4}, "imaginary").f32s({13, 14}, "imaginary limits");
        expectBytes(written(vector), stored);
        const auto read = readBack<CVector>(stored);
        EXPECT_EQ(read->GetSize(), 2);
        EXPECT_EQ(Shown(read->GetRealValue()), row.type == 7 ? Values(2) : row.shown);
        EXPECT_TRUE(read->GetRealMax() == 11 && read->GetRealMin() == 12);
        EXPECT_EQ(read->GetImMin(), type == SignalType::Complex ? 14 : 0);

        RecordCheck<CVector> check{.name = "CVector", .lowest = 0};
        checkRecord(vector, check);
    }
    EXPECT_THAT(dumpOf(*FilledVector(SignalType::Complex)),
                ::testing::EndsWith("\nCVector \nRealMin : 1.200000e+01, RealMax : 1.100000e+01\n"
                                    "RealValue[0]:1.000000e+00,RealValue[1]:2.000000e+00,\n"
                                    "ImMin : 1.400000e+01, ImMax : 1.300000e+01\n"
                                    "ImValue[0]:3.000000e+00,ImValue[1]:4.000000e+00,\n"));
    EXPECT_THAT(dumpOf(*FilledVector(SignalType::Compressed)), ::testing::EndsWith(",\nCVector \n"));

    CVector vector(2, 3, SignalType::Complex, 0, true);
    EXPECT_TRUE(vector.GetDimension() == 2 && vector.GetResultType() == SizeType::Vector);
    readInto(vector, Bytes{}.u16(0));
    EXPECT_THAT(Shown(vector.GetRealValue(), 3), ElementsAre(0, 0, 0)) << "an empty record takes no array away";
    vector.SetYMin(5), vector.SetYMax(6);
    EXPECT_TRUE(vector.GetRealMin() == 5 && vector.GetImMin() == 5 && vector.GetRealMax() == 6);
    EXPECT_TRUE(vector.GetImMax() == 6 && vector.GetYMax() == 0.0F);
}

TEST(Vector, ArraysAndTheirOwner)
{
    const auto filled = FilledVector(SignalType::Real);
    CVector& vector = *filled;
    vector.SetSize(2);
    EXPECT_THAT(Shown(vector.GetRealValue()), ElementsAre(1, 2)) << "the same size";
    vector.AdjustSize(4); // more than the array holds
    const std::vector<char> padded = written(vector);
    const Bytes tail = Bytes{}.f32s({1, 2, 0, 0}).f32s({11, 12});
    expectBytes({padded.end() - static_cast<long>(tail.size()), padded.end()}, tail);
    std::array<double, 3> doubles{9, 9, 9};
    vector.GetRealValues(doubles.data(), 3);
    EXPECT_THAT(doubles, ElementsAre(1, 2, 0));
    vector.GetImValues(doubles.data(), 2);
    EXPECT_THAT(doubles, ElementsAre(0, 0, 0));
    vector.SetComplexType(SignalType::Complex, false);
    EXPECT_THAT(Shown(vector.GetImValue(), 4), ElementsAre(0, 0, 0, 0));
    vector.ReInitPtrTab();
    EXPECT_TRUE(vector.GetRealValue() == nullptr && vector.GetImValue() == nullptr);
    vector.SetSize(-1);
    EXPECT_EQ(vector.GetSize(), -1);

    Values lent = {1, 2, 3};
    CVector borrower(2, 3, SignalType::OctaveMinMax, 0, false);
    EXPECT_EQ(borrower.GetRealValue(), nullptr);
    borrower.SetRealValue(lent.data());
    borrower.ReAlloc();
    EXPECT_EQ(borrower.GetImValue(), lent.data());
    Values copied(3);
    borrower.GetImValues(copied.data(), 3);
    EXPECT_EQ(copied, lent);

    const auto smaller = FilledVector(SignalType::OctaveMinMax), larger = FilledVector(SignalType::OctaveMinMax, 4);
    smaller->GetRealValue()[0] = 7;
    EXPECT_TRUE(readFrom(written(*smaller), [&](CMmioFile& file) { return borrower.Read(&file); }));
    EXPECT_THAT(lent, ElementsAre(7, 2, 3));
    EXPECT_FALSE(readFrom(written(*larger), [&](CMmioFile& file) { return borrower.Read(&file); }));
    EXPECT_THAT(lent, ElementsAre(7, 2, 3));
    borrower.ReInitPtrTab();
    EXPECT_EQ(borrower.GetRealValue(), nullptr);
}

TEST(Vector, Copies)
{
    const auto filled = FilledVector(SignalType::Complex);
    CVector& owner = *filled;
    const std::unique_ptr<CResult> copy(owner.GetCopy());
    EXPECT_EQ(written(*copy), written(owner));
    owner.GetRealValue()[0] = 99;
    EXPECT_THAT(Shown(dynamic_cast<CVector&>(*copy).GetRealValue()), ElementsAre(1, 2)) << "its own";
    owner.AdjustSize(3);
    *copy = static_cast<CResult*>(&owner);
    EXPECT_THAT(Shown(dynamic_cast<CVector&>(*copy).GetImValue(), 3), ElementsAre(3, 4, 0));

    Values lent = {1, 2};
    CVector borrower(2, 2, SignalType::Real, 0, false);
    borrower.SetRealValue(lent.data());
    const std::unique_ptr<CResult> shared(borrower.GetCopy());
    EXPECT_EQ(dynamic_cast<CVector&>(*shared).GetRealValue(), lent.data());

    CScalar scalar(9, 1, SignalType::Real, false);
    *copy = static_cast<CResult*>(&scalar);
    EXPECT_TRUE(dynamic_cast<CVector&>(*copy).GetRealValue() == nullptr && copy->GetProcessType() == 9);
    *copy = static_cast<CResult*>(nullptr);
    owner = static_cast<CResult*>(&owner);
    EXPECT_EQ(owner.GetRealValue()[0], 99);
}

TEST(Vector, HostileSizesAskForNothing)
{
    for (const SignalType type : {SignalType::Real, SignalType::Complex, SignalType(7)}) {
        for (const int size : {-1, INT_MIN, 1 << 20, INT_MAX}) {
            SCOPED_TRACE(size);
            CVector vector(2, 0, type, 0, true), read;
            vector.AdjustSize(size);
            const Bytes stored = Bytes{}.u16(1).append(BaseBlock(vector)).f32s({1, 2, 3, 4});
            EXPECT_FALSE(readFrom(stored.data(), [&](CMmioFile& file) { return read.Read(&file); }));
            EXPECT_EQ(read.GetRealValue(), nullptr);
        }
    }
    CVector sample(2, 0, SignalType::Real, 0, true);
    sample.AdjustSize(1000);
    const auto cut = readBack<CVector>(Bytes{}.u16(1).append(BaseBlock(sample)).f32s({5})); // ends within the array
    EXPECT_TRUE(cut->GetRealValue()[0] == 5 && cut->GetRealValue()[999] == 0);
}

std::unique_ptr<CDoubleResult> Pair(int size = 2)
{
    return std::make_unique<CDoubleResult>(FilledVector(SignalType::Real, size).release(),
                                           new CVector(37, size, SignalType::Complex, 0, true));
}

TEST(DoubleResult, Stored)
{
    const auto pair = Pair();
    Bytes stored = Bytes{}.u16(1, "version");
    for (CVector* vector : {pair->GetMinVector(), pair->GetMaxVector()}) stored.append(BlockOf(written(*vector)));
    expectBytes(written(*pair), stored);
    RecordCheck<CDoubleResult> check{.silentWrites = -1};
    check.make = [] { return Pair(5); };
    check.expect = [](CDoubleResult& read, std::uint16_t) {
        EXPECT_EQ(read.GetSize(), 5) << "of its own it stores nothing";
        EXPECT_EQ(Shown(read.GetMinVector()->GetRealValue()), Values({1, 2}));
        EXPECT_EQ(read.GetMaxVector()->GetProcessType(), 37U);
    };
    checkRecord(*pair, check);

    CDoubleResult none, onlyMax(nullptr, new CVector(37, 3, SignalType::Real, 0, true));
    EXPECT_TRUE(onlyMax.GetSize() == 3 && onlyMax.GetProcessType() == 0 && onlyMax.GetDimension() == 0);
    expectBytes(written(none), Bytes{}.u16(1));
    readInto(none, Bytes{}.u16(0));
    for (CDoubleResult* incomplete : {&none, &onlyMax})
        EXPECT_FALSE(readFrom(stored.data(), [&](CMmioFile& file) { return incomplete->Read(&file); }));
}

TEST(DoubleResult, ForwardsAndCopies)
{
    const auto pair = Pair();
    CGrandeur quantity, replacement;
    CGrandeurFichier fromFile;
    pair->SetMagnitude(&quantity), pair->SetXMagnitude(&quantity);
    EXPECT_EQ(pair->GetMagnitude(), nullptr);
    pair->GetMaxVector()->SetMagnitude(&fromFile);
    pair->ReplaceGrandeur(&fromFile, &replacement);
    std::map<CGrandeur*, int> counts;
    pair->AddInvolvedGrandeur(counts);
    EXPECT_EQ(counts, (std::map<CGrandeur*, int>{{&quantity, 1}, {&replacement, 1}}));

    const std::unique_ptr<CResult> copy(pair->GetCopy());
    EXPECT_TRUE(written(*copy) == written(*pair) && copy->GetSize() == 2);
    auto& copied = dynamic_cast<CDoubleResult&>(*copy);
    EXPECT_NE(copied.GetMinVector()->GetRealValue(), pair->GetMinVector()->GetRealValue());
    CScalar scalar(9, 7, SignalType::Real, false);
    copied = static_cast<CResult*>(&scalar);
    EXPECT_TRUE(copied.GetSize() == 7 && copied.GetMinVector() != nullptr);
    const std::unique_ptr<CVector> formerMin(copied.GetMinVector()), formerMax(copied.GetMaxVector());
    CDoubleResult none;
    none.SetMagnitude(&quantity), none.SetXMagnitude(nullptr), none.ReplaceGrandeur(&fromFile, &quantity);
    copied = static_cast<CResult*>(&none); // what it held is the caller's to free
    EXPECT_TRUE(copied.GetMinVector() == nullptr && copied.GetMaxVector() == nullptr && copied == *pair);
}

} // namespace
} // namespace ZelmResult
