#pragma once

#include "zelmresult/support/idn.h"

#include <cstdint>
#include <vector>

namespace ZelmResult {

// The number of a window; any number is a legal value.
enum class EWeightingWindow : std::int32_t {};

// The window that an analysis weighted its blocks with, by its number: -1 for an unknown one, 0 for none.
class WeightingWindow {
public:
    // The legal numbers, in their order.
    static const std::vector<EWeightingWindow>& all();

    WeightingWindow(EWeightingWindow window) : m_window(window) {}
    // A number that isn't legal becomes 0, here and below.
    WeightingWindow(int number) { set(number); }
    WeightingWindow(std::uint16_t number) { set(number); }
    // By the number of the kind.
    WeightingWindow(const idn::Submodule& submodule) { set(static_cast<int>(submodule.kind)); }
    WeightingWindow(idn::ESubmoduleCollection collection) { set(static_cast<int>(collection)); }

    void set(int number);
    [[nodiscard]] int toInt() const { return static_cast<int>(m_window); }
    [[nodiscard]] std::uint16_t toUnsignedShort() const { return static_cast<std::uint16_t>(m_window); }
    [[nodiscard]] EWeightingWindow toWeightingWindow() const { return m_window; }
    [[nodiscard]] idn::ESubmoduleCollection toSubmoduleCollection() const;
    [[nodiscard]] idn::Submodule toSubmodule() const; // the first of its kind
    [[nodiscard]] idn::Idn toIdn() const;
    // Whether an identifier means a window, other than -1 and 0.
    static bool isWindowIdn(const idn::Idn& idn);

    bool operator==(const WeightingWindow&) const = default;

private:
    EWeightingWindow m_window{};
};

} // namespace ZelmResult
