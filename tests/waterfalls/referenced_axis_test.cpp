// Axes that take their X values from a shared list of references, and the vectors on them.

#include "zelmresult/results/referenced_axis.h"

#include "tests/waterfalls/references.h"
#include "zelmresult/results/ref_vector.h"
#include "zelmresult/results/scalar.h"
#include "zelmresult/waterfalls/list_vector_ref.h"

#include <climits>
#include <gtest/gtest.h>
#include <map>
#include <memory>

namespace ZelmResult {
namespace {

using namespace test;
using Values = std::vector<float>;

// Counts 100 for itself.
struct MortalList : CListVectorRef {
    MortalList(const std::vector<wstring>& names, int& deaths, bool isManager = false)
        : CListVectorRef(isManager), m_deaths(deaths)
    {
        for (const wstring& name : names) AddVectorRef(NewReference(name, {1, 2}, deaths));
    }
    MortalList(const MortalList&) = delete;
    MortalList& operator=(const MortalList&) = delete;
    ~MortalList() override { m_deaths += 100; }

private:
    int& m_deaths;
};

std::vector<wstring> Names(const CReferencedAxis& axis)
{
    std::vector<wstring> names{u"former"};
    axis.GetRefNames(names);
    return names;
}

Bytes StoredReference(const wstring& name, const Values& values)
{
    return blockOf(*std::unique_ptr<CVectorRef>(NewReference(name, values)));
}

TEST(ReferencedAxis, Stored)
{
    CReferencedAxis axis;
    for (const wstring name : {u"a", u"hidden", u"b"}) axis.AddVectorRef(NewReference(name, {1, 2, 3}));
    axis.SetChosenReference(axis.GetReference(u"b", nullptr));
    axis.SetFilled(2);
    const Bytes references = StoredReference(u"a", {1, 2}).append(StoredReference(u"b", {1, 2}));
    axis.GetReference(u"hidden", nullptr)->SetIsHidenReference(true);
    EXPECT_EQ(axis.GetValidReferencesList().size(), 2U);
    expectBytes(written(axis), Bytes{}.u16(6).i32(2).i32(3, "counts them all").append(references).i32(1, "chosen"));
    delete axis.GetReference(u"hidden", nullptr);
    checkRecord(axis, RecordCheck<CReferencedAxis>{.silentReads = -1, .silentWrites = -1});
    axis.DeleteAllRef();
    expectBytes(written(axis), Bytes{}.u16(6).i32(2).i32(0).i32(0));
    axis.SetIsWaterfall(true);
    expectBytes(written(axis), Bytes{}.u16(6).i32(2));
}

TEST(ReferencedAxis, HostileNumbers)
{
    const auto reads = [](const Bytes& stored, bool isWaterfall = false) {
        CReferencedAxis axis(nullptr, isWaterfall);
        const bool succeeded = readFrom(stored.data(), reading(axis));
        EXPECT_EQ(axis.GetChosenReference(), nullptr);
        return succeeded;
    };
    const auto counted = [&](int count) { return Bytes{}.u16(6).i32(1).i32(count).append(StoredReference(u"x", {1})); };
    for (const int index : {-1, 1, INT_MAX}) EXPECT_TRUE(reads(counted(1).i32(index)));
    EXPECT_TRUE(reads(Bytes{}.u16(6).i32(1).i32(-5).i32(0)));
    EXPECT_FALSE(reads(counted(INT_MAX)));
    const Bytes table = Bytes{}.u16(5).i32(1);
    EXPECT_TRUE(reads(Bytes(table).i32(-1), true));
    EXPECT_TRUE(reads(Bytes(table).i32(1).text(u"n").i32(-1), true));
    EXPECT_FALSE(reads(Bytes(table).i32(1).text(u"n").i32(INT_MAX).zeros(9), true));
    EXPECT_FALSE(reads(Bytes(table).i32(INT_MAX).text(u"n").i32(0), true));
}

TEST(ReferencedAxis, ChoosesByItsRules)
{
    CGrandeur speed, time, other;
    speed.SetQuantityKey(u"speed");
    time.SetQuantityKey(u"time");
    other.SetQuantityKey(u"other");
    CGrandeur alike = time;
    CReferencedAxis axis;
    CVectorRef* refs[] = {NewReference(u"Shaft speed"), NewReference(u"Time"), NewReference(u"Speed")};
    for (int i = 0; i < 3; ++i) {
        axis.AddVectorRef(refs[i]);
        refs[i]->SetMagnitude(i == 1 ? &time : &speed);
    }
    const auto of = [](CGrandeur* quantity) {
        std::unique_ptr<CVectorRef> reference(NewReference(u"Time"));
        reference->SetMagnitude(quantity);
        return reference;
    };
    const auto ofSpeed = of(&speed), ofTime = of(&alike), ofOther = of(&other), ofNothing = of(nullptr);
    const struct {
        int before; // chosen, -1 none
        wstring name;
        const CGrandeur* quantity;
        CVectorRef* fallback;
        int chosen;
    } rows[] = {{-1, u"Speed", &time, ofTime.get(), 2}, // the name comes first
                {-1, u"x", &alike, nullptr, 1},         {2, u"x", &other, nullptr, 0},
                {-1, u"x", &speed, ofTime.get(), 1}, // the fallback counts, not the quantity
                {-1, u"x", &time, ofSpeed.get(), 0},    {2, u"x", &time, ofOther.get(), 2},
                {2, u"x", &time, ofNothing.get(), 2}};
    for (const auto& row : rows) {
        axis.SetChosenReference(row.before < 0 ? nullptr : refs[row.before]);
        axis.SetReference(row.name, row.quantity, row.fallback);
        EXPECT_EQ(axis.GetChosenReference(), refs[row.chosen]) << "row " << &row - rows;
    }
    axis.SetChosenReference(ofNothing.get());
    EXPECT_EQ(axis.GetChosenReference(), refs[0]) << "another of that name";
    axis.SetChosenReference(refs[1]);
    for (const int i : {0, 1}) {
        axis.RemoveVectorRef(refs[i]);
        EXPECT_EQ(axis.GetChosenReference(), refs[i + 1]);
        delete refs[i];
    }
}

TEST(ReferencedAxis, ListsLiveAsLongAsTheirUsers)
{
    int deaths = 0;
    auto* list = new MortalList({u"a", u"b"}, deaths);
    auto first = std::make_unique<CReferencedAxis>(list, false), second = std::make_unique<CReferencedAxis>(list, true);
    EXPECT_EQ(second->GetChosenReference(), list->GetRef(0));
    delete list->GetRef(0); // by the host
    EXPECT_EQ(first->GetChosenReference(), nullptr);
    EXPECT_EQ(second->GetChosenReference(), nullptr);
    first->SetReferenceList(list);
    first.reset();
    EXPECT_EQ(deaths, 1);
    second->SetReferenceList(nullptr);
    EXPECT_EQ(deaths, 102);
    second->AddVectorRef(NewReference(u"new")); // into a list of its own
    EXPECT_EQ(Names(*second).size(), 1U);

    deaths = 0;
    list = new MortalList({u"a"}, deaths);
    CReferencedAxis under(list, false), beside(list, false);
    delete list; // by the host, under its axes
    EXPECT_EQ(under.GetReferences(), nullptr);
    EXPECT_EQ(under.GetChosenReference(), nullptr);
    EXPECT_EQ(deaths, 101);

    deaths = 0;
    MortalList manager({u"a", u"b"}, deaths, true);
    CReferencedAxis other;
    other.CopyReference(manager, 2, false); // shares references, not the list
    EXPECT_NE(other.GetChosenReference(), nullptr);
    other.SetReferenceList(nullptr); // whose death takes the choice along, though the reference lives on
    EXPECT_EQ(other.GetChosenReference(), nullptr);
    other.SetReferenceList(&manager);
    other.SetReferenceList(nullptr);
    EXPECT_EQ(deaths, 0) << "a manager list stays";
    other.SetReferenceList(&manager);
    other.SetChosenReference(manager.GetRef(1));
    other.SetReferenceList(nullptr);
    EXPECT_EQ(other.GetChosenReference(), manager.GetRef(1)) << "still alive in its list";
    under = other;
    EXPECT_EQ(under.GetChosenReference(), manager.GetRef(1)) << "the former list's death is past";
    {
        CReferencedAxis passing; // on another list, and registered by the host
        manager.Register(&passing);
        EXPECT_TRUE(manager.IsListAlwaysUsed());
    }
    EXPECT_FALSE(manager.IsListAlwaysUsed()) << "who died uses nothing";
}

TEST(ReferencedAxis, CopiesShareTheList)
{
    int deaths = 0;
    auto first = std::make_unique<CReferencedAxis>(new MortalList({u"a", u"b"}, deaths), false);
    CVectorRef* b = first->GetReference(u"b", nullptr);
    first->SetChosenReference(b);
    const std::int32_t blocks[] = {4, 5};
    EXPECT_FALSE(first->CopyBlocNumber(blocks, 0));
    EXPECT_FALSE(first->CopyBlocNumber(blocks, std::uint64_t{1} << 32U));
    EXPECT_TRUE(first->CopyBlocNumber(blocks, std::uint64_t{2})) << "into a new table";
    EXPECT_FALSE(first->CopyBlocNumber(blocks, 1)) << "none are filled";
    first->SetFilled(3);
    EXPECT_TRUE(first->CopyBlocNumber(blocks, 1));
    EXPECT_FALSE(first->CopyBlocNumber(blocks, 3)) << "the table is shorter";
    first->SetBlocNumber(2, 9);
    first->SetBlocNumber(-1, 9);
    EXPECT_EQ(first->GetBlocNumber(2), -1);
    EXPECT_EQ(first->GetBlocNumberPtr(-1), nullptr);
    first->SetLastBlockNb(77);
    {
        CReferencedAxis copy(*first);
        EXPECT_EQ(copy.GetChosenReference(), b);
        EXPECT_EQ(copy.GetBlocNumber(1), 5);
        EXPECT_EQ(copy.GetLastBlockNb(), 77);
        copy.SetReferenceList(nullptr);
    }
    EXPECT_EQ(deaths, 0);
    CReferencedAxis last(*first), other;
    other.AddVectorRef(NewReference(u"b"));
    other = first.get(); // its books, and its own reference of that name
    EXPECT_EQ(other.GetFilled(), 3);
    EXPECT_EQ(other.GetBlocNumberPtr(0), nullptr);
    EXPECT_EQ(other.GetChosenReference(), other.GetReferences()->GetRef(0));
    first.reset();
    EXPECT_EQ(deaths, 0) << "a copy uses the list";
    last.SetReferenceList(nullptr);
    EXPECT_EQ(deaths, 102) << "the last one takes it along";
}

// ---- Vectors ----

// Three filled points on a reference of its own.
std::unique_ptr<CRefVector> Filled(SignalType type)
{
    auto vector = std::make_unique<CRefVector>(16, 3, type, 0);
    for (int i = 0; i < 3; ++i) vector->GetRealValue()[i] = static_cast<float>(i + 1);
    for (int i = 0; i < 3 && type == SignalType::Complex; ++i) vector->GetImValue()[i] = static_cast<float>(-i - 1);
    vector->AddVectorRef(NewReference(u"x", {10, 20, 30}));
    vector->SetChosenReference(vector->GetReference(u"x", nullptr));
    vector->SetFilled(3);
    const float frequencies[] = {5, 6, 7};
    vector->SetTabFreq(frequencies, 3);
    vector->SetConstFreq(50);
    vector->setCoupe(true);
    return vector;
}

Bytes FilledBlock(CRefVector& vector, std::uint16_t version)
{
    Bytes bytes = Bytes{}.u16(version, "version");
    if (version == 0) return bytes;
    bytes.append(baseBlockOf<CVector>(vector)).append(baseBlockOf<CReferencedAxis>(vector));
    if (version == 1) bytes.i32(vector.GetFilled(), "m_nFilled");
    if (version >= 3) bytes.flag(true, "m_bCoupe").f32(50).flag(true, "has m_fTabFreq").f32s({5, 6, 7}, "m_fTabFreq");
    return version >= 4 ? bytes.flag(false, "m_bSkipOperations") : bytes;
}

Values Points(CRefVector& vector)
{
    float* values = vector.GetRealValue();
    return values == nullptr ? Values{} : Values(values, values + vector.GetSize());
}

TEST(RefVector, StoredAtEachVersionAndType)
{
    for (const auto type : {SignalType::Real, SignalType::Complex, SignalType::OctaveMin}) {
        const auto filled = Filled(type);
        for (std::uint16_t version = 0; version <= 4; ++version) {
            SCOPED_TRACE(version);
            const Bytes stored = FilledBlock(*filled, version);
            expectBytes(written(*filled, {{"CRefVector", version}}), stored);
            CRefVector read(1, 401, SignalType::Real, 0);
            readInto(read, stored);
            expectBytes(written(read, {{"CRefVector", version}}), stored);
            EXPECT_EQ(Points(read).size(), version == 0 ? 0U : 3U) << "what isn't filled goes";
            EXPECT_EQ(read.GetConstFreq(), version >= 3 ? 50 : -1);
        }
        checkRecord(*filled,
                    RecordCheck<CRefVector>{
                        .name = "CRefVector", .lowest = 0, .newest = 4, .silentReads = -1, .silentWrites = -1});
    }
    const auto filled = Filled(SignalType::Real);
    CReferencedAxis& axis = *filled;
    EXPECT_EQ(written(axis), written(*filled)) << "the whole object through either base";
}

TEST(RefVector, XIsWhatTheReferenceSays)
{
    CRefVector vector(16, 2, SignalType::OctaveMin, 0), ofWaterfall(16, 2, SignalType(6), nullptr, 41);
    EXPECT_FALSE(vector.IsWaterfall());
    EXPECT_TRUE(ofWaterfall.IsWaterfall());
    EXPECT_EQ(Points(vector), Values(2));
    CGrandeur quantity;
    for (CVectorRef* reference : {static_cast<CVectorRef*>(nullptr), static_cast<CVectorRef*>(NewReference(u"x"))}) {
        if (reference != nullptr) {
            vector.AddVectorRef(reference);
            reference->SetAbsPrecisionY(5);
        }
        vector.SetChosenReference(reference);
        const bool has = reference != nullptr;
        vector.SetXMin(1);
        vector.SetXMax(2);
        vector.SetXMagnitude(&quantity);
        vector.SetAbsPrecisionX(3);
        EXPECT_EQ(vector.GetXMin(), (has ? 1 : 0));
        EXPECT_EQ(vector.GetXMax(), (has ? 2 : 0));
        EXPECT_EQ(vector.GetAbsPrecisionX(), (has ? 5 : 3));
        EXPECT_EQ((vector.GetXMagnitude() != nullptr), has);
    }
    vector.SetSize(4);
    EXPECT_EQ(vector.GetChosenReference()->GetSize(), 4);

    CGrandeurFichier y;
    CGrandeur replacement;
    vector.SetMagnitude(&y);
    vector.SetXMagnitude(&y);
    CReferencedAxis& axis = vector;
    axis.ReplaceGrandeur(&y, &replacement); // through the second base
    std::map<CGrandeur*, int> counts;
    axis.AddInvolvedGrandeur(counts);
    EXPECT_EQ(counts, (std::map<CGrandeur*, int>{{&replacement, 2}}));
}

TEST(RefVector, Copies)
{
    const auto filled = Filled(SignalType::Complex);
    const std::int32_t blocks[] = {4, 5};
    filled->CopyBlocNumber(blocks, 2);
    const std::unique_ptr<CResult> copy(filled->GetCopy());
    auto& copied = dynamic_cast<CRefVector&>(*copy);
    EXPECT_EQ(Points(copied), Values({1, 2, 3}));
    EXPECT_EQ(copied.GetBlocNumber(1), 5);
    EXPECT_TRUE(copied.GetReferences()->IsEmpty());
    copied.CopyVectorRef(filled.get());
    EXPECT_EQ(copied.GetXMax(), 30);
    EXPECT_NE(copied.GetChosenReference(), filled->GetChosenReference());
}

} // namespace
} // namespace ZelmResult
