// The pair of a waterfall's reference and the result that shows it.

#include "zelmresult/waterfalls/ref_waterfall.h"

#include "tests/builders/record_check.h"
#include "zelmresult/waterfalls/insertion_order.h"
#include "zelmresult/waterfalls/list_vector_ref.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace ZelmResult {
namespace {

using namespace test;
using Values = std::vector<float>;
using Numbers = std::vector<std::int32_t>;

constexpr float kGap = std::numeric_limits<float>::infinity();

// A reference and its result, tied as the factory ties them, with ten times the number of each block.
struct Pair {
    explicit Pair(std::int32_t size, const Numbers& blocks = {})
        : reference(new CWaterfallRef(23, size, u"Speed", SignalType::Real, true)),
          result(new CRefWaterfall(141, size, SignalType::Real, nullptr, reference.get(), 43, true, true))
    {
        reference->SetMyRefVect(result.get());
        for (const std::int32_t block : blocks) (void)result->AddRefValue(static_cast<float>(10 * block), block, false);
    }

    std::unique_ptr<CWaterfallRef> reference;
    std::unique_ptr<CRefWaterfall> result;
};

Values Ring(CResult& result)
{
    const float* values = dynamic_cast<CRefWaterfall&>(result).GetRealValue();
    return values == nullptr ? Values{} : Values(values, values + result.GetSize());
}

Values SortedValues(const CWaterfallRef& reference)
{
    const auto& sorted = reference.GetSortedValues();
    return {sorted.GetData(), sorted.GetData() + sorted.GetCount()};
}

Numbers SortedBlocs(const CWaterfallRef& reference)
{
    Numbers blocks;
    for (std::int32_t i = 0; i < reference.GetSortedBlocNumbers().GetSize(); ++i)
        blocks.push_back(reference.GetSortedBlocNumbers()[i]);
    return blocks;
}

Numbers Table(const CWaterfallRef& reference)
{
    return {reference.GetBlockNumberPtr(), reference.GetBlockNumberPtr() + reference.GetSize()};
}

} // namespace

TEST(WaterfallRef, SortsEqualValuesByTheirArrival)
{
    const struct {
        Values before;
        float value;
        std::int32_t place;
    } rows[] = {{{1, 2, 3}, 0.5F, 0}, {{1, 2, 3}, 3, 3}, {{1, 2, 3}, 2, 1},
                {{1, 1, 3}, 1, 1},    {{2, 2, 2}, 2, 3}, {{0, 1, 1, 1, 2}, 1, 1}};
    for (const auto& row : rows) {
        CWaterfallRef reference;
        for (const float value : row.before) (void)reference.InsertValueInSortedTabs(value, 1);
        EXPECT_EQ(reference.InsertValueInSortedTabs(row.value, 9), row.place);
        EXPECT_EQ(reference.GetStamp(), row.before.size() + 1);
        EXPECT_EQ(reference.RemoveValueInSortedTabs(8), -1);
        EXPECT_EQ(reference.RemoveValueInSortedTabs(9), row.place);
        EXPECT_EQ(SortedValues(reference), row.before);
    }
    EXPECT_THROW((void)CWaterfallRef().GetSortedValues().GetAt(0), std::out_of_range);

    // In one go, with infinities and both zeros.
    std::mt19937 random(3);
    const Values pool = {-0.0F, 0.0F, 1, 2, 3, -1, kGap, -kGap};
    for (int round = 0; round < 4000; ++round) {
        Values values(random() % 14);
        for (float& value : values) value = pool[random() % pool.size()];
        CWaterfallRef literal;
        for (std::size_t i = 0; i < values.size(); ++i)
            (void)literal.InsertValueInSortedTabs(values[i], static_cast<std::int32_t>(i));
        ASSERT_EQ(InsertionOrder(values), SortedBlocs(literal));
    }
    EXPECT_FALSE(InsertionOrder(Values{1, NAN}).has_value());
}

TEST(WaterfallRef, FillsItselfWithoutAResult)
{
    CWaterfallRef alone(23, 2, u"Time", SignalType::Real, false);
    EXPECT_EQ(alone.AddUnsortedValue(5, 7), -1);
    EXPECT_EQ(alone.AddUnsortedValue(6, 8), -1);
    EXPECT_EQ(alone.AddUnsortedValue(4, 9), 7);
    EXPECT_EQ(SortedValues(alone), (Values{4, 5, 6}));
    float value = 0;
    EXPECT_EQ(alone.GetValueByBloc(9, value), 0);
    EXPECT_EQ(value, 4);
    EXPECT_EQ(alone.GetValueByBloc(7, value), -1);
    EXPECT_FALSE(alone.GetValueByBlocForConversion(7, value));
    EXPECT_EQ(value, 0);
    alone.Clean();
    EXPECT_EQ(alone.GetStamp(), 0);
    EXPECT_TRUE(SortedValues(alone).empty());
    EXPECT_EQ(alone.AddUnsortedBlockNumber(1), 9);
}

