#include "zelmresult/quantities/user_strings.h"

#include "zelmresult/quantities/grandeur.h"
#include "zelmresult/quantities/result_strings.h"
#include "zelmresult/quantities/translation.h"
#include "zelmresult/support/text.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <set>
#include <string>

namespace ZelmResult {
namespace {

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

std::set<std::string> g_asked;

// Answers with what it was asked.
wstring Echo(const char* context, const char* text, const char* comment)
{
    g_asked.insert(context);
    return Concat(FromUtf8(context), u"|", FromUtf8(text), comment == nullptr ? u"" : u"|?");
}
wstring Other(const char* /*context*/, const char* /*text*/, const char* /*comment*/) { return u"other"; }

const wstring kDisplayUnits[] = {
    u"EU", u"RMS", u"Pk", u"Pk-pk", u"EU\xB2", u"PSD (EU\xB2/Hz)", u"ESD (EU\xB2.s/Hz)", u"RMS PSD (EU/Hz\xBD)"};
const wstring kTimeOperations[] = {u"Normal", u"dt", u"dt\xB2", u"dx/dt", u"dx\xB2/dt\xB2"};

TEST(UserStringsDeathTest, BeforeAndAfterLoad)
{
    InFreshProcess([] {
        for (const int i : {-1, 0, 7, 18}) {
            EXPECT_TRUE(ResultConstString::displayUnitName(i) == u" " && ResultConstString::integDerivName(i) == u" ");
            EXPECT_EQ(ResultConstString::weightingNameFromIndex(i), i < 0 ? u"" : u" ");
        }
        EXPECT_EQ(ResultConstString::weightingName(5), u"1/A") << "not from the tables";
        EXPECT_TRUE(CGrandeur::symbolMicro() == u"micro" && CGrandeur::symbolSquare() == u"2");
        EXPECT_TRUE(CGrandeur::symbolRootSquare() == u"1/2" && CUnite::prefix(6) == u"u");
        EXPECT_EQ(CUnite::M_chRegionalSeparator, u'.');
        ResultConstString::load();
        for (int i = -1; i <= 8; ++i) {
            const bool known = i >= 0 && i < 8;
            EXPECT_EQ(ResultComplexOperationString::to_translated_tstring(i), known ? kDisplayUnits[i] : u"Unknown");
            EXPECT_EQ(ResultConstString::displayUnitName(i), kDisplayUnits[known ? i : 0]);
        }
        for (int i = -1; i <= 5; ++i) {
            const bool known = i >= 0 && i < 5;
            EXPECT_EQ(ResultTimeOperationString::to_translated_tstring(i), known ? kTimeOperations[i] : u"Unknown");
            EXPECT_EQ(ResultConstString::integDerivName(i), kTimeOperations[known ? i : 0]);
        }
        EXPECT_EQ(ResultConstString::weightingNameFromIndex(0), u"No weighting");
        EXPECT_EQ(ResultConstString::weightingNameFromIndex(13), u"We (ISO2631-1)") << "15 as a constant";
        EXPECT_EQ(ResultConstString::weightingNameFromIndex(18), u"Wm (ISO2631-2)");
        EXPECT_EQ(ResultConstString::weightingNameFromIndex(19), u"");
        EXPECT_EQ(ResultConstString::weightingName(21), u"Unknown");
    });
}

TEST(UserStringsDeathTest, TheHookFillsEverythingOnce)
{
    InFreshProcess([] {
        ZelmResult_installTranslationHook(Echo);
        ::setenv("LC_ALL", "de_DE.UTF-8", 1);
        ZelmResult_initializeUserStrings();
        EXPECT_EQ(g_asked, (std::set<std::string>{"ZelmResultGeneralUserStrings", "ResultComplexOperationString",
                                                  "ResultTimeOperationString", "ResultWeightingFunctionString"}));
        EXPECT_EQ(CGrandeur::symbolMicro(), u"ZelmResultGeneralUserStrings|u");
        EXPECT_EQ(CGrandeur::symbolSquare(), u"ZelmResultGeneralUserStrings|\xB2");
        EXPECT_EQ(CGrandeur::symbolRootSquare(), u"ZelmResultGeneralUserStrings|\xBD");
        EXPECT_EQ(CUnite::prefix(6), CGrandeur::symbolMicro());
        EXPECT_EQ(CUnite::prefix(5) + CUnite::prefix(7), u"nm");
        EXPECT_EQ(ResultConstString::displayUnitName(4), u"ResultComplexOperationString|EU\xB2");
        EXPECT_EQ(ResultConstString::integDerivName(9), u"ResultTimeOperationString|Normal");
        EXPECT_EQ(ResultConstString::weightingNameFromIndex(9), u"ResultWeightingFunctionString|Wc (ISO2631-1)");
        EXPECT_EQ(ResultTimeOperationString::to_translated_tstring(5), u"ResultConstString|Unknown");
        EXPECT_EQ(ZelmResult_translationExample(2), u"TranslationExample|\xB0 \xB2 \xB3 \xA9 \xBD \xB5 \xA4 "
                                                    u"(8-bit characters)");
        EXPECT_EQ(CUnite::M_chRegionalSeparator, u',');

        ZelmResult_installTranslationHook(Other);
        ::setenv("LC_ALL", "C", 1);
        ZelmResult_initializeUserStrings();
        EXPECT_EQ(CGrandeur::symbolMicro(), u"ZelmResultGeneralUserStrings|u");
        EXPECT_EQ(CUnite::M_chRegionalSeparator, u',');
        EXPECT_EQ(ResultConstString::displayUnitName(0), u"ResultComplexOperationString|EU");
        ResultConstString::load(); // the way of a later change of the language
        EXPECT_EQ(ResultConstString::displayUnitName(0), u"other");
        EXPECT_EQ(ResultConstString::weightingNameFromIndex(18), u"other");
    });
}

TEST(UserStringsDeathTest, SeparatorOfTheRegionalSettings)
{
    const std::pair<const char*, char16_t> rows[] = {
        {"C", u'.'}, {"en_US.UTF-8", u'.'}, {"de_DE.UTF-8", u','}, {"zz_ZZ.UTF-8", u'.'}};
    for (const auto& row : rows) {
        InFreshProcess([&row] {
            ::setenv("LC_ALL", row.first, 1);
            ZelmResult_initializeUserStrings();
            EXPECT_EQ(CUnite::M_chRegionalSeparator, row.second) << row.first;
            EXPECT_TRUE(CGrandeur::symbolMicro() == u"u" && CUnite::prefix(6) == u"u");
        });
    }
}

TEST(UserStrings, ExamplesAndDiagnostics)
{
    EXPECT_EQ(ZelmResult_hinstance(), nullptr);
    EXPECT_EQ(ZelmResult_translationExample(1), u"This is a translation example for ZelmResult.");
    EXPECT_EQ(ZelmResult_translationExample(3), u"This text is not present in the qm file, and contains utf8: "
                                                u"\xB0 \xB2 \xB3 \xA9 \xBD \xB5 \xA4");
    EXPECT_EQ(ResultDiag::operatedStyle(0), u"NON_OPERATED_RESULT");
    EXPECT_EQ(ResultDiag::operatedStyle(OperatedStyle::ModulePhase), u"MODULE_PHASE_RESULT");
    EXPECT_EQ(ResultDiag::operatedStyle(2), u"REAL_IMAGINARY_RESULT");
    EXPECT_EQ(ResultDiag::operatedStyle(3), u"Unknown result operated style");
    EXPECT_EQ(ResultDiag::spectralOperatedStyle(0), u"NON_SPECTRAL_RESULT");
    EXPECT_EQ(ResultDiag::spectralOperatedStyle(1), u"SPECTRAL_NOT_OPERATED_RESULT");
    EXPECT_EQ(ResultDiag::spectralOperatedStyle(SpectralOperatedStyle::SpectralOperated), u"SPECTRAL_OPERATED_RESULT");
    EXPECT_EQ(ResultDiag::spectralOperatedStyle(-1), u"Unknown spectral operated result");
}

} // namespace
} // namespace ZelmResult
