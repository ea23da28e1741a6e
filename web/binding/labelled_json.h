#pragma once

#include "web/binding/known_quantities.h"

#include "zelmresult/reading/labelled_result.h"

#include <deque>
#include <vector>

namespace zmxf::web {

// A result as the page gets it. Its arrays stay where they are, so the object must live until the page has taken them.
class ToldResult {
public:
    ToldResult(ZelmResult::LabelledResult result, KnownQuantities& quantities);

    // Form, arrays, axes; without the header.
    [[nodiscard]] const Json& json() const { return m_json; }

private:
    Json ArraysJson(const std::vector<ZelmResult::LabelledArray>& arrays, KnownQuantities& quantities);
    void AddValues(const ZelmResult::LabelledArray& array, Json& json);
    void AddComplex(const std::vector<std::complex<float>>& values, Json& json);
    Json Keep(std::vector<float> values);

    ZelmResult::LabelledResult m_result;
    std::deque<std::vector<float>> m_kept; // what was made of complex values
    Json m_json;
};

} // namespace zmxf::web