TEST(RefWaterfall, BackToARing)
{
    const struct {
        Numbers blocks;
        bool good;
        Values ring;
    } rows[] = {{{3, 1, 2}, true, {0, 1, 2}}, // block 3 where the gap of block 0 was
                {{0, 5}, true, {0, kGap, kGap, kGap, kGap, 1}},
                {{1, 1, 2}, false, {0, 1, 2}},
                {{4, 4, 6, 7}, true, {0, kGap, 2, 3}},
                {{-1, -1, 0, 3}, true, {2, kGap, kGap, 3, kGap}}, // no block fills the tail
                {{0, 1 << 25}, false, {0, 1}},
                {{}, false, {}}};
    for (const auto& row : rows)
        for (const bool isShared : {false, true}) {
            SCOPED_TRACE(&row - rows);
            const auto size = static_cast<std::int32_t>(row.blocks.size());
            CWaterfallRef reference(23, size, u"Time", SignalType::Real, false);
            CRefWaterfall result(141, size, SignalType::Complex, nullptr, &reference, 43, isShared, true);
            for (std::int32_t i = 0; i < size; ++i) result.GetRealValue()[i] = static_cast<float>(i);
            result.SetFilled(size);
            (void)result.CopyBlocNumber(row.blocks.data(), size);
            ASSERT_EQ(result.UpdateTabValue(), row.good);
            EXPECT_EQ(Ring(result), row.ring);
        }

    CWaterfallRef loaded;
    readInto(loaded, blockOf(*Pair(6, {0, 1, 2, 3}).reference));
    EXPECT_FALSE(loaded.UpdateTabRefValue()) << "nothing shows it";
    CRefWaterfall shown(141, 4, SignalType::Real, nullptr, &loaded, 43, true, true);
    loaded.SetMyRefVect(&shown);
    std::copy_n(Numbers{7, 2, -1, 4}.data(), 4, loaded.GetBlockNumberPtr());
    EXPECT_TRUE(loaded.UpdateTabRefValue()); // entries of no block become zeros, which come first
    EXPECT_EQ(Table(loaded), (Numbers{0, 2, 4, 7}));
    EXPECT_EQ(shown.GetLastBlockNb(), 7);
    EXPECT_EQ(shown.GetRealValue()[3], 0);
    loaded.GetBlockNumberPtr()[3] = INT32_MAX;
    EXPECT_FALSE(loaded.UpdateTabRefValue()) << "too far apart";
}

TEST(RefWaterfall, IsMadeForTheReferencesOfACopiedList)
{
    const Values wanted = {0, 10, 20};
    auto* list = new CListVectorRef(false);
    Pair original(3, {0, 1, 2});
    CListVectorRef source(true);
    source.AddVectorRef(original.reference.release());
    list->DuplicateAllReference(source);
    auto* copy = dynamic_cast<CWaterfallRef*>(list->GetFirstRef());
    ASSERT_NE(copy, nullptr);
    CRefWaterfall* shown = copy->GetMyRefVect();
    ASSERT_NE(shown, nullptr);
    EXPECT_EQ(shown->GetMyVecteurReference(), copy);
    EXPECT_EQ(shown->GetReferences(), list);
    EXPECT_EQ(Ring(*shown), wanted);
    EXPECT_EQ(shown->GetRealValue(), copy->GetRefValue());
    shown->SetMyVecteurReference(u"Time", nullptr);
    EXPECT_EQ(shown->GetMyVecteurReference(), copy) << "no match changes nothing";
    float* sorted = nullptr;
    shown->GetAnyRefValue(sorted, u"Speed", nullptr);
    EXPECT_EQ(sorted, copy->GetSortedValues().GetData());
    list->DestroyAssociatedWaterfallRef(); // its last user dies, and it stays
    EXPECT_EQ(copy->GetMyRefVect(), nullptr);
    EXPECT_EQ(list->GetCount(), 1);
    delete list;
}

TEST(RefWaterfall, TakesItsArraysFromItsReference)
{
    const Values wanted = {0, 10, 20};
    Pair pair(3, {0, 1, 2});
    pair.result->SetRealValue(new float[3]{4, 5, 6});
    pair.result->UpdateVecteurReferencePtr();
    EXPECT_EQ(Ring(*pair.result), wanted);
    *pair.result = static_cast<CResult*>(Pair(2).result.get());
    EXPECT_EQ(pair.result->GetMyVecteurReference(), nullptr);
    EXPECT_TRUE(pair.result->IsWaterfallReference());
    EXPECT_EQ(pair.reference->GetMyRefVect(), pair.result.get());
    EXPECT_EQ(Ring(*pair.result).size(), 2);
    CWaterfallRef flat(*pair.reference); // shares the values, and mustn't free them
    EXPECT_EQ(flat.GetMyRefVect(), pair.result.get());
    flat = CWaterfallRef();
}

// A result that borrowed its arrays takes those of a reference as its own.
TEST(RefWaterfall, LetsGoOfBorrowedArrays)
{
    float foreign[] = {7, 8};
    CVector borrowed(141, 2, SignalType::Complex, 0, false);
    borrowed.SetRealValue(foreign);
    borrowed.SetImValue(foreign);
    auto* list = new CListVectorRef(false);
    CRefWaterfall along(141, 2, SignalType::Real, list, nullptr, 43, true, true);
    along = static_cast<CResult*>(&borrowed);
    list->AddVectorRef(new CWaterfallRef(23, 2, u"Time", SignalType::Real, false));
    along.SetMyVecteurReference(u"Time", nullptr);
    along.SetSize(9);
}

TEST(RefWaterfall, HandsOnWhatTheReferenceShows)
{
    Pair pair(3, {0, 1, 2, 3});
    CGrandeur speed;
    pair.result->SetMagnitude(&speed);
    pair.result->SetYMin(-1);
    pair.result->setName(u"Shaft");
    pair.result->SetFilled(2);
    EXPECT_EQ(pair.reference->GetMagnitude(), &speed);
    EXPECT_EQ(pair.reference->GetRefMin(), -1);
    EXPECT_EQ(pair.reference->name(), u"Shaft");
    EXPECT_EQ(pair.reference->GetFilled(), 2);
    EXPECT_TRUE(pair.result->name().empty());
    pair.result->Clean();
    EXPECT_TRUE(SortedValues(*pair.reference).empty());
    EXPECT_EQ(Table(*pair.reference), Numbers(3, -1));
}

} // namespace ZelmResult
