// The pair of a waterfall's reference and the result that shows it.

#include "zelmresult/waterfalls/ref_waterfall.h"

#include "tests/builders/record_check.h"
#include "zelmresult/waterfalls/insertion_order.h"
#include "zelmresult/waterfalls/list_vector_ref.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <optional>
#include <random>

namespace ZelmResult {
namespace {

using namespace test;
using ::testing::ElementsAre;
using Values = std::vector<float>;
using Numbers = std::vector<std::int32_t>;

constexpr float kGap = std::numeric_limits<float>::infinity();

// A reference and its result, tied as the factory ties them.
struct Pair {
    explicit Pair(std::int32_t size, SignalType type = SignalType::Real, std::uint32_t wtfProcess = 43)
        : reference(new CWaterfallRef(23, size, u"Speed", SignalType::Real, true)),
          result(new CRefWaterfall(141, size, type, nullptr, reference.get(), wtfProcess, true, true))
    {
        reference->SetMyRefVect(result.get());
    }

    void Add(const Numbers& blocks)
    {
        for (const std::int32_t block : blocks) (void)result->AddRefValue(static_cast<float>(10 * block), block, false);
    }

    std::unique_ptr<CWaterfallRef> reference;
    std::unique_ptr<CRefWaterfall> result;
};

Values Ring(CRefWaterfall& result)
{
    const float* values = result.GetRealValue();
    return values == nullptr ? Values{} : Values(values, values + result.GetSize());
}

Values SortedValues(const CWaterfallRef& reference)
{
    Values values;
    for (std::int32_t i = 0; i < reference.GetSortedValues().GetCount(); ++i)
        values.push_back(reference.GetSortedValues().GetAt(i));
    return values;
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
    const std::int32_t* blocks = reference.GetBlockNumberPtr();
    return blocks == nullptr ? Numbers{} : Numbers(blocks, blocks + reference.GetSize());
}

// What was written, as bytes to append.
template <class T>
Bytes Raw(T&& source)
{
    const std::vector<char> stored = written(source);
    return Bytes{}.raw({stored.data(), stored.size()});
}

// The pair, value by value, as it was first written down.
struct Model {
    std::int32_t size, next = 0, count = 0, first = 0, firstBlock = 0, last = -1, unsorted = 0;
    Values ring = Values(static_cast<std::size_t>(size), 0.0F);
    Numbers table = Numbers(static_cast<std::size_t>(size), -1);
    CWaterfallRef sorted = {}; // its sorted arrays only

