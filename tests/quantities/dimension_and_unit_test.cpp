#include "tests/builders/record_check.h"
#include "zelmresult/quantities/equation_dim.h"
#include "zelmresult/quantities/unite.h"

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
    }
}

TEST(EquationDim, Stored)
{
    Stored<CEquationDim, CEquationDimMmioReaderWriter> dim;
    dim.SetEqDim(1, 381, -130, 130, 132, 124, 134, 136, 138, 140); // cut to bytes
    short n[10] = {};
    dim.GetEqDim(n[0], n[1], n[2], n[3], n[4], n[5], n[6], n[7], n[8], n[9]);
    EXPECT_THAT(n, ElementsAre(1, 125, 126, 130, 132, 124, 134, 136, 138, 140));
    EXPECT_FALSE((dim * CEquationDim()).IsEqual(dim)) << "all ten bytes count";
    expectBytes(written(dim), Bytes{}.u16(256).raw("\x01\x7D\x7E\x82\x84\x7C\x86\x88\x8A\x8C"));
    RecordCheck<decltype(dim)> check{.name = "CEquationDim", .lowest = 255, .newest = 256};
    check.expect = [&](CEquationDim& read, std::uint16_t version) {
        EXPECT_TRUE(read.IsEqual(version < 256 ? CEquationDim() : dim));
    };
    checkRecord(dim, check);
    EXPECT_EQ(dumpOf(dim), "CEquationDim\nEnumeration: 1, Radians: -1,Steradians: -1, Meters: 1\n"
                           "Kilograms: 2, Seconds: -2,Amperes: 3\nKelvins: 4, Moles: 5,Candelas: 6\n");
}

TEST(ListeUnite, FindsComparesAndDeletes)
{
    CUnite metre, gram, user, other;
    metre.SetNomUnite(u"m");
    gram.SetNomUnite(u"g");
    gram.SetId(1);
    gram.SetCoeffA(2.0F);
    user.SetModifiable(true);
    user.SetId(10000);
    other.SetModifiable(true);
    other.SetId(10002);
    CListeUnite list;
    list.insert(list.end(), {&metre, &gram, &user, &other});
    EXPECT_EQ(list.GetUniqueId(), 10001);
    EXPECT_THAT(list.GetUserUnits(), ElementsAre(&user, &other));

    CUnite likeGram = gram, stranger;
    likeGram.SetId(77);
    stranger.SetNomUnite(u"s");
    EXPECT_TRUE(list.ObjetExiste(&stranger)) << "by Id";
    EXPECT_FALSE(list.ObjetExiste(&likeGram));
    EXPECT_EQ(list.UnitExist(&stranger), 1 + 2 + 2 + 2) << "the differences to all four";
    CListeUnite few;
    few.insert(few.end(), {&likeGram, &user});
    EXPECT_EQ(list.Compare(&few), 0);
    few.Ajouter(&list); // user is there already
    EXPECT_THAT(few, ElementsAre(&likeGram, &user, &metre, &gram, &other));

    CListeUnite owned;
    auto* mine = new CUnite;
    owned.insert(owned.end(), {mine, new CUnite, mine});
    owned.push_back(owned[1]);
    owned.DeleteUniteUser(&metre); // not in it
    EXPECT_EQ(owned.GetCount(), 4);
    owned.DeleteUniteUser(mine); // one that is listed twice is deleted once
    owned.LiberationMemoire();
    EXPECT_TRUE(owned.empty());
}

} // namespace
} // namespace ZelmResult
