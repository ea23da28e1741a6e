#pragma once

#include "zelmresult/support/wstring.h"

#include <cstdint>

namespace ZelmResult {

// How the amplitude of a result is shown: 0 EU, 1 RMS, 2 peak, 3 peak to peak, 4 to 7 the densities.
class ResultComplexOperationString {
public:
    static wstring to_translated_tstring(int operation); // "Unknown" for any other value
};

// Integration and derivation: 0 none, 1 and 2 once and twice in time, 3 and 4 derived.
class ResultTimeOperationString {
public:
    static wstring to_translated_tstring(int operation); // "Unknown" for any other value
};

// The names of weightings, displays and derivations in the host's language, kept in tables that load fills. Until then
// every name is a single blank. Class-wide and unguarded.
class ResultConstString {
public:
    // Asks the translation hook again.
    static void load();
    static wstring weightingName(int constant);
    static wstring weightingNameFromIndex(int index); // empty for an index outside 0 to 18
    static wstring displayUnitName(int unit);         // that of 0 for a value outside 1 to 7
    static wstring integDerivName(int operation);     // that of 0 for a value outside 1 to 4
    // The name of a value that has none, "Unknown" in the comments here: the text that load got from the hook, or
    // before the first load what the hook gives now.
    static wstring unknownName();
};

enum class OperatedStyle : std::int32_t { NonOperated = 0, ModulePhase = 1, RealImaginary = 2 };
enum class SpectralOperatedStyle : std::int32_t { NonSpectral = 0, SpectralNotOperated = 1, SpectralOperated = 2 };

// Names of enumerations for diagnostics, the same in every language.
class ResultDiag {
public:
    static wstring operatedStyle(int style);
    static wstring operatedStyle(OperatedStyle style) { return operatedStyle(static_cast<int>(style)); }
    static wstring spectralOperatedStyle(int style);
    static wstring spectralOperatedStyle(SpectralOperatedStyle style)
    {
        return spectralOperatedStyle(static_cast<int>(style));
    }
};

} // namespace ZelmResult
