#pragma once

#include "tools/zmxf/showing/value_text.h"

#include "tools/zmxf/showing/description.h"

#include <string>
#include <unordered_map>
#include <vector>

namespace zmxf::web {

// The quantities that the page was told of, by the number that it gives back for one. Equal ones have one number.
class KnownQuantities {
public:
    // What the page is told of a quantity; null for none.
    Json Describe(const Quantity& quantity);
    // No quantity for a null.
    [[nodiscard]] const Quantity& Find(const Json& number) const;

private:
    std::vector<Quantity> m_all{std::nullopt};
    std::unordered_map<std::string, std::size_t> m_numbers;
};

} // namespace zmxf::web
