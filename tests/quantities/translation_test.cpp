#include "zelmresult/quantities/translation.h"

#include "zelmresult/quantities/grandeur.h"
#include "zelmresult/quantities/ponderation_string.h"
#include "zelmresult/quantities/ponderation_unite.h"
#include "zelmresult/quantities/result_strings.h"
#include "zelmresult/quantities/result_weighting_function_string.h"
#include "zelmresult/quantities/user_strings.h"
#include "zelmresult/support/text.h"

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

TEST(Translation, WeightingFunctions)
{
    using Functions = ResultWeightingFunctionString;
    for (int index = 0; index < Functions::weightingFunctionCount(); ++index) { // constants 13 and 14 repeat two others
        const int constant = Functions::index_to_constant(index);
        EXPECT_EQ(constant, index > 12 ? index + 2 : index);
        EXPECT_EQ(Functions::constant_to_index(constant), index);
        EXPECT_EQ(Functions::constant_to_translated_tstring(constant), Functions::index_to_translated_tstring(index));
    }
    EXPECT_EQ(Functions::constant_to_index(13), 9);
    EXPECT_EQ(Functions::index_to_translated_tstring(13), u"We (ISO2631-1)");
    for (const int outside : {-1, 19}) EXPECT_EQ(Functions::index_to_constant(outside), 0);
    for (const int outside : {-1, 21}) EXPECT_EQ(Functions::constant_to_translated_tstring(outside), u"Unknown");
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

// What a function gives for the numbers from -1 to the last.
wstring All(wstring (*textOf)(int), int last)
{
    wstring all;
    for (int i = -1; i <= last; ++i) all += textOf(i) + u"|";
    return all;
}

TEST(UserStringsDeathTest, BeforeAndAfterLoad)
{
    InFreshProcess([] {
        EXPECT_EQ(All(ResultConstString::displayUnitName, 1), u" | | |");
        EXPECT_EQ(All(ResultConstString::integDerivName, 1), u" | | |");
        EXPECT_EQ(All(ResultConstString::weightingNameFromIndex, 1), u"| | |");
        EXPECT_EQ(ResultConstString::weightingName(5), u"1/A") << "not from the tables";
        EXPECT_EQ(CGrandeur::symbolMicro(), u"micro");
        EXPECT_EQ(CUnite::prefix(6), u"u");
        ResultConstString::load();
        const wstring units = u"EU|RMS|Pk|Pk-pk|EU\xB2|PSD (EU\xB2/Hz)|ESD (EU\xB2.s/Hz)|RMS PSD (EU/Hz\xBD)|";
        EXPECT_EQ(All(ResultComplexOperationString::to_translated_tstring, 8), u"Unknown|" + units + u"Unknown|");
        EXPECT_EQ(All(ResultConstString::displayUnitName, 8), u"EU|" + units + u"EU|");
        const wstring operations = u"Normal|dt|dt\xB2|dx/dt|dx\xB2/dt\xB2|";
        EXPECT_EQ(All(ResultTimeOperationString::to_translated_tstring, 5), u"Unknown|" + operations + u"Unknown|");
        EXPECT_EQ(All(ResultConstString::integDerivName, 5), u"Normal|" + operations + u"Normal|");
        EXPECT_EQ(ResultConstString::weightingNameFromIndex(13), u"We (ISO2631-1)") << "15 as a constant";
        EXPECT_EQ(ResultConstString::weightingNameFromIndex(19), u"");
    });
}

TEST(UserStringsDeathTest, TheHookFillsEverythingOnce)
{
    InFreshProcess([] {
        ZelmResult_installTranslationHook(Echo);
        ::setenv("LC_ALL", "de_DE.UTF-8", 1);
        ZelmResult_initializeUserStrings();
        EXPECT_EQ(CGrandeur::M_szSquareSymbol, u"ZelmResultGeneralUserStrings|\xB2");
        EXPECT_EQ(CGrandeur::symbolRootSquare(), u"ZelmResultGeneralUserStrings|\xBD");
        EXPECT_EQ(ResultConstString::displayUnitName(4), u"ResultComplexOperationString|EU\xB2");
        EXPECT_EQ(ResultConstString::integDerivName(9), u"ResultTimeOperationString|Normal");
        EXPECT_EQ(ResultConstString::weightingNameFromIndex(9), u"ResultWeightingFunctionString|Wc (ISO2631-1)");
        EXPECT_EQ(ResultTimeOperationString::to_translated_tstring(5), u"ResultConstString|Unknown");

        ZelmResult_installTranslationHook(Other);
        ::setenv("LC_ALL", "C", 1);
        ZelmResult_initializeUserStrings();
        EXPECT_EQ(CGrandeur::symbolMicro(), u"ZelmResultGeneralUserStrings|u");
        EXPECT_EQ(CUnite::prefix(5) + CUnite::prefix(6) + CUnite::prefix(7), u"n" + CGrandeur::symbolMicro() + u"m");
        EXPECT_EQ(CUnite::M_chRegionalSeparator, u',');
        EXPECT_EQ(ResultConstString::displayUnitName(0), u"ResultComplexOperationString|EU");
        EXPECT_EQ(ResultWeightingFunctionString::index_to_translated_tstring(19), u"ResultConstString|Unknown");
        ResultConstString::load(); // the way of a later change of the language
        EXPECT_EQ(ResultConstString::displayUnitName(0), u"other");
        EXPECT_EQ(ResultWeightingFunctionString::index_to_translated_tstring(19), u"other");
    });
}

TEST(UserStringsDeathTest, SeparatorOfTheRegionalSettings)
{
    for (const char* locale : {"C", "zz_ZZ.UTF-8"}) // the second is none
        InFreshProcess([locale] {
            ::setenv("LC_ALL", locale, 1);
            ZelmResult_initializeUserStrings();
            EXPECT_EQ(CUnite::M_chRegionalSeparator, u'.') << locale;
        });
    InFreshProcess([] {
        ::unsetenv("LC_ALL");
        ::unsetenv("LC_NUMERIC");
        ::setenv("LANG", "de_DE.UTF-8", 1);
        ::setenv("LC_CTYPE", "UTF-8", 1); // names no locale, and says nothing of numbers
        ZelmResult_initializeUserStrings();
        EXPECT_EQ(CUnite::M_chRegionalSeparator, u',');
    });
}

} // namespace
} // namespace ZelmResult
