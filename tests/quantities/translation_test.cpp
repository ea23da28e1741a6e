#include "zelmresult/quantities/translation.h"

#include "zelmresult/quantities/ponderation_string.h"
#include "zelmresult/quantities/ponderation_unite.h"
#include "zelmresult/quantities/result_weighting_function_string.h"
#include "zelmresult/support/text.h"

#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace ZelmResult {
namespace {

// Answers with what it was asked.
wstring Echo(const char* context, const char* text, const char* comment)
{
    return Concat(FromUtf8(context), u"|", FromUtf8(text), comment == nullptr ? u"" : u"|?");
}

TEST(Translation, DecodesWithoutAHookAndAsksOne)
{
    const std::pair<const char*, wstring> rows[] = {
        {"EU\xC2\xB2", u"EU\xB2"},
        {"\xE2\x82\xAC", u"\x20AC"},
        {"a\xF0\x9F\x98\x80z", u"az"}, // beyond 16 bits: goes, with its continuations
        {"a\x80z", u"az"},             // a stray continuation
        {"a\xC3zb", u"azb"},           // a bad two-byte lead
        {"a\xE2\x82zb", u"a"},         // a bad three-byte form stops it
        {"a\xC3", u"a"},               // forms that the end cuts
        {"a\xE2\x82", u"a"}};
    for (const auto& [text, decoded] : rows) EXPECT_EQ(TranslateUserString("any", text), decoded);

    ZelmResult_installTranslationHook(Echo);
    EXPECT_EQ(TranslateUserString("C", "t\xC2\xB2"), u"C|t\xB2");
    EXPECT_EQ(CPonderationUnite::GetFunctionName(0), u"");
    EXPECT_EQ(CPonderationUnite::GetFunctionName(5), u"ResultWeightingFunctionString|1/A");
    EXPECT_EQ(CPonderationUnite::GetFunctionName(21), u"ResultConstString|Unknown");
    EXPECT_EQ(PonderationString::translated_PONDERATION_C_LIN_LABEL(), u"(C)") << "not asked yet";
    CPonderationUnite::loadString();
    CPonderationUnite weighting;
    weighting.SetPonderationLabelUnite(4);
    EXPECT_EQ(weighting.lin() + weighting.db(), u"PonderationString|(D)PonderationString|D");
    EXPECT_EQ(PonderationString::untranslated_PONDERATION_C_DB_LABEL(), u"C");
    ZelmResult_installTranslationHook(nullptr);
    CPonderationUnite::loadString();
    EXPECT_EQ(PonderationString::translated_PONDERATION_C_DB_LABEL(), u"C");
}

TEST(Translation, WeightingFunctions)
{
    using Functions = ResultWeightingFunctionString;
    const char* const listed = "No weighting|A|B|C|D|1/A|1/(A*D)|(A*D)|(A*D*200-5000Hz)|Wc (ISO2631-1)|Wd (ISO2631-1)|"
                               "Wk (ISO2631-1)|Wb (ISO2631-4)|We (ISO2631-1)|Wf (ISO2631-1)|Wg (BSI6841)|"
                               "Wh (ISO5349-1)|Wj (ISO2631-1)|Wm (ISO2631-2)";
    std::vector<wstring> names;
    std::istringstream in(listed);
    for (std::string name; std::getline(in, name, '|');) names.push_back(FromUtf8(name));
    const int indexes[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 9, 10, 13, 14, 15, 16, 17, 18};
    for (int constant = 0; constant <= 20; ++constant) {
        const int index = indexes[constant];
        EXPECT_EQ(Functions::constant_to_index(constant), index) << constant;
        const wstring& name = names.at(static_cast<std::size_t>(index));
        EXPECT_EQ(Functions::constant_to_translated_tstring(constant), name);
        EXPECT_EQ(Functions::index_to_translated_tstring(index), name);
        const bool older = constant == 13 || constant == 14;
        EXPECT_EQ(Functions::index_to_constant(index), older ? index : constant);
    }
    EXPECT_TRUE(Functions::constant_to_index(-1) == -1 && Functions::constant_to_index(21) == -1);
    EXPECT_TRUE(Functions::index_to_constant(-1) == 0 && Functions::index_to_constant(19) == 0);
    EXPECT_EQ(Functions::constant_to_translated_tstring(21), u"Unknown");
    EXPECT_EQ(Functions::index_to_translated_tstring(-1), u"Unknown");
    EXPECT_EQ(Functions::weightingFunctionCount(), 18) << "one less than there are indexes";
}

} // namespace
} // namespace ZelmResult
