#pragma once

#include "zelmresult/support/wstring.h"

#include <array>

namespace ZelmResult {

// The suffixes that the weightings A, B, C and D add to linear and decibel labels, untranslated and in the host's
// language. Until initialize_translated the translated ones equal the untranslated ones. Class-wide and unguarded.
class PonderationString {
public:
    struct Labels {
        wstring lin;
        wstring db;
    };

    // Asks the translation hook again.
    static void initialize_translated();
    // lends the labels of the weighting constants 1 to 4, null for any other.
    static const Labels* translated(int weighting);
    static const Labels* untranslated(int weighting);

    static const wstring& untranslated_PONDERATION_A_LIN_LABEL() { return untranslated(1)->lin; }
    static const wstring& untranslated_PONDERATION_B_LIN_LABEL() { return untranslated(2)->lin; }
    static const wstring& untranslated_PONDERATION_C_LIN_LABEL() { return untranslated(3)->lin; }
    static const wstring& untranslated_PONDERATION_D_LIN_LABEL() { return untranslated(4)->lin; }
    static const wstring& untranslated_PONDERATION_A_DB_LABEL() { return untranslated(1)->db; }
    static const wstring& untranslated_PONDERATION_B_DB_LABEL() { return untranslated(2)->db; }
    static const wstring& untranslated_PONDERATION_C_DB_LABEL() { return untranslated(3)->db; }
    static const wstring& untranslated_PONDERATION_D_DB_LABEL() { return untranslated(4)->db; }
    static const wstring& translated_PONDERATION_A_LIN_LABEL() { return translated(1)->lin; }
    static const wstring& translated_PONDERATION_B_LIN_LABEL() { return translated(2)->lin; }
    static const wstring& translated_PONDERATION_C_LIN_LABEL() { return translated(3)->lin; }
    static const wstring& translated_PONDERATION_D_LIN_LABEL() { return translated(4)->lin; }
    static const wstring& translated_PONDERATION_A_DB_LABEL() { return translated(1)->db; }
    static const wstring& translated_PONDERATION_B_DB_LABEL() { return translated(2)->db; }
    static const wstring& translated_PONDERATION_C_DB_LABEL() { return translated(3)->db; }
    static const wstring& translated_PONDERATION_D_DB_LABEL() { return translated(4)->db; }

private:
    using Table = std::array<Labels, 4>;
    static const Table& UntranslatedTable();
    static Table& TranslatedTable();
};

} // namespace ZelmResult
