#pragma once

#include "zelmresult/quantities/grandeur.h"

#include <cstdint>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace ZelmResult {

// A list of quantities that owns none of them.
class CGrandeurVector : public std::vector<CGrandeur*> {
public:
    CGrandeurVector() = default;
    CGrandeurVector(const CGrandeurVector&) = default;
    CGrandeurVector& operator=(const CGrandeurVector&) = default;
    virtual ~CGrandeurVector() = default;
};

// Who deletes a quantity. With any other number the caller does.
enum EOwnership : std::int32_t {
    OwnershipDefault = 0, // as the list's default says
    OwnershipOwned = 1,   // the list
    OwnershipCaller = 2
};

// Quantities in the order of their insertion, each with a note of who deletes it. clear, and with it the destructor,
// deletes the owned ones. Copies are flat: only one of them may be cleared with owned quantities in it.
class QuantityVectorExplicitOwnership {
public:
    QuantityVectorExplicitOwnership() = default;
    QuantityVectorExplicitOwnership(const QuantityVectorExplicitOwnership&) = default;
    QuantityVectorExplicitOwnership& operator=(const QuantityVectorExplicitOwnership&) = default;
    ~QuantityVectorExplicitOwnership() { clear(); }

    // What OwnershipDefault means; at first OwnershipOwned. Given OwnershipDefault, it stores OwnershipOwned.
    void setDefaultOwnership(EOwnership ownership);
    [[nodiscard]] EOwnership defaultOwnership() const { return m_defaultOwnership; }

    [[nodiscard]] std::size_t size() const { return m_sequence.size(); }
    [[nodiscard]] bool empty() const { return m_sequence.empty(); }
    [[nodiscard]] auto begin() const { return m_sequence.begin(); }
    [[nodiscard]] auto end() const { return m_sequence.end(); }
    // lends the quantity at that place, which must exist.
    [[nodiscard]] CGrandeur* value(std::size_t index) const { return m_sequence[index]; }
    // Whether there is a note on its ownership. Notes outlive clear, so ask isMember for what the list holds.
    [[nodiscard]] bool contains(const CGrandeur* quantity) const;
    [[nodiscard]] bool isMember(const CGrandeur* quantity) const { return m_members.contains(quantity); }
    [[nodiscard]] EOwnership ownership(const CGrandeur* quantity) const; // OwnershipDefault when unknown
    // takes the quantity when the list is to own it, else keeps a pointer. Null adds nothing.
    void append(CGrandeur* quantity, EOwnership ownership);
    // Replaces old by another quantity. The caller gets old back; oldOwnership, unless null, is set to the ownership
    // that old had. False, OwnershipDefault, and no change, when old isn't in the list or the replacement is null.
    bool replace(CGrandeur* old, EOwnership* oldOwnership, CGrandeur* replacement, EOwnership ownership);
    // Removes a quantity from the list, and gives it. False, and OwnershipDefault, when it isn't in the list.
    bool take(CGrandeur* quantity, EOwnership& ownership);
    // Deletes the owned quantities, each once even if it is listed twice, and empties the list.
    void clear();

private:
    EOwnership m_defaultOwnership = OwnershipOwned;
    std::vector<CGrandeur*> m_sequence;
    std::unordered_set<const CGrandeur*> m_members; // of the sequence
    std::unordered_map<const CGrandeur*, EOwnership> m_ownership;
};

} // namespace ZelmResult
