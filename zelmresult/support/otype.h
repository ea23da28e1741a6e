#pragma once

#include <cstdint>

// Kinds of processing: what made a result.

namespace otype {

// One processing step as a plain number.
class ElementaryResultProcess {
public:
    ElementaryResultProcess() = default;
    static ElementaryResultProcess fromInteger(std::int32_t code) { return ElementaryResultProcess(code); }
    [[nodiscard]] std::int32_t toInteger() const { return m_code; }

    bool operator==(const ElementaryResultProcess&) const = default;

private:
    explicit ElementaryResultProcess(std::int32_t code) : m_code(code) {}

    std::int32_t m_code = 0;
};

// Two steps; the second is 0 when there is only one.
class ResultProcess {
public:
    ResultProcess() = default;
    static ResultProcess fromElementaryCouple(ElementaryResultProcess first, ElementaryResultProcess second)
    {
        ResultProcess process;
        process.m_first = first;
        process.m_second = second;
        return process;
    }
    [[nodiscard]] ElementaryResultProcess first() const { return m_first; }
    [[nodiscard]] ElementaryResultProcess second() const { return m_second; }

    bool operator==(const ResultProcess&) const = default;

private:
    ElementaryResultProcess m_first;
    ElementaryResultProcess m_second;
};

enum class EResultProcessUnitType : std::int32_t { First = 0, Second = 1 };

class ResultProcess_lowlevel {
public:
    // Which of the two kinds of unit a process has. Every known process has the first.
    static EResultProcessUnitType unitType(const ResultProcess& /*process*/) { return EResultProcessUnitType::First; }
};

} // namespace otype
