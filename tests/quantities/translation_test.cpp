#include "zelmresult/quantities/translation.h"

#include "tests/builders/platform.h"
#include "zelmresult/quantities/grandeur.h"
#include "zelmresult/quantities/ponderation_string.h"
#include "zelmresult/quantities/ponderation_unite.h"
#include "zelmresult/quantities/result_strings.h"
#include "zelmresult/quantities/result_weighting_function_string.h"
#include "zelmresult/quantities/user_strings.h"
#include "zelmresult/support/text.h"

#include <clocale>
#include <cstdlib>
#include <gtest/gtest.h>
#include <string>
#include <utility>

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
        {"\xE2\x82\xAC\xC2\xB2", u"\x20AC\xB2"},
        {"a\xF0\x9F\x98\x80z", u"az"}, // beyond 16 bits: goes, with its continuations
        {"a\xC3zb", u"azb"},           // a bad two-byte lead
        {"a\xE2\x82zb", u"a"},         // a bad three-byte form stops it
        {"a\xC3", u"a"},               // forms that the end cuts
        {"a\xE2\x82", u"a"}};
    for (const auto& [text, decoded] : rows) EXPECT_EQ(TranslateUserString("any", text), decoded);

    EXPECT_EQ(TranslateUserString(nullptr, nullptr), u"");
    ZelmResult_installTranslationHook(Echo);
    EXPECT_EQ(TranslateUserString("any", nullptr), u"");
    EXPECT_EQ(TranslateUserString(nullptr, "text"), u"|text");
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
}

// Runs in a process of its own: what is filled at start is filled once, and belongs to all tests.
template <class Check>
void InFreshProcess(Check check)
{
    const auto run = [&] {
        check();
        std::_Exit(::testing::Test::HasFailure() ? 1 : 0);
    };
    EXPECT_EXIT(run(), ::testing::ExitedWithCode(0), "");
}

wstring Other(const char* /*context*/, const char* /*text*/, const char* /*comment*/) { return u"other"; }

TEST(UserStringsDeathTest, TheHookFillsEverythingOnce)
{
    InFreshProcess([] {
        ZelmResult_installTranslationHook(Echo);
        const test::Variable german("LC_ALL", "de_DE.UTF-8"); // where the environment decides
        std::setlocale(LC_ALL, "");
        const auto separator = static_cast<char16_t>(*std::localeconv()->decimal_point);
        ZelmResult_initializeUserStrings();
        EXPECT_EQ(CGrandeur::M_szSquareSymbol, u"ZelmResultGeneralUserStrings|\xB2");
        EXPECT_EQ(CGrandeur::symbolRootSquare(), u"ZelmResultGeneralUserStrings|\xBD");
        EXPECT_EQ(ResultConstString::displayUnitName(4), u"ResultComplexOperationString|EU\xB2");
        EXPECT_EQ(ResultConstString::integDerivName(9), u"ResultTimeOperationString|Normal");
        EXPECT_EQ(ResultConstString::weightingNameFromIndex(9), u"ResultWeightingFunctionString|Wc (ISO2631-1)");
        EXPECT_EQ(ResultTimeOperationString::to_translated_tstring(5), u"ResultConstString|Unknown");

        ZelmResult_installTranslationHook(Other);
        const test::Variable plain("LC_ALL", "C");
        ZelmResult_initializeUserStrings();
        EXPECT_EQ(CGrandeur::symbolMicro(), u"ZelmResultGeneralUserStrings|u");
        EXPECT_EQ(CUnite::prefix(5) + CUnite::prefix(6) + CUnite::prefix(7), u"n" + CGrandeur::symbolMicro() + u"m");
        EXPECT_EQ(CUnite::M_chRegionalSeparator, separator);
        EXPECT_EQ(ResultConstString::displayUnitName(0), u"ResultComplexOperationString|EU");
        EXPECT_EQ(ResultWeightingFunctionString::index_to_translated_tstring(19), u"ResultConstString|Unknown");
        ResultConstString::load(); // the way of a later change of the language
        EXPECT_EQ(ResultConstString::displayUnitName(0), u"other");
        EXPECT_EQ(ResultWeightingFunctionString::index_to_translated_tstring(19), u"other");
    });
}

} // namespace
} // namespace ZelmResult
