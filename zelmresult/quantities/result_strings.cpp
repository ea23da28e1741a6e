#include "zelmresult/quantities/result_strings.h"

#include "zelmresult/quantities/result_weighting_function_string.h"
#include "zelmresult/quantities/translation.h"

#include <array>
#include <optional>

namespace ZelmResult {

namespace {

constexpr std::array<const char*, 8> kDisplayUnits = {
    "EU", "RMS", "Pk", "Pk-pk", "EU²", "PSD (EU²/Hz)", "ESD (EU².s/Hz)", "RMS PSD (EU/Hz½)"};
constexpr std::array<const char*, 5> kTimeOperations = {"Normal", "dt", "dt²", "dx/dt", "dx²/dt²"};
constexpr std::size_t kWeightings = 19;

template <std::size_t n>
wstring Translated(const char* context, const std::array<const char*, n>& texts, int index)
{
    const bool known = index >= 0 && static_cast<std::size_t>(index) < n;
    return known ? TranslateUserString(context, texts[static_cast<std::size_t>(index)])
                 : ResultConstString::unknownName();
}

template <std::size_t n>
const wstring& EntryOr0(const std::array<wstring, n>& texts, int index)
{
    const bool known = index >= 0 && static_cast<std::size_t>(index) < n;
    return texts[known ? static_cast<std::size_t>(index) : 0];
}

template <std::size_t n>
std::array<wstring, n> Blanks()
{
    std::array<wstring, n> texts;
    texts.fill(u" ");
    return texts;
}

struct Loaded {
    std::array<wstring, kWeightings> weightings = Blanks<kWeightings>();
    std::array<wstring, kDisplayUnits.size()> displayUnits = Blanks<kDisplayUnits.size()>();
    std::array<wstring, kTimeOperations.size()> timeOperations = Blanks<kTimeOperations.size()>();
    std::optional<wstring> unknown;
};

Loaded& TheLoaded()
{
    static Loaded loaded;
    return loaded;
}

wstring TranslateUnknown() { return TranslateUserString("ResultConstString", "Unknown"); }

// Fills a table with the text of each index.
template <std::size_t n>
void Fill(std::array<wstring, n>& texts, wstring (*textOf)(int))
{
    for (std::size_t i = 0; i < n; ++i) texts[i] = textOf(static_cast<int>(i));
}

} // namespace

wstring ResultComplexOperationString::to_translated_tstring(int operation)
{
    return Translated("ResultComplexOperationString", kDisplayUnits, operation);
}

wstring ResultTimeOperationString::to_translated_tstring(int operation)
{
    return Translated("ResultTimeOperationString", kTimeOperations, operation);
}

void ResultConstString::load()
{
    TheLoaded().unknown = TranslateUnknown();
    Fill(TheLoaded().weightings, ResultWeightingFunctionString::index_to_translated_tstring);
    Fill(TheLoaded().displayUnits, ResultComplexOperationString::to_translated_tstring);
    Fill(TheLoaded().timeOperations, ResultTimeOperationString::to_translated_tstring);
}

wstring ResultConstString::weightingName(int constant)
{
    return ResultWeightingFunctionString::constant_to_translated_tstring(constant);
}

wstring ResultConstString::weightingNameFromIndex(int index)
{
    return index < 0 || index >= static_cast<int>(kWeightings) ? wstring() : EntryOr0(TheLoaded().weightings, index);
}

wstring ResultConstString::displayUnitName(int unit) { return EntryOr0(TheLoaded().displayUnits, unit); }
wstring ResultConstString::integDerivName(int operation) { return EntryOr0(TheLoaded().timeOperations, operation); }

wstring ResultConstString::unknownName()
{
    const auto& loaded = TheLoaded().unknown;
    return loaded ? *loaded : TranslateUnknown();
}

wstring ResultDiag::operatedStyle(int style)
{
    switch (style) {
    case 0: return u"NON_OPERATED_RESULT";
    case 1: return u"MODULE_PHASE_RESULT";
    case 2: return u"REAL_IMAGINARY_RESULT";
    default: return u"Unknown result operated style";
    }
}

wstring ResultDiag::spectralOperatedStyle(int style)
{
    switch (style) {
    case 0: return u"NON_SPECTRAL_RESULT";
    case 1: return u"SPECTRAL_NOT_OPERATED_RESULT";
    case 2: return u"SPECTRAL_OPERATED_RESULT";
    default: return u"Unknown spectral operated result";
    }
}

} // namespace ZelmResult
