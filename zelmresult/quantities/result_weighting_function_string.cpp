#include "zelmresult/quantities/result_weighting_function_string.h"

#include "zelmresult/quantities/result_strings.h"
#include "zelmresult/quantities/translation.h"

#include <array>

namespace ZelmResult {

namespace {

struct WeightingFunction {
    int index;
    const char* name;
};

// By constant.
constexpr std::array<WeightingFunction, 21> kFunctions = {{
    {0, "No weighting"},
    {1, "A"},
    {2, "B"},
    {3, "C"},
    {4, "D"},
    {5, "1/A"},
    {6, "1/(A*D)"},
    {7, "(A*D)"},
    {8, "(A*D*200-5000Hz)"},
    {9, "Wc (ISO2631-1)"},
    {10, "Wd (ISO2631-1)"},
    {11, "Wk (ISO2631-1)"},
    {12, "Wb (ISO2631-4)"},
    {9, "Wc (ISO2631-1)"},
    {10, "Wd (ISO2631-1)"},
    {13, "We (ISO2631-1)"},
    {14, "Wf (ISO2631-1)"},
    {15, "Wg (BSI6841)"},
    {16, "Wh (ISO5349-1)"},
    {17, "Wj (ISO2631-1)"},
    {18, "Wm (ISO2631-2)"},
}};
constexpr int kLastIndex = 18;

bool IsConstant(int constant) { return constant >= 0 && constant < static_cast<int>(kFunctions.size()); }
const WeightingFunction& Function(int constant) { return kFunctions[static_cast<std::size_t>(constant)]; }

} // namespace

wstring ResultWeightingFunctionString::constant_to_translated_tstring(int constant)
{
    return IsConstant(constant) ? TranslateUserString("ResultWeightingFunctionString", Function(constant).name)
                                : ResultConstString::unknownName();
}

wstring ResultWeightingFunctionString::index_to_translated_tstring(int index)
{
    return index < 0 || index > kLastIndex ? ResultConstString::unknownName()
                                           : constant_to_translated_tstring(index_to_constant(index));
}

int ResultWeightingFunctionString::constant_to_index(int constant)
{
    return IsConstant(constant) ? Function(constant).index : -1;
}

int ResultWeightingFunctionString::index_to_constant(int index)
{
    if (index < 0 || index > kLastIndex) return 0;
    int constant = 0;
    while (Function(constant).index != index) ++constant;
    return constant;
}

} // namespace ZelmResult
