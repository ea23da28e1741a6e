// Axes that take their X values from a shared list of references, and the vectors on them with their ring.

#include "zelmresult/results/referenced_axis.h"

#include "tests/builders/record_check.h"
#include "zelmresult/results/ref_vector.h"
#include "zelmresult/results/scalar.h"
#include "zelmresult/waterfalls/list_vector_ref.h"
#include "zelmresult/waterfalls/vector_ref.h"

#include <climits>
#include <cmath>
#include <cstring>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <memory>

namespace ZelmResult {
namespace {

using namespace test;
using ::testing::ElementsAre;
using Values = std::vector<float>;

// References and lists tell of their death.
struct Mortal : CVectorRef {
    Mortal(const wstring& name, const Values& values, int& deaths)
        : CVectorRef(24, static_cast<int>(values.size()), name, SignalType::Real), m_deaths(deaths)
    {
        std::copy(values.begin(), values.end(), GetRefValue());
        CVectorRef::SetFilled(GetSize());
    }
    Mortal(const Mortal&) = delete;
    Mortal& operator=(const Mortal&) = delete;
    ~Mortal() override { ++m_deaths; }

private:
    int& m_deaths;
};

int g_deaths; // of references that a test doesn't count

CVectorRef* Reference(const wstring& name, const Values& values = {1, 2}, int& deaths = g_deaths)
{
    return new Mortal(name, values, deaths);
}

struct MortalList : CListVectorRef {
    MortalList(const std::vector<wstring>& names, int& deaths, bool isManager = false)
        : CListVectorRef(isManager), m_deaths(deaths)
    {
        for (const wstring& name : names) AddVectorRef(Reference(name, {1, 2}, deaths));
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

Bytes Raw(const std::vector<char>& bytes) { return Bytes{}.raw({bytes.data(), bytes.size()}); }

Bytes StoredReference(const wstring& name, const Values& values)
{
    const std::unique_ptr<CVectorRef> reference(Reference(name, values));
    return Raw(written(*reference));
}

TEST(ReferencedAxis, Stored)
{
    CReferencedAxis axis;
    for (const wstring name : {u"a", u"hidden", u"b"}) axis.AddVectorRef(Reference(name, {1, 2, 3}));
    axis.SetChosenReference(axis.GetReference(u"b", nullptr));
    axis.SetFilled(2);
    const Bytes references = StoredReference(u"a", {1, 2}).append(StoredReference(u"b", {1, 2}));
    axis.GetReference(u"hidden", nullptr)->SetIsHidenReference(true);
    EXPECT_EQ(axis.GetValidReferencesList().size(), 2U);
    expectBytes(written(axis), Bytes{}.u16(6).i32(2).i32(3, "counts them all").append(references).i32(1, "chosen"));
    EXPECT_THAT(dumpOf(axis), ::testing::StartsWith("CReferencedAxis\nm_nFilled: 2\nCResult\n"));
    EXPECT_THAT(dumpOf(axis), ::testing::EndsWith(",\nCReferencedXAxis: Nbre elmts 3, Reference: 1 \n"));
    delete axis.GetReference(u"hidden", nullptr);
    expectBytes(written(axis), Bytes{}.u16(6).i32(2).i32(2).append(references).i32(1));
    RecordCheck<CReferencedAxis> check{.silentReads = -1, .silentWrites = -1};
    check.expect = [](CReferencedAxis& read, std::uint16_t) {
        EXPECT_THAT(Names(read), ElementsAre(u"a", u"b"));
        EXPECT_EQ(read.GetChosenReference(), read.GetReference(u"b", nullptr));
        EXPECT_TRUE(read.GetFilled() == 2 && read.GetReferences()->IsListAlwaysUsed());
    };
    checkRecord(axis, check);
    axis.DeleteAllRef();
    expectBytes(written(axis), Bytes{}.u16(6).i32(2).i32(0).i32(0));
    axis.SetIsWaterfall(true);
    expectBytes(written(axis), Bytes{}.u16(6).i32(2));
    axis.SetReferenceList(nullptr), axis.SetIsWaterfall(false);
    expectBytes(written(axis), Bytes{}.u16(6).i32(2).i32(0).i32(0));
}

TEST(ReferencedAxis, ReadsEveryVersion)
{
    for (const bool isWaterfall : {false, true})
        for (std::uint16_t version = 0; version <= 6; ++version) {
            SCOPED_TRACE(::testing::Message() << version << (isWaterfall ? " of a waterfall" : ""));
            Bytes stored = Bytes{}.u16(version, "version");
            if (version >= 2) stored.i32(7, "m_nFilled");
            const bool hasReferences = version > 0 && (!isWaterfall || version < 3);
            if (hasReferences)
                stored.i32(2, "count").append(StoredReference(u"x", {1})).append(StoredReference(u"y", {2, 3}));
            if (hasReferences && version >= 4) stored.i32(1, "chosen");
            if (!hasReferences && version >= 3 && version <= 5) {
                const std::size_t width = version == 5 ? 2 : 4;
                stored.i32(3, "entries").text(u"one").i32(3).zeros(3 * width).narrow("two").i32(0);
                stored.text(u"").i32(1).zeros(width);
            }
            int ownDeaths = 0, sharedDeaths = 0;
            CReferencedAxis owner(new MortalList({u"old"}, ownDeaths), isWaterfall);
            readInto(owner, stored);
            EXPECT_EQ(owner.GetFilled(), version >= 2 ? 7 : 0);
            EXPECT_EQ(ownDeaths, version == 0 ? 0 : 101) << "it was the last user";
            const std::vector<wstring> names = Names(owner), read{u"x", u"y"};
            EXPECT_EQ(names, version == 0    ? std::vector<wstring>{u"old"}
                             : hasReferences ? read
                                             : std::vector<wstring>{});
            EXPECT_EQ(owner.GetReferences() == nullptr, names.empty());
            const CVectorRef* chosen = owner.GetChosenReference();
            EXPECT_EQ(chosen == nullptr ? u"" : chosen->name(), names.empty() ? u"" : names[version < 4 ? 0 : 1]);

            auto* shared = new MortalList({u"old"}, sharedDeaths);
            CReferencedAxis user(shared, isWaterfall);
            {
                CReferencedAxis other(shared, isWaterfall);
                readInto(other, stored);
                EXPECT_EQ(other.GetReferences(), shared);
                EXPECT_EQ(Names(user).size(), hasReferences ? 3U : 1U) << "joined to what is shared";
                user.SetReferenceList(nullptr);
                EXPECT_EQ(sharedDeaths, 0) << "the reader is registered again";
            }
            EXPECT_EQ(sharedDeaths, 101);
        }
}

TEST(ReferencedAxis, HostileNumbers)
{
    const Bytes one = StoredReference(u"x", {1});
    const auto reads = [](const Bytes& stored, bool isWaterfall = false) {
        CReferencedAxis axis(nullptr, isWaterfall);
        const bool succeeded = readFrom(stored.data(), [&](CMmioFile& file) { return axis.Read(&file); });
        return std::pair(succeeded, axis.GetChosenReference() != nullptr);
    };
    const auto counted = [&](int count) { return Bytes{}.u16(6).i32(1).i32(count).append(one); };
    EXPECT_EQ(reads(counted(1).i32(0)), std::pair(true, true));
    for (const int index : {-1, 1, INT_MAX, INT_MIN}) EXPECT_EQ(reads(counted(1).i32(index)), std::pair(true, false));
    EXPECT_EQ(reads(Bytes{}.u16(6).i32(1).i32(-5).i32(0)), std::pair(true, false));
    EXPECT_FALSE(reads(counted(INT_MAX)).first);
    const Bytes table = Bytes{}.u16(5).i32(1);
    EXPECT_TRUE(reads(Bytes(table).i32(-1), true).first);
    EXPECT_TRUE(reads(Bytes(table).i32(1).text(u"n").i32(-1), true).first);
    EXPECT_FALSE(reads(Bytes(table).i32(1).text(u"n").i32(INT_MAX).zeros(9), true).first);
    EXPECT_FALSE(reads(Bytes(table).i32(INT_MAX).text(u"n").i32(0), true).first);
}

TEST(ReferencedAxis, ChoosesByItsRules)
{
    CGrandeur speed, time, other;
    speed.SetQuantityKey(u"speed"), time.SetQuantityKey(u"time"), other.SetQuantityKey(u"other");
    const CGrandeur alike = time;
    CReferencedAxis axis;
    EXPECT_EQ(axis.GetChosenReference(), nullptr);
    axis.SetReference(u"x", nullptr, nullptr);
    EXPECT_EQ(axis.GetChosenReference(), nullptr);
    CVectorRef* refs[] = {Reference(u"Shaft speed"), Reference(u"Time"), Reference(u"Speed")};
    for (int i = 0; i < 3; ++i) axis.AddVectorRef(refs[i]), refs[i]->SetMagnitude(i == 1 ? &time : &speed);
    axis.AddVectorRef(refs[0]);
    EXPECT_EQ(axis.GetReferencesList()->size(), 3U);
    const std::unique_ptr<CVectorRef> ofSpeed(Reference(u"s")), ofTime(Reference(u"t")), ofOther(Reference(u"o"));
    const std::unique_ptr<CVectorRef> ofNothing(Reference(u"n"));
    CGrandeur timeToo = time;
    ofSpeed->SetMagnitude(&speed), ofTime->SetMagnitude(&timeToo), ofOther->SetMagnitude(&other);
    const struct {
        int before; // chosen, -1 none
        wstring name;
        const CGrandeur* quantity;
        CVectorRef* fallback;
        int chosen;
    } rows[] = {{-1, u"Speed", &time, ofTime.get(), 2}, // the name comes first
                {-1, u"ft", nullptr, nullptr, 0},       // a part of it
                {-1, u"x", &alike, nullptr, 1},
                {2, u"x", &other, nullptr, 0},
                {-1, u"x", nullptr, nullptr, 0},
                {-1, u"x", &speed, ofTime.get(), 1}, // the fallback counts, not the quantity
                {-1, u"x", &time, ofSpeed.get(), 0},
                {2, u"x", &time, ofOther.get(), 2},
                {2, u"x", &time, ofNothing.get(), 2}};
    for (const auto& row : rows) {
        axis.SetChosenReference(row.before < 0 ? nullptr : refs[row.before]);
        axis.SetReference(row.name, row.quantity, row.fallback);
        EXPECT_EQ(axis.GetChosenReference(), refs[row.chosen]) << "row " << &row - rows;
    }
    const std::unique_ptr<CVectorRef> stranger(Reference(u"Time"));
    axis.SetChosenReference(stranger.get());
    EXPECT_EQ(axis.GetChosenReference(), refs[0]) << "another of that name";
    axis.SetChosenReference(refs[1]);
    axis.RemoveVectorRef(refs[0]);
    EXPECT_EQ(axis.GetChosenReference(), refs[1]);
    axis.RemoveVectorRef(refs[1]);
    EXPECT_EQ(axis.GetChosenReference(), refs[2]);
    const std::unique_ptr<CVectorRef> removed[] = {std::unique_ptr<CVectorRef>(refs[0]),
                                                   std::unique_ptr<CVectorRef>(refs[1])};
    float* values = nullptr;
    axis.GetAnyRefValue(values, u"Speed", nullptr);
    EXPECT_EQ(values, refs[2]->GetRefValue());
    axis.SetIsWaterfall(true);
    axis.GetAnyRefValue(values, u"Speed", nullptr);
    EXPECT_EQ(values, nullptr);

    CReferencedAxis sharing;
    sharing.CopyReference(*axis.GetReferences(), 5, true);
    EXPECT_EQ(sharing.GetChosenReference(), refs[2]);
    sharing.CopyReference(*sharing.GetReferences(), 5, false);
    EXPECT_EQ(sharing.GetReferencesList()->size(), 1U);
}

TEST(ReferencedAxis, ListsLiveAsLongAsTheirUsers)
{
    int deaths = 0;
    auto* list = new MortalList({u"a", u"b"}, deaths);
    auto first = std::make_unique<CReferencedAxis>(list, false), second = std::make_unique<CReferencedAxis>(list, true);
    EXPECT_EQ(second->GetChosenReference(), list->GetRef(0));
    delete list->GetRef(0); // by the host
    EXPECT_TRUE(first->GetChosenReference() == nullptr && second->GetChosenReference() == nullptr);
    first->SetReferenceList(list);
    first.reset();
    EXPECT_EQ(deaths, 1);
    second->SetReferenceList(nullptr);
    EXPECT_EQ(deaths, 102);
    second->SetReference(u"a", nullptr, nullptr);
    second->RemoveVectorRef(nullptr), second->DeleteAllRef();
    EXPECT_TRUE(second->GetReferencesList() == nullptr && second->GetValidReferencesList().empty());
    second->AddVectorRef(Reference(u"new"));
    EXPECT_THAT(Names(*second), ElementsAre(u"new"));

    deaths = 0;
    list = new MortalList({u"a"}, deaths);
    CReferencedAxis under(list, false), beside(list, false);
    delete list; // by the host, under its axes
    EXPECT_TRUE(under.GetReferences() == nullptr && under.GetChosenReference() == nullptr && deaths == 101);

    deaths = 0;
    MortalList manager({u"a", u"b"}, deaths, true);
    {
        CReferencedAxis user(&manager, true), other;
        other.CopyReference(manager, 2, false); // shares references, not the list
        EXPECT_NE(other.GetChosenReference(), nullptr);
        other.SetReferenceList(nullptr); // whose death takes the choice along, though the reference lives on
        EXPECT_EQ(other.GetChosenReference(), nullptr);
        user.SetReferenceList(nullptr);
        user.SetReferenceList(&manager);
    }
    EXPECT_EQ(deaths, 0);
    EXPECT_FALSE(manager.IsListAlwaysUsed());
}

TEST(ReferencedAxis, CopiesShareTheList)
{
    int deaths = 0;
    auto first = std::make_unique<CReferencedAxis>(new MortalList({u"a", u"b"}, deaths), false);
    CVectorRef* b = first->GetReference(u"b", nullptr);
    first->SetChosenReference(b);
    const std::int32_t blocks[] = {4, 5};
    EXPECT_FALSE(first->CopyBlocNumber(nullptr, 2) || first->CopyBlocNumber(blocks, 0));
    EXPECT_FALSE(first->CopyBlocNumber(blocks, std::uint64_t{1} << 32U));
    EXPECT_TRUE(first->CopyBlocNumber(blocks, std::uint64_t{2})) << "into a new table";
    EXPECT_FALSE(first->CopyBlocNumber(blocks, 1)) << "none are filled";
    first->SetFilled(3);
    EXPECT_TRUE(first->CopyBlocNumber(blocks, 1));
    EXPECT_FALSE(first->CopyBlocNumber(blocks, 3)) << "the table is shorter";
    first->SetBlocNumber(1, 9), first->SetBlocNumber(2, 9), first->SetBlocNumber(-1, 9);
    EXPECT_TRUE(first->GetBlocNumber(0) == 4 && *first->GetBlocNumberPtr(1) == 9 && first->GetBlocNumber(2) == -1);
    first->SetLastBlockNb(77);
    {
        const CReferencedAxis copy(*first); // NOLINT(performance-unnecessary-copy-initialization)
        CReferencedAxis assigned;
        assigned = *first;
        EXPECT_TRUE(copy.GetChosenReference() == b && assigned.GetChosenReference() == b);
        EXPECT_TRUE(copy.GetBlocNumber(1) == 9 && assigned.GetLastBlockNb() == 77);
    }
    EXPECT_EQ(deaths, 0);
    CReferencedAxis last(*first), other;
    other.AddVectorRef(Reference(u"b"));
    other = first.get(); // its books, and its own reference of that name
    EXPECT_TRUE(other.GetFilled() == 3 && other.GetLastBlockNb() == 77 && other.GetBlocNumberPtr(0) == nullptr);
    EXPECT_EQ(other.GetChosenReference(), other.GetReferences()->GetRef(0));
    const std::unique_ptr<CReferencedAxis> fresh(first->GetRefAxisCopy());
    EXPECT_TRUE(fresh->GetChosenReference() == nullptr && fresh->GetFilled() == 3 && fresh->GetReferences()->IsEmpty());
    first.reset();
    EXPECT_EQ(deaths, 0) << "a copy uses the list";
    delete last.GetReferences();
    EXPECT_EQ(last.GetReferences(), nullptr);
}

TEST(ReferencedAxis, LastCopyTakesTheListAlong)
{
    int deaths = 0;
    {
        CReferencedAxis axis(new MortalList({u"a"}, deaths), false);
        const CReferencedAxis copy(axis); // NOLINT(performance-unnecessary-copy-initialization)
        axis.SetReferenceList(nullptr);
        EXPECT_EQ(deaths, 0);
    }
    EXPECT_EQ(deaths, 101);
}

// ---- Vectors ----

// Three points of which so many are filled, on a reference of its own.
std::unique_ptr<CRefVector> Filled(SignalType type, int filled = 3)
{
    auto vector = std::make_unique<CRefVector>(16, 3, type, 0);
    for (int i = 0; i < 3; ++i) vector->GetRealValue()[i] = static_cast<float>(i + 1);
    for (int i = 0; i < 3 && type == SignalType::Complex; ++i) vector->GetImValue()[i] = static_cast<float>(-i - 1);
    vector->AddVectorRef(Reference(u"x", {10, 20, 30}));
    vector->SetChosenReference(vector->GetReference(u"x", nullptr));
    vector->SetFilled(filled);
    const float frequencies[] = {5, 6, 7};
    vector->SetTabFreq(frequencies, 3), vector->SetConstFreq(50), vector->setCoupe(true);
    return vector;
}

Bytes FilledBlock(CRefVector& vector, SignalType type, std::uint16_t version, int filled)
{
    const Bytes base = Raw(written([&](CMmioFile& file) { return vector.CResult::Write(&file); }));
    Bytes bytes = Bytes{}.u16(version, "version");
    if (version == 0) return bytes;
    bytes.u16(1).append(base);
    if (type != SignalType::OctaveMin) bytes.f32s({1, 2, 3}, "real");
    bytes.f32s({0, 0}, "limits");
    if (type == SignalType::Complex) bytes.f32s({-1, -2, -3, 0, 0}, "imaginary");
    const Values references{10, 20, 30, 0};
    bytes.u16(6).i32(filled).i32(1).append(StoredReference(u"x", {references.begin(), references.begin() + filled}));
    bytes.i32(0, "chosen");
    if (version == 1) bytes.i32(filled, "m_nFilled");
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
            const Bytes stored = FilledBlock(*filled, type, version, 3);
            expectBytes(written(*filled, {{"CRefVector", version}}), stored);
            CRefVector read(1, 401, SignalType::Real, 0);
            readInto(read, stored);
            EXPECT_EQ(read.GetSize(), version == 0 ? 0 : 3) << "what isn't filled goes";
            EXPECT_EQ(Points(read), version == 0                    ? Values{}
                                    : type == SignalType::OctaveMin ? Values(3)
                                                                    : Values({1, 2, 3}));
            EXPECT_EQ(read.GetConstFreq(), version >= 3 ? 50 : -1);
            EXPECT_EQ(read.isCoupe(), version >= 3);
            EXPECT_EQ(read.GetTabFreq() != nullptr && read.GetTabFreq()[2] == 7, version >= 3);
            EXPECT_EQ(read.GetXMax(), version > 0 ? 30 : 0);
            if (version > 0 && type == SignalType::Complex) {
                EXPECT_EQ(read.GetImValue()[2], -3);
            }
        }
        RecordCheck<CRefVector> check{
            .name = "CRefVector", .lowest = 0, .newest = 4, .silentReads = -1, .silentWrites = -1};
        checkRecord(*filled, check);
    }
    const auto filled = Filled(SignalType::Real);
    CReferencedAxis& axis = *filled;
    EXPECT_EQ(written(axis), written(*filled)) << "the whole object through either base";
    EXPECT_THAT(dumpOf(*filled),
                ::testing::EndsWith("CReferencedXAxis: Nbre elmts 1, Reference: 0 \nCRefVector\n"
                                    "m_bCoupe : 1, m_fConstFreq : 50.000000,m_bSkipOperations: 0\n"
                                    "m_fTabFreq[0]:5.000000e+00,m_fTabFreq[1]:6.000000e+00,m_fTabFreq[2]:7.000000e+00,"
                                    "\n"));
}

TEST(RefVector, ReadsTheFilledPointsOnly)
{
    const auto shorter = Filled(SignalType::Complex, 2);
    CRefVector read;
    std::int32_t consumed = 0;
    const Bytes stored = FilledBlock(*shorter, SignalType::Complex, 4, 2);
    expectBytes(written(*shorter), stored);
    EXPECT_TRUE(readFrom(
        stored.data(), [&](CMmioFile& file) { return read.Read(&file); }, &consumed));
    EXPECT_EQ(Points(read), Values({1, 2}));
    EXPECT_TRUE(read.GetImValue()[1] == -2 && read.GetTabFreq()[1] == 6);
    EXPECT_EQ(consumed + 4, static_cast<std::int32_t>(stored.size()))
        << "a writer stores all frequencies, a reader takes the filled ones";
    EXPECT_TRUE(read.skipOperations()) << "so it meets the third of them here";

    const auto withFilled = [](int size, int filled) { // as version 2
        const auto sample = Filled(SignalType::Real);
        sample->AdjustSize(size), sample->SetFilled(filled), sample->DeleteAllRef();
        return Raw(written(*sample, {{"CRefVector", 2}}));
    };
    const std::pair<std::pair<int, int>, Values> rows[] = {
        {{3, 3}, {1, 2, 3}}, {{3, 0}, {}}, {{3, 5}, {1, 2, 3, 0, 0}}, {{0, 2}, {0, 0}}};
    for (const auto& [numbers, points] : rows) {
        SCOPED_TRACE(numbers.second);
        CRefVector resized;
        readInto(resized, withFilled(numbers.first, numbers.second));
        EXPECT_EQ(resized.GetSize(), numbers.second);
        EXPECT_EQ(Points(resized), points);
    }
    const auto fails = [](const Bytes& bytes) {
        CRefVector target;
        return !readFrom(bytes.data(), [&](CMmioFile& file) { return target.Read(&file); });
    };
    for (const int hostile : {INT_MAX, 1 << 24}) EXPECT_TRUE(fails(withFilled(3, hostile))) << hostile;
    for (const int negative : {-1, INT_MIN}) { // which no vector writes; count and chosen index stand behind it
        const Bytes whole = withFilled(3, 5);
        std::vector<char> bytes(whole.data().begin(), whole.data().end());
        std::memcpy(&bytes[bytes.size() - 12], &negative, sizeof negative);
        EXPECT_TRUE(fails(Raw(bytes))) << negative;
        CRefVector unwritable(16, 3, SignalType::Real, 0);
        unwritable.SetFilled(negative);
        MemoryDisk disk;
        CMmioFile file(false, disk.backend());
        OMMIOINFO info{4096, 0};
        EXPECT_TRUE(file.Open(u"v", &info, OMMIO_CREATE | OMMIO_WRITE));
        EXPECT_FALSE(unwritable.Write(&file)) << negative;
    }
    for (const int hostile : {1 << 24, INT_MAX}) {
        CRefVector sample;
        sample.AdjustSize(hostile);
        const Bytes base = Raw(written([&](CMmioFile& file) { return sample.CResult::Write(&file); }));
        EXPECT_TRUE(fails(Bytes{}.u16(4).u16(1).append(base).zeros(64))) << hostile;
    }
}

TEST(RefVector, XIsWhatTheReferenceSays)
{
    CRefVector vector(16, 2, SignalType::OctaveMin, 0), ofWaterfall(16, 2, SignalType(6), nullptr, 41);
    EXPECT_TRUE(vector.GetResultType() == SizeType::RefVector && vector.GetXnOctave() == 0 && vector.IsOfType(0x24));
    EXPECT_TRUE(!vector.IsWaterfall() && ofWaterfall.IsWaterfall() && Points(vector) == Values(2));
    CGrandeur quantity;
    vector.SetXMin(1), vector.SetXMax(2), vector.SetXMagnitude(&quantity);
    vector.SetAbsPrecisionX(3), vector.SetRelPrecisionX(4);
    EXPECT_TRUE(vector.GetXMin() == 0 && vector.GetXMax() == 0 && vector.GetXMagnitude() == nullptr);
    EXPECT_TRUE(vector.GetAbsPrecisionX() == 3 && vector.GetRelPrecisionX() == 4);
    CVectorRef* reference = Reference(u"x");
    vector.AddVectorRef(reference), vector.SetChosenReference(reference);
    reference->SetAbsPrecisionY(5), reference->SetRelPrecisionY(6);
    vector.SetXMin(1), vector.SetXMax(2), vector.SetXMagnitude(&quantity);
    EXPECT_TRUE(vector.GetXMin() == 1 && reference->GetRefMax() == 2 && vector.GetXMagnitude() == &quantity);
    EXPECT_TRUE(vector.GetAbsPrecisionX() == 5 && vector.GetRelPrecisionX() == 6);
    vector.SetSize(4);
    EXPECT_TRUE(reference->GetSize() == 4 && vector.GetReferencedAxis() == &vector);

    CGrandeurFichier y;
    CGrandeur replacement;
    vector.SetMagnitude(&y), reference->SetMagnitude(&y);
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
    EXPECT_TRUE(copied.GetRealValue() != filled->GetRealValue() && copied.GetFilled() == 3);
    EXPECT_TRUE(copied.GetBlocNumber(1) == 5 && copied.GetBlocNumberPtr(0) != filled->GetBlocNumberPtr(0));
    EXPECT_TRUE(!copied.isCoupe() && copied.GetTabFreq() == nullptr && copied.GetConstFreq() == -1);
    EXPECT_TRUE(copied.GetReferences()->IsEmpty() && copied.GetChosenReference() == nullptr);
    copied.CopyVectorRef(filled.get());
    const float frequencies[] = {1, 2, 3};
    copied.SetTabFreq(frequencies, 3);
    copied.SetTabFreq(copied.GetTabFreq() + 1, 2); // its own
    EXPECT_EQ(copied.GetTabFreq()[1], 3);
    EXPECT_TRUE(copied.GetChosenReference() != nullptr && copied.GetXMax() == 30);
    EXPECT_NE(copied.GetChosenReference(), filled->GetChosenReference());

    Values lent{7, 8, 9};
    CRefVector borrower;
    borrower = static_cast<CResult*>(filled.get());
    CVector lender(2, 3, SignalType::Real, 0, false);
    lender.SetRealValue(lent.data());
    borrower = static_cast<CResult*>(&lender); // neither axis nor table of its own
    EXPECT_TRUE(borrower.GetRealValue() == lent.data() && borrower.GetBlocNumber(1) == 5 && borrower.GetFilled() == 3);
    borrower.SetSize(2); // from here on it owns
    EXPECT_TRUE(borrower.IsMyDataTabs() && Points(borrower) == Values(2));
    CScalar scalar(9, 1, SignalType::Real, false);
    borrower = static_cast<CResult*>(&scalar);
    EXPECT_TRUE(borrower.GetRealValue() == nullptr && borrower.GetBlocNumberPtr(0) == nullptr);
}

} // namespace
} // namespace ZelmResult
