#pragma once

#include "tests/builders/record_check.h"
#include "zelmresult/waterfalls/vector_ref.h"

#include <algorithm>
#include <string>
#include <vector>

namespace ZelmResult::test {

// A reference whose values are all held, and which reports its death.
struct Mortal : CVectorRef {
    Mortal(const wstring& name, const std::vector<float>& values, int& deaths)
        : CVectorRef(24, static_cast<int>(values.size()), name, SignalType::Real), m_deaths(deaths)
    {
        std::copy(values.begin(), values.end(), GetRefValue());
        CVectorRef::SetFilled(GetSize());
    }
    Mortal(const Mortal&) = delete;
    Mortal& operator=(const Mortal&) = delete;
    ~Mortal() override { ++m_deaths; }

private:
    int& m_deaths;
};

inline int uncounted = 0; // deaths that no test counts

// gives the reference.
inline Mortal* NewReference(const wstring& name, const std::vector<float>& values = {1, 2}, int& deaths = uncounted)
{
    return new Mortal(name, values, deaths);
}

inline std::vector<float> ValuesOf(const CVectorRef& reference)
{
    const float* values = reference.GetRefValue();
    return values == nullptr ? std::vector<float>{} : std::vector<float>(values, values + reference.GetSize());
}

} // namespace ZelmResult::test
