#include "zelmresult/quantities/grandeur.h"

#include "zelmresult/quantities/quantity_vector.h"

#include <array>
#include <climits>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>

namespace ZelmResult {
namespace {

using ::testing::ElementsAre;
using Counts = std::map<CGrandeur*, int>;

void Join(CGrandeur& quantity, CGrandeur* left, CGrandeur* right)
{
    quantity.SetGrandeurLeft(left);
    quantity.SetGrandeurRight(right);
}

Counts Involved(const CGrandeur& quantity)
{
    Counts counts;
    quantity.AddInvolvedGrandeur(counts);
    return counts;
}

TEST(Grandeur, UnitsAndTheCurrentOne)
{
    CUnite si, user, derived, stranger;
    user.SetModifiable(true);
    user.SetId(10000);
    derived.SetId(1);
    stranger.SetId(1);
    CGrandeur quantity;
    for (CUnite* unit : {&si, &user, &derived}) quantity.AjouteUniteDynamique(unit);
    EXPECT_TRUE(quantity.SetUniteCourante(&user));
    EXPECT_FALSE(quantity.SetUniteCourante(&stranger));
    EXPECT_EQ(quantity.GetUniteSI(), &si);
    EXPECT_FALSE(quantity.CurrentUnitIsSI());
    quantity.RemoveAllUserUnit();
    EXPECT_TRUE(quantity.CurrentUnitIsSI());
    EXPECT_THAT(quantity.GetLstUnit(), ElementsAre(&si, &derived));
    for (const CUnite* unit : {&stranger, &si}) quantity.RemoveUnite(unit);
    EXPECT_EQ(quantity.GetUniteCourante(), &derived);
}

TEST(Grandeur, SharedOperandsAndCyclesEnd)
{
    std::array<CGrandeur, 65> levels; // 2^64 ways down
    for (std::size_t i = 1; i < levels.size(); ++i) Join(levels[i], &levels[i - 1], &levels[i - 1]);
    CGrandeur replacement, &top = levels.back();
    EXPECT_EQ(levels[20].GetNombreGrandeurSimple(), 1 << 20);
    EXPECT_EQ(top.GetNombreGrandeurSimple(), INT_MAX);
    Counts counts = Involved(top);
    EXPECT_EQ(counts[&levels[34]], 1 << 30);
    EXPECT_EQ(counts[&levels[33]], INT_MAX);
    top.AddInvolvedGrandeur(counts);
    EXPECT_EQ(counts[levels.data()], INT_MAX);
    top.ReplaceGrandeur(levels.data(), &replacement);
    EXPECT_EQ(levels[1].GetGrandeurRight(), &replacement);

    CGrandeur a, b, leaf;
    Join(a, &b, &leaf);
    Join(b, &a, &b);
    EXPECT_TRUE(b.IsDependantOf(&leaf));
    EXPECT_EQ(Involved(a)[&leaf], 1);
    b.ReplaceGrandeur(&leaf, &replacement);
    EXPECT_EQ(a.GetGrandeurRight(), &replacement);
}

TEST(GrandeurFichier, OwnsOneUnit)
{
    const CGrandeurFichier fromPath(u"path", 5);
    EXPECT_TRUE(fromPath.CompareOrigine(u"path", 5));
    EXPECT_FALSE(fromPath.CompareOrigine(u"path", 6));
    EXPECT_FALSE(fromPath.CompareOrigine(u"Path", 5));
    EXPECT_NE(fromPath.GetUniteSI(), nullptr);
    EXPECT_FALSE(fromPath.CurrentUnitIsSI()) << "its list is empty";
    EXPECT_EQ(CGrandeurFichier(static_cast<const CGrandeur*>(nullptr)).GetUniteCourante(), nullptr);

    CUnite si, current;
    si.SetNomUnite(u"m");
    CGrandeur source;
    EXPECT_FALSE(source.Prefer_dBDisplay(true)) << "it has one display";
    source.SetIsAReference(true);
    source.SetMultiDisplay(true);
    source.SetDefaultCurrentUnitId(9);
    EXPECT_TRUE(source.Prefer_dBDisplay(true));
    source.SetGrandeurInvolved(1);
    source.SetGrandeurLeft(&source);
    source.AjouteUniteDynamique(&si);
    source.AjouteUniteDynamique(&current);
    source.SetUniteCourante(&current);
    const CGrandeurFichier copy(&source);
    EXPECT_TRUE(copy.GetIsAReference());
    EXPECT_TRUE(copy.GetMultiDisplay());
    EXPECT_TRUE(copy.GetdBDisplayPrefered());
    EXPECT_EQ(copy.GetDefaultCurrentUnitId(), 9U);
    EXPECT_EQ(copy.GetGrandeurLeft(), nullptr);
    EXPECT_TRUE(copy.CurrentUnitIsSI());
    EXPECT_NE(copy.GetUniteSI(), &si);
    EXPECT_EQ(copy.GetUniteSI()->Compare(&si), 0);
}

struct Mortal : CGrandeur {
    explicit Mortal(int& deaths) : m_deaths(deaths) {}
    Mortal(const Mortal&) = delete;
    Mortal& operator=(const Mortal&) = delete;
    ~Mortal() override { ++m_deaths; }

private:
    int& m_deaths;
};

TEST(QuantityVector, DeletesWhatItOwns)
{
    int deaths = 0;
    CGrandeur kept, other;
    EOwnership ownership = OwnershipOwned;
    QuantityVectorExplicitOwnership list;
    const auto append = [&](EOwnership o) { list.append(new Mortal(deaths), o); };
    append(OwnershipDefault);
    append(OwnershipOwned);
    list.append(list.value(1), OwnershipOwned); // twice, and deleted once
    list.append(&kept, OwnershipCaller);
    EXPECT_FALSE(list.replace(&other, &ownership, &kept, OwnershipOwned));
    EXPECT_EQ(ownership, OwnershipDefault);
    EXPECT_FALSE(list.take(&other, ownership));
    EXPECT_FALSE(list.replace(list.value(1), &ownership, nullptr, OwnershipCaller));

    std::unique_ptr<CGrandeur> mine(list.value(0));
    EXPECT_TRUE(list.replace(mine.get(), &ownership, &other, OwnershipCaller));
    EXPECT_EQ(list.value(0), &other);
    append(OwnershipOwned);
    mine.reset(list.value(4));
    EXPECT_TRUE(list.take(mine.get(), ownership));
    EXPECT_EQ(ownership, OwnershipOwned);
    EXPECT_EQ(deaths, 1) << "only the first of mine";
    const CGrandeur* last = list.value(1);
    list.clear();
    EXPECT_EQ(deaths, 2);
    EXPECT_TRUE(list.contains(last)) << "what it noted of owners stays";

    list.append(&kept, OwnershipCaller);
    list.append(&kept, OwnershipCaller);
    EXPECT_TRUE(list.take(&kept, ownership));
    EXPECT_TRUE(list.empty()) << "both places";
    append(OwnershipDefault); // for the destructor
}

} // namespace
} // namespace ZelmResult
