#include "tests/builders/record_check.h"
#include "zelmresult/quantities/equation_dim.h"
#include "zelmresult/quantities/ponderation_unite.h"
#include "zelmresult/quantities/unite.h"

#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ZelmResult {
namespace {

using namespace test;
using ::testing::ElementsAre;

// A record with its reader-writer.
template <class Record, class ReaderWriter>
struct Stored : Record {
    bool Save(CMmioFile& file) { return ReaderWriter().Write(file, *this); }
    bool Load(CMmioFile& file) { return ReaderWriter().Read(file, *this); }
};

CEquationDim Uniform(short byte, short number = 5)
{
    CEquationDim dim;
    dim.SetEqDim(number, byte, byte, byte, byte, byte, byte, byte, byte, byte);
    return dim;
}

TEST(EquationDim, AlgebraWrapsInBytes)
{
    const struct {
        short a, b, product, quotient, square, root, inverse;
    } rows[] = {{128, 128, 128, 128, 128, 128, 128}, // no exponent
                {130, 130, 132, 128, 132, 129, 126}, // 1 and 1
                {129, 127, 128, 130, 130, 128, 127}, // 1/2 and -1/2: the root of an odd byte loses its low bit
                {255, 254, 125, 129, 126, 191, 1},
                {0, 1, 129, 127, 128, 64, 0}};
    for (const auto& row : rows) {
        const CEquationDim a = Uniform(row.a), b = Uniform(row.b); // their plain number goes
        EXPECT_TRUE((a * b).IsEqual(Uniform(row.product, 0)));
        EXPECT_TRUE((a / b).IsEqual(Uniform(row.quotient, 0)));
        EXPECT_TRUE(a.Square().IsEqual(Uniform(row.square, 0)));
        EXPECT_TRUE(a.RootSquare().IsEqual(Uniform(row.root, 0)));
        EXPECT_TRUE(a.Inverse().IsEqual(Uniform(row.inverse, 0)));
        EXPECT_FALSE((a * b).IsEqual(Uniform(row.product))) << "all ten bytes count";
    }
}

TEST(EquationDim, Stored)
{
    Stored<CEquationDim, CEquationDimMmioReaderWriter> dim;
    dim.SetEqDim(1, 381, -130, 130, 132, 124, 134, 136, 138, 140); // cut to bytes
    short n[10] = {};
    dim.GetEqDim(n[0], n[1], n[2], n[3], n[4], n[5], n[6], n[7], n[8], n[9]);
    EXPECT_THAT(n, ElementsAre(1, 125, 126, 130, 132, 124, 134, 136, 138, 140));
    EXPECT_TRUE((dim * CEquationDim()).IsEqual(CEquationDim() * dim)) << "field by field";
    expectBytes(written(dim), Bytes{}.u16(256).raw("\x01\x7D\x7E\x82\x84\x7C\x86\x88\x8A\x8C"));
    RecordCheck<decltype(dim)> check{.name = "CEquationDim", .lowest = 255, .newest = 256};
    check.expect = [&](CEquationDim& read, std::uint16_t version) {
        EXPECT_TRUE(read.IsEqual(version < 256 ? CEquationDim() : dim));
    };
    checkRecord(dim, check);
    EXPECT_EQ(dumpOf(dim), "CEquationDim\nEnumeration: 1, Radians: -1,Steradians: -1, Meters: 1\n"
                           "Kilograms: 2, Seconds: -2,Amperes: 3\nKelvins: 4, Moles: 5,Candelas: 6\n");
}

// Every setter with a value that no fresh unit has. A comparison sees all but the last three, a file the first six.
const std::function<void(CUnite&)> kChanges[] = {
    [](CUnite& u) { u.SetNomUnite(u"Pascal"); },
    [](CUnite& u) { u.SetLabelLinUnite(u"Pa"); },
    [](CUnite& u) { u.SetCoeffA(2.0F); },
    [](CUnite& u) { u.SetCoeffB(3.0F); },
    [](CUnite& u) { u.SetRef0dB(4.0F); },
    [](CUnite& u) { u.SetCoefdB(10.0F); },
    [](CUnite& u) { u.SetUnitKey(u"Pa"); },
    [](CUnite& u) { u.SetLabeldBUnite(u"dBSPL"); },
    [](CUnite& u) { u.SetLowPrefix(-6); },
    [](CUnite& u) { u.SetHighPrefix(6); },
    [](CUnite& u) { u.SetNotation(3); },
    [](CUnite& u) { u.SetNoZero(false); },
    [](CUnite& u) { u.SetDigits(true); },
    [](CUnite& u) { u.SetNbDigits(4); },
    [](CUnite& u) { u.SetModifiable(true); },
    [](CUnite& u) { u.SetHideDecimalDigit(true); },
    [](CUnite& u) { u.SetId(60); },
    [](CUnite& u) { u.SetScaleAuthorized(1); },
    [](CUnite& u) { u.SetRef0dB(u.GetRef0dB() + 0); } // renews the cached inverse
};
constexpr int kCompared = 16, kStored = 6;

TEST(Unite, ComparedAndStored)
{
    const CUnite fresh;
    Stored<CUnite, CUniteMmioReaderWriter> unit;
    int change = 0;
    for (const auto& apply : kChanges) {
        CUnite one;
        apply(one), apply(unit);
        EXPECT_EQ(one.Compare(&fresh), change++ < kCompared) << change;
    }
    EXPECT_EQ(unit.Compare(&fresh), kCompared);
    expectBytes(written(unit), Bytes{}.u16(256).f32s({2, 3, 4, 10}, "coefficients").text(u"Pascal").text(u"Pa"));
    RecordCheck<decltype(unit)> check{.name = "CUnite", .lowest = 255, .newest = 256, .silentReads = -1};
    check.expect = [](CUnite& read, std::uint16_t version) {
        CUnite wanted;
        for (int i = 0; version == 256 && i < kStored; ++i) kChanges[i](wanted);
        EXPECT_EQ(read.Compare(&wanted), 0) << version;
        EXPECT_EQ(read.GetInvRef0dB(), 1.0F) << "until the reference is set";
    };
    checkRecord(unit, check);
    EXPECT_EQ(dumpOf(unit), "CUnite\nNom: Pascal,Label: Pa\n"
                            "Coef A: 2.000000, Coef B: 3.000000, Ref 0 dB: 4.000000, Coef dB: 10.000000\n");
    unit.SetRef0dB(0.0F);
    EXPECT_TRUE(unit.GetRef0dB() == 4.0F && unit.GetInvRef0dB() == 0.25F);
}

TEST(Unite, LabelsTakeTheSuffixOfAWeighting)
{
    CUnite unit;
    unit.SetLabelLinUnite(u"Pa");
    const struct {
        int function;
        wstring lin, dB, abreviation;
    } rows[] = {{1, u"Pa(A)", u"dBA", u"A"}, {2, u"Pa(B)", u"dBB", u"B"}, {3, u"Pa(C)", u"dBC", u"C"},
                {4, u"Pa(D)", u"dBD", u"D"}, {5, u"Pa", u"dB", u"1/A"},   {0, u"Pa", u"dB", u""}};
    CPonderationUnite weighting; // goes from one to the next, so that the last suffix must go
    for (const auto& row : rows) {
        weighting.SetPonderationLabelUnite(row.function);
        EXPECT_EQ(unit.GetLabelLinOrDbUnite(false, &weighting), row.lin);
        EXPECT_EQ(unit.GetLabelLinOrDbUnite(true, &weighting), row.dB);
        EXPECT_EQ(weighting.abreviation(), row.abreviation);
        EXPECT_EQ(weighting.lin().empty() && weighting.db().empty(), row.dB == u"dB");
    }
    weighting.set_lin(u"(x)");
    EXPECT_EQ(unit.GetLabelLinUnite(&weighting), u"Pa") << "the flag decides";
    EXPECT_EQ(unit.GetLabelLinUnite(nullptr) + unit.GetLabelDbUnite(nullptr), u"PadB");
}

TEST(ListeUnite, FindsComparesAndDeletes)
{
    CUnite metre, gram, user, other;
    metre.SetNomUnite(u"m");
    gram.SetNomUnite(u"g"), gram.SetId(1), gram.SetCoeffA(2.0F);
    user.SetModifiable(true), user.SetId(10000);
    other.SetModifiable(true), other.SetId(10002);
    CListeUnite list;
    EXPECT_EQ(list.GetUniqueId(), 10000);
    EXPECT_EQ(list.UnitExist(&metre), 0) << "as if found";
    list.insert(list.end(), {&metre, &gram, &user, &other});
    EXPECT_EQ(list.GetUniqueId(), 10001);
    EXPECT_TRUE(list.GetUnite(1) == &gram && list.GetUnite(2) == nullptr);
    EXPECT_THAT(list.GetUserUnits(), ElementsAre(&user, &other));

    CUnite likeGram = gram, stranger;
    likeGram.SetId(77), stranger.SetNomUnite(u"s");
    EXPECT_EQ(list.UnitExist(&likeGram), 0);
    EXPECT_TRUE(list.ObjetExiste(&stranger) && !list.ObjetExiste(&likeGram)) << "by Id";
    EXPECT_EQ(list.UnitExist(&stranger), 1 + 2 + 2 + 2) << "the differences to all four";
    CListeUnite few;
    few.insert(few.end(), {&likeGram, &user});
    EXPECT_EQ(list.Compare(&few), 0);
    EXPECT_NE(few.Compare(&list), 0);
    few.Ajouter(&list); // user is there already
    EXPECT_THAT(few, ElementsAre(&likeGram, &user, &metre, &gram, &other));

    CListeUnite owned;
    auto* mine = new CUnite;
    owned.insert(owned.end(), {mine, new CUnite, mine});
    owned.push_back(owned[1]);
    owned.DeleteUniteUser(&metre); // not in it
    EXPECT_EQ(owned.GetCount(), 4);
    owned.DeleteUniteUser(mine); // one that stands twice is deleted once
    owned.LiberationMemoire();
    EXPECT_EQ(owned.GetCount(), 0);
}

} // namespace
} // namespace ZelmResult
