// Legal calls at the wrong time or with the oddest arguments, for quantities and their units.

#include "zelmresult/quantities/grandeur.h"

#include <cfloat>
#include <climits>
#include <cmath>
#include <gtest/gtest.h>

namespace ZelmResult {
namespace {

constexpr float kFloats[] = {NAN, INFINITY, -INFINITY, FLT_MAX, -FLT_MAX, 1e-45F, -1e-30F, -1.0F, 0.0F, 9.9999F};
constexpr int kInts[] = {INT_MIN, -2, -1, 0, 77, 255, 1 << 20, INT_MAX};

TEST(UnluckyQuantities, WithoutUnitsAndWithUnitsThatWent)
{
    CGrandeur quantity;
    CUnite unit;
    unit.SetId(65535);
    for (int state = 0; state < 4; ++state) { // none, two of one number, removed, of a list that was freed
        quantity.GetLstUnit().insert(quantity.GetLstUnit().begin(), nullptr);
        if (state == 1) quantity.AjouteUniteDynamique(&unit), quantity.AjouteUniteDynamique(&unit);
        EXPECT_EQ(quantity.SetUniteCourante(&unit), state == 1 || state == 2);
        if (state == 2) quantity.RemoveAllUserUnit(), quantity.RemoveUnite(&unit);
        if (state == 3) quantity.AjouteUniteDynamique(new CUnite), quantity.GetLstUnit().LiberationMemoire();
        quantity.AjouteUniteDynamique(nullptr);
        quantity.RemoveUnite(nullptr);
        EXPECT_FALSE(quantity.SetUniteCourante(nullptr));
        EXPECT_EQ(quantity.GetUniteCourante() != nullptr, state == 1);
        wstring text, current, prefix = u"?", label = u"?";
        quantity.SI_to_string(text, 2, 0, 0, prefix, label, true, nullptr);
        quantity.courant_to_string(current, 2, 0, 0, prefix, label, false, nullptr);
        EXPECT_TRUE(state == 1 || text + current + prefix + label == u"N.A.N.A.??");
        EXPECT_TRUE(quantity.ConvertSIToScalaire(2, false) == 2 && quantity.AdjustScalaire(2, 0, 0, false) == 2);
        EXPECT_TRUE(state == 1 || (quantity.LinTodB(2) == 2 && quantity.DbToLin(2) == 2));
        for (const float value : kFloats)
            for (const bool dB : {false, true}) {
                quantity.SI_to_string(text, value, value, value, prefix, label, dB, nullptr, INT_MIN, INT16_MIN);
                quantity.courant_to_string(text, value, value, value, prefix, label, dB, nullptr);
                EXPECT_TRUE(state == 1 || text == u"N.A.");
                (void)quantity.ConvertToScalaire(value, dB), (void)quantity.AdjustScalaire(value, value, value, dB);
                (void)quantity.DiffDbToRatioLin(value), (void)quantity.DbToLin(quantity.LinTodB(value));
            }
        const CListeUnite& list = quantity.GetLstUnit();
        EXPECT_TRUE(list.GetUnite(0) == nullptr && !list.ObjetExiste(nullptr) && list.GetUniqueId() == 10000);
        (void)list.UnitExist(nullptr), (void)list.Compare(nullptr), (void)quantity.CurrentUnitIsSI();
        CListeUnite copy = list;
        copy.Ajouter(nullptr), copy.Ajouter(&copy), copy.DeleteUniteUser(nullptr);
        EXPECT_EQ(copy.size(), list.size());
        EXPECT_TRUE(quantity.Compare(nullptr) != 0 && quantity.Compare(&quantity) == 0 && unit.Compare(nullptr) != 0);
        std::map<CGrandeur*, int> counts;
        CGrandeur::AddInvolved(nullptr, counts);
        for (const std::int32_t operands : kInts) { // more than there are
            quantity.SetGrandeurInvolved(operands);
            quantity.AddInvolvedGrandeur(counts), (void)quantity.GetNombreGrandeurSimple();
        }
    }
}

} // namespace
} // namespace ZelmResult
