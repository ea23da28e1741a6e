#include "zelmresult/waterfalls/vector_ref.h"

#include "tests/waterfalls/references.h"
#include "zelmresult/results/scalar.h"
#include "zelmresult/support/bits.h"
#include "zelmresult/waterfalls/list_vector_ref.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>

namespace ZelmResult {
namespace {

using namespace test;
using ::testing::ElementsAre;
using Values = std::vector<float>;
using Names = std::vector<wstring>;

TEST(VectorRef, TheNameDecidesTheLimits)
{
    const struct {
        std::uint32_t process;
        wstring name;
        float max, precision;
    } rows[] = {{23, u"Slice number", 100, 1.0F},
                {23, u"Time", 1000, 0.001F},
                {23, u"time", 30, 0.001F},
                {24, u"Slice number", 30, 0.001F}};
    for (const auto& row : rows) {
        const CVectorRef reference(row.process, 100, row.name, SignalType::Complex);
        EXPECT_EQ(reference.GetRefMin(), 0);
        EXPECT_EQ(reference.GetRefMax(), row.max);
        EXPECT_EQ(reference.GetAbsPrecisionX(), row.precision);
        EXPECT_EQ(BitsOf(reference.GetRelPrecisionX()) == 0x2EDBE6FF, row.precision == 1.0F);
        EXPECT_EQ(ValuesOf(reference), Values(100));
    }
}

TEST(VectorRef, SizesAndCopies)
{
    const std::unique_ptr<CVectorRef> reference(NewReference(u"Speed", {1, 2, 3}));
    reference->SetIsHidenReference(true);
    reference->SetRefMin(4);
    reference->SetRefMax(5);
    const std::unique_ptr<CResult> copy(reference->GetCopy());
    auto& copied = dynamic_cast<CVectorRef&>(*copy);
    EXPECT_TRUE(copied.IsHidenReference());
    EXPECT_EQ(written(copied), written(*reference));
    reference->AdjustSize(5);
    copied = static_cast<CResult*>(reference.get());
    EXPECT_THAT(ValuesOf(copied), ElementsAre(1, 2, 3, 0, 0));
    CScalar scalar(9, 2, SignalType::Real, false);
    copied = static_cast<CResult*>(&scalar);
    EXPECT_EQ(copied.GetRefValue(), nullptr);
    EXPECT_EQ(copied.GetProcessType(), 9);
    EXPECT_EQ(copied.name(), u"Speed");
    {
        CVectorRef flat(*reference); // shares the values, which only one may free
        EXPECT_EQ(flat.GetRefValue(), reference->GetRefValue());
        EXPECT_EQ(flat.GetRefMax(), 5);
        flat = CVectorRef();
    }
    reference->SetFilled(2);
    reference->SetSize(0);
    EXPECT_EQ(reference->GetRefValue(), nullptr);
    EXPECT_EQ(reference->GetFilled(), 2);
    reference->SetSize(2);
    EXPECT_EQ(reference->GetFilled(), 0);
}

// A list that holds references of those names; the values of the n-th are n and -n.
struct NamedList : CListVectorRef {
    explicit NamedList(const Names& names, bool isManager = false) : CListVectorRef(isManager)
    {
        float value = 0;
        for (const wstring& name : names) AddVectorRef(NewReference(name, {++value, -value}));
    }
};

Names NamesOf(const CListVectorRef& list)
{
    Names names{u"former"};
    list.GetRefNames(names);
    return names;
}

TEST(ListVectorRef, FindsTheBestCandidate)
{
    CGrandeur speed, time, other;
    speed.SetQuantityKey(u"speed");
    time.SetQuantityKey(u"time");
    other.SetQuantityKey(u"other");
    const CGrandeur alike = speed;
    NamedList list({u"Shaft Speed", u"Speed", u"Time", u"Speed 2", u"None"});
    CGrandeur* quantities[] = {&speed, &speed, &time, &time, nullptr};
    for (int i = 0; i < 5; ++i) list.GetRef(i)->SetRefMagnitude(quantities[i]);
    const struct {
        wstring name;
        const CGrandeur* quantity;
        int found;                      // -1 none
    } rows[] = {{u"Speed", nullptr, 0}, // by a part of the name
                {u"Speed", &alike, 1},  // both
                {u"Time", &speed, 2},   // the name wins over the quantity
                {u"x", &time, 2},       // the first of that quantity
                {u"x", nullptr, -1},    {u"x", &other, -1}};
    for (const auto& row : rows) {
        const CVectorRef* found = list.GetReference(row.name, row.quantity);
        EXPECT_EQ(found, list.GetRef(row.found)) << "row " << &row - rows;
        float* values = &list.GetRef(0)->GetRefValue()[1];
        list.GetAnyRefValue(values, row.name, row.quantity, false);
        EXPECT_EQ(values, found == nullptr ? nullptr : found->GetRefValue());
    }
}

TEST(ListVectorRef, Copies)
{
    NamedList source({u"a", u"b"}, true), target({u"c"}), manager({u"c"}, true);
    const std::unique_ptr<CListVectorRef> copy(source.GetCopy());
    EXPECT_FALSE(copy->IsWaterfallReferenceManagerList());
    EXPECT_NE(copy->GetRef(0), source.GetRef(0));
    EXPECT_THAT(ValuesOf(*copy->GetRef(1)), ElementsAre(2, -2));
    const std::unique_ptr<CVectorRef> c(target.GetRef(0));
    target = source;
    manager = source; // only the first loses what it had, without deleting it
    EXPECT_EQ(NamesOf(target), Names({u"a", u"b"}));
    EXPECT_EQ(NamesOf(manager), Names({u"c", u"a", u"b"}));

    CVectorRef* chosen = nullptr;
    target.CopyVectorRef(&source, source.GetRef(0), chosen);
    EXPECT_EQ(target.GetCount(), 4);
    EXPECT_EQ(chosen, target.GetRef(2));
    EXPECT_EQ(ValuesOf(*chosen), Values({1, -1}));
    target.CopyVectorRef(&target, nullptr, chosen);
    EXPECT_EQ(target.GetCount(), 8);
    EXPECT_EQ(chosen, target.GetRef(2));

    CVectorRef &from = *source.GetRef(1), fresh; // its precisions are all 0, below the floor of Y
    from = static_cast<CResult*>(&fresh);
    from.SetAbsPrecisionX(1);
    from.SetRelPrecisionX(2);
    from.SetAbsPrecisionZ(3);
    from.SetRelPrecisionZ(4);
    from.SetRelPrecisionY(5);
    target.CopyPrecisionFrom(source);
    const CVectorRef& to = *target.GetRef(1);
    EXPECT_EQ(to.GetAbsPrecisionX(), 1);
    EXPECT_EQ(to.GetRelPrecisionX(), 2);
    EXPECT_EQ(to.GetAbsPrecisionZ(), 3);
    EXPECT_EQ(to.GetRelPrecisionZ(), 4);
    EXPECT_EQ(to.GetRelPrecisionY(), 5);
    EXPECT_EQ(to.GetAbsPrecisionY(), 1e-30F);
    EXPECT_EQ(target.GetRef(2)->GetAbsPrecisionX(), 0.001F) << "past the end of the shorter list";
}

} // namespace
} // namespace ZelmResult
