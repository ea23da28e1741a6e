#include "web/binding/known_quantities.h"

#include "tools/zmxf/base/text.h"

namespace zmxf::web {

Json KnownQuantities::Describe(const Quantity& quantity)
{
    Json json = QuantityJson(quantity);
    if (!quantity) return json;
    const auto [place, isNew] = m_numbers.try_emplace(IndentedJson(json), m_all.size());
    if (isNew) m_all.push_back(quantity);
    json["handle"] = place->second;
    json["dimensionText"] = DimensionText(*quantity);
    json["siSymbol"] = JsonText(quantity->siSymbol);
    json["unit"] = UnitLabel(quantity);
    json["decibels"] = HasDecibels(quantity) ? Json{{"referenceText", DecibelReference(quantity)}} : Json(nullptr);
    return json;
}

const Quantity& KnownQuantities::Find(const Json& number) const
{
    return m_all.at(number.is_null() ? 0 : number.get<std::size_t>());
}

} // namespace zmxf::web
