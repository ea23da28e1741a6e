#include "zelmresult/quantities/quantity_vector.h"

#include <algorithm>
#include <set>

namespace ZelmResult {

void QuantityVectorExplicitOwnership::setDefaultOwnership(EOwnership ownership)
{
    m_defaultOwnership = ownership == OwnershipDefault ? OwnershipOwned : ownership;
}

bool QuantityVectorExplicitOwnership::contains(const CGrandeur* quantity) const
{
    return m_ownership.contains(quantity);
}

EOwnership QuantityVectorExplicitOwnership::ownership(const CGrandeur* quantity) const
{
    const auto found = m_ownership.find(quantity);
    return found == m_ownership.end() ? OwnershipDefault : found->second;
}

void QuantityVectorExplicitOwnership::append(CGrandeur* quantity, EOwnership ownership)
{
    if (quantity == nullptr) return;
    m_sequence.push_back(quantity);
    m_members.insert(quantity);
    m_ownership[quantity] = ownership;
}

bool QuantityVectorExplicitOwnership::replace(CGrandeur* old, EOwnership* oldOwnership, CGrandeur* replacement,
                                              EOwnership ownership)
{
    const bool replaces = isMember(old) && replacement != nullptr;
    if (oldOwnership != nullptr) *oldOwnership = replaces ? this->ownership(old) : OwnershipDefault;
    if (!replaces) return false;
    std::replace(m_sequence.begin(), m_sequence.end(), old, replacement);
    m_members.erase(old);
    m_members.insert(replacement);
    m_ownership.erase(old);
    m_ownership[replacement] = ownership;
    return true;
}

bool QuantityVectorExplicitOwnership::take(CGrandeur* quantity, EOwnership& ownership)
{
    ownership = isMember(quantity) ? this->ownership(quantity) : OwnershipDefault;
    if (!isMember(quantity)) return false;
    std::erase(m_sequence, quantity);
    m_members.erase(quantity);
    m_ownership.erase(quantity);
    return true;
}

void QuantityVectorExplicitOwnership::clear()
{
    std::set<CGrandeur*> owned;
    for (CGrandeur* quantity : m_sequence) {
        const EOwnership stored = ownership(quantity);
        if ((stored == OwnershipDefault ? m_defaultOwnership : stored) == OwnershipOwned) owned.insert(quantity);
    }
    m_sequence.clear(); // the notes on ownership remain
    m_members.clear();
    for (CGrandeur* quantity : owned) delete quantity;
}

} // namespace ZelmResult