    std::optional<std::int32_t> Put(float value)
    {
        ring[static_cast<std::size_t>(next)] = value;
        next = next + 1 == size ? 0 : next + 1;
        if (count < size) {
            ++count;
            return std::nullopt;
        }
        first = next;
        return firstBlock++;
    }
    void Unsorted(std::int32_t block)
    {
        table[static_cast<std::size_t>(unsorted)] = block;
        unsorted = unsorted + 1 == size ? 0 : unsorted + 1;
    }
    std::int32_t Add(float value, std::int32_t block, bool slides)
    {
        for (std::int32_t missing = last + 1; missing < block; ++missing) {
            if (const auto replaced = Put(kGap); replaced)
                (void)sorted.RemoveValueInSortedTabs(*replaced);
            else
                Unsorted(-2);
        }
        const std::int32_t position = next;
        if (slides && block >= size) {
            for (float& entry : ring)
                if (entry != kGap) entry -= 1.0F;
            (void)Put(static_cast<float>(size - 1));
            sorted.CleanSortedTab();
            std::int32_t b = firstBlock;
            const auto insert = [&](std::int32_t i) {
                const float entry = ring[static_cast<std::size_t>(i)];
                if (entry != kGap) (void)sorted.InsertValueInSortedTabs(entry, b);
                ++b;
            };
            for (std::int32_t i = next; next != 0 && i < size; ++i) insert(i);
            for (std::int32_t i = 0; i < position; ++i) insert(i);
            value = static_cast<float>(size - 1);
        } else if (const auto replaced = Put(value); replaced) {
            (void)sorted.RemoveValueInSortedTabs(*replaced);
        }
        Unsorted(block);
        (void)sorted.InsertValueInSortedTabs(value, block);
        last = block;
        return position;
    }
};

} // namespace

TEST(WaterfallRef, SortsEqualValuesByTheirArrival)
{
    const struct {
        Values before;
        float value;
        std::int32_t place;
    } rows[] = {{{1, 2, 3}, 0.5F, 0}, {{1, 2, 3}, 3, 3}, {{1, 2, 3}, 2, 1}, {{1, 2, 3}, 1.5F, 1},
                {{1, 1, 3}, 1, 1},    {{2, 2, 2}, 2, 3}, {{}, 7, 0},        {{0, 1, 1, 1, 2}, 1, 1}};
    for (const auto& row : rows) {
        CWaterfallRef reference;
        for (const float value : row.before) (void)reference.InsertValueInSortedTabs(value, 1);
        EXPECT_EQ(reference.InsertValueInSortedTabs(row.value, 9), row.place);
        EXPECT_EQ(reference.GetStamp(), row.before.size() + 1);
        EXPECT_EQ(SortedBlocs(reference)[static_cast<std::size_t>(row.place)], 9);
        EXPECT_EQ(reference.RemoveValueInSortedTabs(8), -1);
        EXPECT_EQ(reference.RemoveValueInSortedTabs(9), row.place);
        EXPECT_EQ(SortedValues(reference), row.before);
    }
    EXPECT_THROW((void)CWaterfallRef().GetSortedValues().GetAt(0), std::out_of_range);
    SortedWaterfallRefValuesArray array;
    array.InsertAt(2, 5.0F);
    EXPECT_TRUE(array.GetCount() == 3 && array[0] == 0 && array.GetAt(2) == 5);

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

TEST(RefWaterfall, FillsRingAndReference)
{
    Pair gaps(20);
    EXPECT_EQ(gaps.result->AddRefValue(3, 10, false), 10);
    EXPECT_EQ(std::count(gaps.result->GetRealValue(), gaps.result->GetRealValue() + 10, kGap), 10);
    EXPECT_EQ(std::count(gaps.reference->GetBlockNumberPtr(), gaps.reference->GetBlockNumberPtr() + 10, -2), 10);
    EXPECT_TRUE(gaps.reference->GetBlockNumberPtr()[10] == 10 && SortedValues(*gaps.reference) == Values{3});
    float value = 0;
    EXPECT_TRUE(gaps.reference->GetValueByBloc(4, value) == -1 && value == kGap);
    EXPECT_TRUE(gaps.reference->GetValueByBloc(10, value) == 10 && value == 3);
    EXPECT_EQ(gaps.result->AddRefValue(4, 11, true), 11);
    EXPECT_EQ(SortedValues(*gaps.reference), Values{3}) << "the reference was to be left alone";

    Pair slides(4, SignalType::Real, 128);
    for (std::int32_t block = 0; block < 4; ++block)
        (void)slides.result->AddRefValue(static_cast<float>(block), block, false);
    EXPECT_EQ(slides.result->AddRefValue(77, 4, false), 0);
    EXPECT_EQ(Ring(*slides.result), (Values{3, 0, 1, 2}));
    EXPECT_EQ(slides.result->AddRefValue(77, 5, false), 1);
    EXPECT_EQ(Ring(*slides.result), (Values{2, 3, 0, 1}));
    EXPECT_EQ(SortedBlocs(*slides.reference), (Numbers{2, 3, 4, 5}));

    std::mt19937 random(4);
    for (int round = 0; round < 400; ++round) {
        const auto size = static_cast<std::int32_t>(1 + random() % 7);
        const bool isSliding = round % 3 == 0;
        Pair pair(size, SignalType::Real, isSliding ? 128 : 43);
        Model model{.size = size};
        for (int step = 0; step < 25; ++step) {
            const std::int32_t block = std::max(0, model.last - 1 + static_cast<std::int32_t>(random() % 14));
            const auto added = static_cast<float>(random() % 5);
            ASSERT_EQ(pair.result->AddRefValue(added, block, false), model.Add(added, block, isSliding));
            ASSERT_EQ(Ring(*pair.result), model.ring);
            ASSERT_EQ(Table(*pair.reference), model.table);
            ASSERT_EQ(SortedValues(*pair.reference), SortedValues(model.sorted));
            ASSERT_EQ(SortedBlocs(*pair.reference), SortedBlocs(model.sorted));
            ASSERT_TRUE(pair.result->GetCount() == model.count && pair.result->GetOldestIndex() == model.first);
            ASSERT_TRUE(pair.result->GetFirstBlockNb() == model.firstBlock &&
                        pair.result->GetNextIndex() == model.next);
        }
    }
    Pair far(3);
    EXPECT_EQ(far.result->AddRefValue(1, INT32_MAX, false), INT32_MAX % 3);

    CWaterfallRef alone(23, 2, u"Time", SignalType::Real, false);
    EXPECT_TRUE(alone.AddUnsortedValue(5, 7) == -1 && alone.AddUnsortedValue(6, 8) == -1);
    EXPECT_TRUE(alone.AddUnsortedValue(4, 9) == 7 && SortedValues(alone) == (Values{4, 5, 6}));
    EXPECT_TRUE(alone.GetValueByBloc(9, value) == 0 && value == 4 && alone.GetValueByBloc(7, value) == -1);
    EXPECT_TRUE(!alone.GetValueByBlocForConversion(7, value) && value == 0);
    alone.Clean();
    EXPECT_TRUE(alone.GetStamp() == 0 && SortedValues(alone).empty() && alone.AddUnsortedBlockNumber(1) == 9);
    EXPECT_EQ(CWaterfallRef().AddUnsortedValue(1, 1), -1);
    EXPECT_EQ(CRefWaterfall().AddRefValue(1, 1, false), -1);
}

TEST(RefWaterfall, Stored)
{
    Pair pair(5);
    pair.Add({0, 1, 2});
    pair.result->SetFilled(3);
    pair.result->SetYMax(90);
    auto base = [&](CResult& object, std::int32_t size) { // the base block tells how many are stored
        const std::int32_t former = object.GetSize();
        object.AdjustSize(size);
        const Bytes bytes = Raw([&](CMmioFile& file) { return object.CResult::Write(&file); });
        object.AdjustSize(former);
        return bytes;
    };
    const Bytes vectorRef = Bytes{}.u16(1, "version of CVectorRef").append(base(*pair.reference, 3)).text(u"Speed");
    const Bytes reference = Bytes{}
                                .u16(1, "version")
                                .append(vectorRef)
                                .f32(0, "RefMin")
                                .f32(90, "RefMax")
                                .f32s({0, 10, 20}, "values")
                                .i32(0)
                                .i32(1)
                                .i32(2)
                                .flag(true, "IsTacho");
    expectBytes(written(*pair.reference), reference);
    EXPECT_TRUE(pair.reference->GetSize() == 5 && pair.reference->GetFilled() == 5);
    EXPECT_THAT(dumpOf(*pair.reference),
                ::testing::HasSubstr("CWaterfallRef\nm_plBlockNumber[0] : 0, m_plBlockNumber[0] : 0, "
                                     "m_plBlockNumber[1] : 1, m_plBlockNumber[1] : 1, m_plBlockNumber[2] : 2\n"
                                     "m_plBlockNumber[0]:0,m_plBlockNumber[1]:1,m_plBlockNumber[2]:2,\n"));
    RecordCheck<CWaterfallRef> check{.name = "CWaterfallRef", .lowest = 0, .silentReads = -1};
    check.expect = [](CWaterfallRef& read, std::uint16_t version) {
        EXPECT_EQ(SortedValues(read), version == 0 ? Values{} : (Values{0, 10, 20}));
        EXPECT_EQ(Table(read), version == 0 ? Numbers{} : (Numbers{0, 1, 2}));
        EXPECT_EQ(read.IsTacho(), version == 1);
    };
    checkRecord(*pair.reference, check);

    pair.result->AdjustSize(3);
    const Bytes vector = Raw([&](CMmioFile& file) { return pair.result->CRefVector::Write(&file); });
    pair.result->AdjustSize(5);
    expectBytes(written(*pair.result), Bytes{}.u16(1).append(vector).i32(0).i32(1).i32(2));
    EXPECT_THAT(dumpOf(*pair.result), ::testing::HasSubstr("CRefWaterfall\nm_plBlockNumber: size: 3\n"
                                                           "m_plBlockNumber[0]:0,"));
    RecordCheck<CRefWaterfall> ofResult{.name = "CRefWaterfall", .lowest = 0, .silentReads = -1};
    ofResult.expect = [](CRefWaterfall& read, std::uint16_t version) {
        EXPECT_EQ(Ring(read), version == 0 ? Values{} : (Values{0, 10, 20}));
        EXPECT_EQ(read.GetBlocNumber(2), version == 0 ? -1 : 2);
    };
    ofResult.make = [] { return std::make_unique<CRefWaterfall>(true, nullptr, false); };
    checkRecord(*pair.result, ofResult);

    // Without reference and flag the table goes with a write, and is known to the next one all the same.
    CRefWaterfall alone(true, nullptr, false);
    const std::vector<char> stored = written(*pair.result);
    ASSERT_TRUE(readFrom(stored, reading(alone)));
    EXPECT_TRUE(written(alone) == stored && alone.GetBlocNumberPtr(0) == nullptr && written(alone) == stored);
    const std::unique_ptr<CResult> copyOfAlone(alone.GetCopy());
    EXPECT_EQ(written(dynamic_cast<CRefWaterfall&>(*copyOfAlone)), stored);
    alone.Clean();
    alone.SetFilled(3);
    EXPECT_FALSE(readFrom({}, [&](CMmioFile& file) { return alone.Write(&file); })) << "another series by now";
    CRefWaterfall noTable(141, SignalType::Real);
    noTable.SetFilled(1);
    EXPECT_FALSE(readFrom({}, [&](CMmioFile& file) { return noTable.Write(&file); }));

    // More filled points than values, holes and a ring that has come round leave a record that can be read.
    Pair holes(4);
    holes.Add({0, 3, 9});
    (void)holes.result->AddRefValue(kGap, 10, false);
    CWaterfallRef read;
    readInto(read, Raw(*holes.reference));
    readInto(read, Raw(*holes.reference)); // Filled is Size now
    EXPECT_EQ(SortedValues(read).size(), 1U);
}

TEST(RefWaterfall, BackToARing)
{
    const struct {
        Numbers blocks;
        bool good;
        Values ring;
    } rows[] = {{{3, 1, 2},
                 true,
                 {0, 1, 2}}, // block 3 where the gap of block 0 was    {{0, 5}, true, {0, kGap, kGap, kGap, kGap, 1}},
                {{1, 1, 2}, false, {0, 1, 2}},
                {{4, 4, 6, 7}, true, {0, kGap, 2, 3}},
                {{-1, -1, 0, 3}, true, {2, kGap, kGap, 3, kGap}}, // no block fills the tail
                {{0, INT32_MAX}, false, {0, 1}},
                {{}, false, {}}};
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        for (const bool isShared : {false, true}) {
            const auto size = static_cast<std::int32_t>(row.blocks.size());
            CWaterfallRef reference(23, size, u"Time", SignalType::Real, false);
            CRefWaterfall result(141, size, SignalType::Complex, nullptr, &reference, 43, isShared, true);
            for (std::int32_t i = 0; i < size; ++i) result.GetRealValue()[i] = static_cast<float>(i);
            result.SetFilled(size);
            (void)result.CopyBlocNumber(row.blocks.data(), size);
            ASSERT_EQ(result.UpdateTabValue(), row.good);
            EXPECT_EQ(Ring(result), row.ring);
            EXPECT_EQ(result.GetImValue() == nullptr, size == 0);
        }
    }

    const auto reload = [](const Pair& pair, CWaterfallRef& into) { readInto(into, Raw(*pair.reference)); };
    Pair stored(6);
    stored.Add({0, 1, 2, 3});
    CWaterfallRef loaded;
    reload(stored, loaded);
    EXPECT_FALSE(loaded.UpdateTabRefValue()) << "nothing shows it";
    CRefWaterfall shown(141, 4, SignalType::Real, nullptr, &loaded, 43, true, true);
    loaded.SetMyRefVect(&shown);
    std::int32_t* blocks = loaded.GetBlockNumberPtr();
    std::copy_n(Numbers{7, 2, -1, 4}.data(), 4, blocks);
    EXPECT_TRUE(loaded.UpdateTabRefValue()); // entries of no block become zeros, which come first
    EXPECT_EQ(Table(loaded), (Numbers{0, 2, 4, 7}));
    EXPECT_TRUE(shown.GetLastBlockNb() == 7 && shown.GetRealValue()[3] == 0);
    blocks = loaded.GetBlockNumberPtr();
    blocks[3] = INT32_MAX;
    EXPECT_FALSE(loaded.UpdateTabRefValue()) << "too far apart";
}

// Whoever of a pair, its lists and its copies goes first.
TEST(RefWaterfall, EachLosesTheOtherWhenItDies)
{
    const Values wanted = {0, 10, 20};
    {
        Pair pair(3);
        pair.Add({0, 1, 2});
        const std::unique_ptr<CResult> copy(pair.result->GetCopy());
        const std::unique_ptr<CResult> second(pair.reference->GetCopy());
        pair.reference.reset();
        EXPECT_TRUE(pair.result->GetMyVecteurReference() == nullptr && Ring(*pair.result).empty());
        EXPECT_EQ(pair.result->GetBlocNumberPtr(0), nullptr);
        EXPECT_EQ(Ring(dynamic_cast<CRefWaterfall&>(*copy)), wanted);
        const auto& reference = dynamic_cast<CWaterfallRef&>(*second);
        EXPECT_TRUE(reference.GetMyRefVect() == nullptr && SortedValues(reference) == wanted && reference.IsTacho());
        EXPECT_TRUE(dynamic_cast<CRefWaterfall&>(*copy) == *pair.result) << "no reference either";
        pair.result->SetSize(7);
        EXPECT_EQ(Ring(*pair.result), Values(7, 0.0F));
    }
    {
        Pair pair(3);
        pair.Add({0, 1, 2});
        CRefWaterfall other(141, 5, SignalType::Real, nullptr, pair.reference.get(), 43, true, true);
        EXPECT_EQ(Ring(other), (Values{0, 10, 20, kGap, kGap})) << "the arrays hold the larger of both";
        EXPECT_EQ(other.GetRealValue(), pair.result->GetRealValue());
        pair.reference->SetMyRefVectTemp(&other);
        other.SetSize(8);
        EXPECT_TRUE(pair.reference->GetSize() == 8 && other.GetRealValue() == pair.result->GetRealValue());
        pair.result.reset();
        EXPECT_EQ(pair.reference->GetMyRefVect(), nullptr);
        EXPECT_EQ(pair.reference->GetMyRefVectTemp(), &other);
    }
    {
        auto* list = new CListVectorRef(false);
        auto* reference = new CWaterfallRef(23, 3, u"Speed", SignalType::Real, true);
        list->AddVectorRef(reference);
        auto first = std::make_unique<CRefWaterfall>(141, 3, SignalType::Real, list, reference, 43, true, true);
        auto second = std::make_unique<CRefWaterfall>(141, 3, SignalType::Real, list, nullptr, 43, true, true);
        second->SetMyVecteurReference(u"Spe", nullptr);
        EXPECT_EQ(second->GetMyVecteurReference(), reference);
        second->SetMyVecteurReference(u"Time", nullptr);
        EXPECT_EQ(second->GetMyVecteurReference(), reference) << "no match changes nothing";
        reference->SetMyRefVect(first.get());
        first.reset();
        EXPECT_TRUE(second->GetReferences() == list && reference->GetMyRefVect() == nullptr);
        second.reset(); // the last user: list and reference go too
    }
    {
        auto* list = new CListVectorRef(false);
        Pair original(3);
        original.Add({0, 1, 2});
        CListVectorRef source(true);
        source.AddVectorRef(original.reference.release());
        list->DuplicateAllReference(source);
        auto* copy = dynamic_cast<CWaterfallRef*>(list->GetFirstRef());
        ASSERT_NE(copy, nullptr);
        CRefWaterfall* shown = copy->GetMyRefVect();
        ASSERT_NE(shown, nullptr);
        EXPECT_TRUE(shown->GetMyVecteurReference() == copy && shown->GetReferences() == list);
        EXPECT_TRUE(Ring(*shown) == wanted && shown->GetRealValue() == copy->GetRefValue());
        float* sorted = nullptr;
        shown->GetAnyRefValue(sorted, u"Speed", nullptr);
        EXPECT_EQ(sorted, copy->GetSortedValues().GetData());
        list->DestroyAssociatedWaterfallRef(); // its last user goes, and it stays
        EXPECT_TRUE(copy->GetMyRefVect() == nullptr && list->GetCount() == 1);
        delete list;
    }
    {
        Pair pair(3); // the axis of a result that goes with the references
        pair.result->AddVectorRef(pair.reference.release());
        pair.result.release()->DeleteAllRef();
    }
    Pair pair(3); // arrays change hands
    pair.Add({0, 1, 2});
    pair.result->SetRealValue(new float[3]{4, 5, 6});
    pair.result->UpdateVecteurReferencePtr();
    EXPECT_EQ(Ring(*pair.result), wanted);
    *pair.result = static_cast<CResult*>(Pair(2).result.get());
    EXPECT_TRUE(pair.result->GetMyVecteurReference() == nullptr && pair.result->IsWaterfallReference());
    EXPECT_TRUE(pair.reference->GetMyRefVect() == pair.result.get() && Ring(*pair.result).size() == 2);
    float foreign[] = {7, 8}; // a result that borrowed its arrays takes those of a reference as its own
    CVector borrowed(141, 2, SignalType::Complex, 0, false);
    borrowed.SetRealValue(foreign);
    borrowed.SetImValue(foreign);
    auto* list = new CListVectorRef(false);
    CRefWaterfall along(141, 2, SignalType::Real, list, nullptr, 43, true, true);
    along = static_cast<CResult*>(&borrowed);
    list->AddVectorRef(new CWaterfallRef(23, 2, u"Time", SignalType::Real, false));
    along.SetMyVecteurReference(u"Time", nullptr);
    const std::unique_ptr<CResult> copyOfAlong(along.GetCopy());
    along.SetSize(9);
    EXPECT_EQ(Ring(dynamic_cast<CRefWaterfall&>(*copyOfAlong)), (Values{0, 0}));
    CWaterfallRef flat(*pair.reference); // shares the values, and mustn't free them
    EXPECT_EQ(flat.GetMyRefVect(), pair.result.get());
    flat = CWaterfallRef();
    pair.result->ReInitPtrTab();
    EXPECT_TRUE(Ring(*pair.result).empty());
}

TEST(RefWaterfall, HandsOnWhatTheReferenceShows)
{
    Pair pair(3);
    CGrandeur speed;
    pair.result->SetMagnitude(&speed);
    pair.result->SetYMin(-1);
    pair.result->setName(u"Shaft");
    pair.result->SetFilled(2);
    EXPECT_TRUE(pair.reference->GetMagnitude() == &speed && pair.reference->GetRefMin() == -1);
    EXPECT_TRUE(pair.reference->name() == u"Shaft" && pair.reference->GetFilled() == 2 && pair.result->name().empty());
    pair.Add({0, 1, 2, 3});
    pair.result->Clean();
    EXPECT_TRUE(pair.result->GetLastBlockNb() == -1 && SortedValues(*pair.reference).empty());
    EXPECT_EQ(Table(*pair.reference), Numbers(3, -1));
    EXPECT_TRUE(pair.result->IsOfType(0x80) && pair.reference->IsOfType(0x200) && !pair.result->IsOfType(0x240));
}

} // namespace ZelmResult
