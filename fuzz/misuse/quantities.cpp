// Quantities without units, with units that were removed, and with operands in rings.

#include "fuzz/misuse/rooms.h"
#include "zelmresult/quantities/grandeur.h"

#include <algorithm>
#include <cmath>

namespace ZelmResult::fuzz {

namespace {

class Misuse : public Room {
public:
    using Room::Room;

    void Step()
    {
        CGrandeur& quantity = m_quantities[m_odd.choice(m_quantities.size())];
        CUnite& unit = m_units[m_odd.choice(m_units.size())];
        m_odd.call([&] { quantity.AjouteUniteDynamique(m_odd.flag() ? &unit : nullptr); },
                   [&] { quantity.GetLstUnit().insert(quantity.GetLstUnit().begin(), nullptr); },
                   [&] { Choose(quantity, m_odd.flag() ? &unit : nullptr); },
                   [&] { quantity.RemoveUnite(m_odd.flag() ? &unit : nullptr); }, [&] { quantity.RemoveAllUserUnit(); },
                   [&] { Spoil(unit); }, [&] { Show(quantity); }, [&] { UseList(quantity.GetLstUnit()); },
                   [&] { Operate(quantity, &m_quantities[m_odd.choice(m_quantities.size())]); });
        const CUnite* current = quantity.GetUniteCourante();
        Require(current == nullptr || quantity.UnitOwned(current), "the current unit is one of the list");
        Require(quantity.Compare(&quantity) == 0, "a quantity is itself");
        Require(quantity.Compare(nullptr) != 0, "a quantity differs from none");
    }

private:
    static void Choose(CGrandeur& quantity, CUnite* unit)
    {
        const CListeUnite& units = quantity.GetLstUnit();
        const CUnite* before = quantity.GetUniteCourante();
        const bool isTaken = quantity.SetUniteCourante(unit);
        Require(isTaken || quantity.GetUniteCourante() == before, "a unit that isn't of the list changes nothing");
        const bool isThere = unit != nullptr && std::find(units.begin(), units.end(), unit) != units.end();
        Require(isTaken || !isThere, "a unit of the list can be chosen");
    }
    void Spoil(CUnite& unit)
    {
        const float odd = m_odd.value();
        const float coefficient = std::isnan(odd) ? 0.0F : odd;
        const std::int32_t number = m_odd.number();
        const auto power = static_cast<std::int16_t>(number);
        m_odd.call([&] { unit.SetCoeffA(coefficient); }, [&] { unit.SetRef0dB(coefficient); },
                   [&] { unit.SetCoefdB(coefficient); }, [&] { unit.SetLowPrefix(power); },
                   [&] { unit.SetHighPrefix(power); }, [&] { unit.SetNotation(static_cast<std::uint16_t>(power)); },
                   [&] { unit.SetDigits(true), unit.SetNbDigits(number); });
    }
    void Show(const CGrandeur& quantity)
    {
        const float value = m_odd.value();
        const float precision = m_odd.value();
        const bool dB = m_odd.flag();
        wstring text, current, prefix = u"?", label = u"?";
        quantity.SI_to_string(text, value, precision, precision, prefix, label, dB, nullptr, m_odd.number(),
                              m_odd.shortNumber());
        quantity.courant_to_string(current, value, precision, precision, prefix, label, dB, nullptr);
        const float others[] = {quantity.ConvertSIToScalaire(value, dB), quantity.LinTodB(value),
                                quantity.DbToLin(value),
                                static_cast<float>(quantity.ConvertToScalaire(static_cast<double>(value), dB)),
                                static_cast<float>(quantity.AdjustScalaire(value, precision, value, dB))};
        (void)quantity.DiffDbToRatioLin(value);
        if (quantity.GetUniteCourante() != nullptr) return;
        Require(text + current + prefix + label == u"N.A.N.A.??", "without a unit there is no text");
        for (const float other : others)
            Require(std::isnan(value) || other == value, "without a unit a value stays as it is");
    }
    static void UseList(const CListeUnite& list)
    {
        Require(!list.ObjetExiste(nullptr), "null is no unit of a list");
        (void)list.UnitExist(nullptr);
        (void)list.Compare(nullptr);
        CListeUnite copy = list;
        copy.Ajouter(nullptr);
        copy.Ajouter(&copy);
        copy.DeleteUniteUser(nullptr);
        Require(copy.size() == list.size(), "nothing new adds nothing");
        auto* unit = new CUnite;
        unit->SetId(list.GetUniqueId());
        CListeUnite own;
        own.assign({unit, nullptr, unit});
        own.LiberationMemoire();
        Require(own.empty(), "a list that was freed is empty");
    }
    void Operate(CGrandeur& quantity, CGrandeur* operand)
    {
        quantity.SetGrandeurLeft(m_odd.flag() ? operand : nullptr);
        quantity.SetGrandeurRight(m_odd.flag() ? operand : nullptr);
        quantity.SetGrandeurInvolved(m_odd.number()); // also more than there are
        std::map<CGrandeur*, int> counts;
        quantity.AddInvolvedGrandeur(counts);
        CGrandeur::AddInvolved(nullptr, counts);
        Require(!counts.contains(nullptr), "no quantity is no operand");
        (void)quantity.GetNombreGrandeurSimple();
        (void)quantity.IsDependantOf(operand);
        quantity.ReplaceGrandeur(nullptr, operand);
        quantity.ReplaceGrandeur(operand, m_odd.flag() ? operand : nullptr);
        Require(!CGrandeurFichier(&quantity).IsOperateurGrandeur(), "a copy for another file has no operands");
    }

    std::array<CUnite, 3> m_units;
    std::array<CGrandeur, 3> m_quantities;
};

} // namespace

void MisuseQuantities(Odd& odd) { Run<Misuse>(odd); }

} // namespace ZelmResult::fuzz
