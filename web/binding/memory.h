#pragma once

#include "tools/zmxf/showing/description.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace zmxf::web {

// An array that stays in the memory of the module, as both sides name it in JSON: its address and how many there are.
template <class T>
Json PlaceJson(std::span<const T> values)
{
    return {{"address", reinterpret_cast<std::uintptr_t>(values.data())}, {"count", values.size()}};
}

// Lent by the page for as long as the call runs, or given by it, as the call has it.
template <class T>
std::span<T> PlaceIn(const Json& json)
{
    return {reinterpret_cast<T*>(json.at("address").get<std::uintptr_t>()), json.at("count").get<std::size_t>()};
}

} // namespace zmxf::web
