#pragma once

#include "zelmresult/quantities/grandeur.h"
#include "zelmresult/support/wstring.h"

#include <unordered_map>

namespace ZelmResult {

// Finds quantities that a load merges into one, since it compares only key, name, dimension and UFF code. It keeps
// pointers.
class MergedQuantities {
public:
    // The quantity of an earlier call that replaces this one after a load although it differs; null without one.
    const CGrandeur* Add(const CGrandeur& quantity)
    {
        const auto [begin, end] = m_first.equal_range(quantity.GetQuantityKey() + u'\0' + quantity.GetNomGrandeur());
        for (auto place = begin; place != end; ++place)
            if (IsTakenFor(*place->second, quantity))
                return HasSameRest(*place->second, quantity) ? nullptr : place->second;
        m_first.emplace(quantity.GetQuantityKey() + u'\0' + quantity.GetNomGrandeur(), &quantity);
        return nullptr;
    }

private:
    static bool IsTakenFor(const CGrandeur& a, const CGrandeur& b)
    {
        return a.GetTypeUFF() == b.GetTypeUFF() && a.GetEqDim().IsEqual(b.GetEqDim());
    }
    static bool HasSameRest(const CGrandeur& a, const CGrandeur& b)
    {
        const CUnite* unit = a.GetUniteCourante();
        const std::int32_t operands = a.GetGrandeurInvolved();
        return (unit == b.GetUniteCourante() || (unit != nullptr && unit->Compare(b.GetUniteCourante()) == 0)) &&
               operands == b.GetGrandeurInvolved() && a.GetOperationType() == b.GetOperationType() &&
               (operands < 1 || a.GetGrandeurLeft() == b.GetGrandeurLeft()) &&
               (operands < 2 || a.GetGrandeurRight() == b.GetGrandeurRight());
    }

    std::unordered_multimap<wstring, const CGrandeur*> m_first;
};

} // namespace ZelmResult
