// Legal calls at the wrong time or with the oddest arguments, for quantities, units and what prints values.

#include "zelmresult/quantities/grandeur.h"
#include "zelmresult/quantities/ponderation_unite.h"
#include "zelmresult/quantities/quantity_vector.h"
#include "zelmresult/quantities/result_strings.h"
#include "zelmresult/quantities/result_weighting_function_string.h"

#include <cfloat>
#include <climits>
#include <cmath>
#include <gtest/gtest.h>

namespace ZelmResult {
namespace {

constexpr float kFloats[] = {NAN, INFINITY, -INFINITY, FLT_MAX, -FLT_MAX, 1e-45F, -1e-30F, -1.0F, 0.0F, 9.9999F};
constexpr int kInts[] = {INT_MIN, -2, -1, 0, 77, 255, 1 << 20, INT_MAX};
constexpr std::int16_t kShorts[] = {INT16_MIN, -1, 0, 1, 2, 3, 4, INT16_MAX};

TEST(UnluckyQuantities, UnitsPrintAnything)
{
    CPonderationUnite weighting;
    weighting.SetPonderationLabelUnite(INT_MIN);
    for (const float odd : kFloats)
        for (const std::int16_t prefix : kShorts) {
            CUnite unit;
            unit.SetCoeffA(odd), unit.SetCoeffB(-odd), unit.SetRef0dB(odd), unit.SetCoefdB(odd);
            unit.SetLowPrefix(prefix), unit.SetHighPrefix(static_cast<std::int16_t>(~prefix));
            unit.SetDigits(prefix > 0), unit.SetNbDigits(prefix * 65535),
                unit.SetNotation(static_cast<std::uint16_t>(prefix));
            for (const float value : kFloats)
                for (const float precision : kFloats)
                    for (const bool dB : {false, true}) {
                        wstring digits = u"x";
                        wstring before = u"x";
                        wstring label = u"x";
                        unit.ScalaireSIToString(digits, value, precision, odd, before, label, dB, nullptr, prefix,
                                                prefix);
                        ASSERT_TRUE(!digits.empty() && digits.size() < 1100) << digits.size();
                        unit.ScalaireCourantToString(digits, value, odd, precision, before, label, dB, &weighting);
                        ASSERT_TRUE(!digits.empty() && digits.size() < 1100);
                        (void)unit.ScalaireSIToScalaire(value, dB);
                        (void)unit.AdjustScalaire(value, precision, odd, dB),
                            (void)unit.ScalaireToScalaireSI(value, dB);
                        (void)unit.DbToLin(value), (void)unit.DiffDbToRatioLin(value), (void)unit.LinTodB(value);
                        (void)unit.getCurrentAbsPrecision(precision);
                    }
        }
    for (const int number : kInts) {
        EXPECT_FALSE(CUnite::TimeToString_seconds(number).empty());
        EXPECT_EQ(CUnite::prefix(number), number == 0 ? u"y" : u"");
    }
}

TEST(UnluckyQuantities, WithoutUnitsAndWithUnitsThatWent)
{
    CGrandeur quantity;
    CUnite unit;
    unit.SetId(65535);
    for (int state = 0; state < 4; ++state) { // none, two of one number, removed, of a list that was freed
        if (state == 1) quantity.AjouteUniteDynamique(&unit), quantity.AjouteUniteDynamique(&unit);
        if (state == 1) EXPECT_TRUE(quantity.SetUniteCourante(&unit));
        if (state == 2) quantity.RemoveAllUserUnit(), quantity.RemoveUnite(&unit);
        if (state == 3) quantity.AjouteUniteDynamique(new CUnite), quantity.GetLstUnit().LiberationMemoire();
        quantity.AjouteUniteDynamique(nullptr), quantity.RemoveUnite(nullptr);
        EXPECT_FALSE(quantity.SetUniteCourante(nullptr));
        EXPECT_EQ(quantity.GetUniteCourante() != nullptr, state == 1);
        for (const float value : kFloats)
            for (const bool dB : {false, true}) {
                wstring text, prefix, label;
                quantity.SI_to_string(text, value, value, value, prefix, label, dB, nullptr, INT_MIN, INT16_MIN);
                quantity.courant_to_string(text, value, value, value, prefix, label, dB, nullptr);
                EXPECT_TRUE(state == 1 || text == u"N.A.");
                const float same = quantity.ConvertSIToScalaire(value, dB);
                EXPECT_TRUE(state == 1 || same == value || std::isnan(value));
                (void)quantity.ConvertToScalaire(value, dB), (void)quantity.AdjustScalaire(value, value, value, dB);
                (void)quantity.DiffDbToRatioLin(value), (void)quantity.DbToLin(quantity.LinTodB(value));
            }
        const CListeUnite& list = quantity.GetLstUnit();
        EXPECT_TRUE(list.GetUnite(0) == nullptr && !list.ObjetExiste(nullptr) && list.GetUniqueId() >= 10000);
        (void)list.UnitExist(nullptr), (void)list.Compare(nullptr), (void)quantity.CurrentUnitIsSI();
        CListeUnite copy = list;
        copy.Ajouter(nullptr), copy.Ajouter(&copy), copy.DeleteUniteUser(nullptr);
        EXPECT_EQ(copy.size(), list.size());
        EXPECT_TRUE(quantity.Compare(nullptr) != 0 && quantity.Compare(&quantity) == 0 && unit.Compare(nullptr) != 0);
        const CGrandeurFichier stored(&quantity);
        EXPECT_FALSE(stored.IsDependantOf(nullptr));
        quantity.ReplaceGrandeur(nullptr, nullptr);
        std::map<CGrandeur*, int> counts;
        CGrandeur::AddInvolved(nullptr, counts);
        for (const std::int32_t operands : kInts) { // more than there are
            quantity.SetGrandeurInvolved(operands);
            quantity.AddInvolvedGrandeur(counts), (void)quantity.GetNombreGrandeurSimple();
        }
    }
}

TEST(UnluckyQuantities, ListsAndNames)
{
    QuantityVectorExplicitOwnership list;
    auto* quantity = new CGrandeur;
    EOwnership ownership = OwnershipCaller;
    EXPECT_FALSE(list.take(nullptr, ownership) || list.replace(nullptr, &ownership, quantity, OwnershipOwned));
    EXPECT_EQ(ownership, OwnershipDefault);
    list.append(nullptr, OwnershipOwned), list.append(quantity, OwnershipOwned), list.append(quantity, OwnershipOwned);
    EXPECT_TRUE(list.replace(quantity, &ownership, quantity, OwnershipOwned) && !list.isMember(nullptr));
    list.clear(), list.clear(); // one that stands twice goes once
    list.setDefaultOwnership(EOwnership(99)), list.append(new CGrandeur, OwnershipOwned);
    for (const int number : kInts) {
        EXPECT_EQ(ResultWeightingFunctionString::index_to_constant(number), 0);
        EXPECT_EQ(ResultWeightingFunctionString::constant_to_index(number), number == 0 ? 0 : -1) << number;
        EXPECT_EQ(ResultConstString::weightingNameFromIndex(number == 0 ? 19 : number), u"");
        EXPECT_EQ(ResultConstString::displayUnitName(number), ResultConstString::displayUnitName(0));
        CPonderationUnite weighting;
        weighting.SetPonderationLabelUnite(number);
        EXPECT_FALSE(weighting.hasLinString() || weighting.hasDbString());
    }
}

} // namespace
} // namespace ZelmResult
