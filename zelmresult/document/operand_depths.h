#pragma once

#include "zelmresult/quantities/grandeur.h"

#include <algorithm>
#include <cstddef>
#include <unordered_map>

namespace ZelmResult {

// How deep quantities are built from others, up to the depth that a read accepts; beyond it, and for a ring, some
// greater number.
class OperandDepths {
public:
    // 0 for a quantity without operands that are stored.
    std::size_t Of(const CGrandeur& quantity) { return Of(quantity, 0); }

private:
    std::size_t Of(const CGrandeur& quantity, std::size_t level)
    {
        constexpr std::size_t tooDeep = CGrandeurMmioReaderWriter::kDeepestOperand + 1;
        if (const auto known = m_known.find(&quantity); known != m_known.end()) return known->second;
        if (level > tooDeep) return tooDeep;
        const std::int32_t stored = quantity.GetGrandeurInvolved();
        std::size_t depth = 0;
        if (stored > 0 && quantity.GetGrandeurLeft() != nullptr) depth = Of(*quantity.GetGrandeurLeft(), level + 1) + 1;
        if (stored > 1 && quantity.GetGrandeurRight() != nullptr)
            depth = (std::max)(depth, Of(*quantity.GetGrandeurRight(), level + 1) + 1);
        m_known.emplace(&quantity, depth);
        return depth;
    }

    std::unordered_map<const CGrandeur*, std::size_t> m_known;
};

} // namespace ZelmResult
