#pragma once

#include "zelmresult/support/wstring.h"

namespace ZelmResult {

// The suffix that a frequency weighting adds to the labels of a unit. A plain value.
class CPonderationUnite {
public:
    CPonderationUnite() = default;

    // Takes the suffixes and the abbreviation of a weighting function by its constant; only 1 to 4 (A, B, C, D) have
    // suffixes, and every other constant clears them.
    void SetPonderationLabelUnite(int function);
    // The name of a weighting function, empty for 0 (no weighting), the text for an unknown value otherwise.
    static wstring GetFunctionName(int function);
    // Reads the suffixes again after a change of the language.
    static void loadString();

    [[nodiscard]] bool hasLinString() const { return m_hasLinString; }
    [[nodiscard]] bool hasDbString() const { return m_hasDbString; }
    [[nodiscard]] const wstring& lin() const { return m_lin; }
    [[nodiscard]] const wstring& db() const { return m_db; }
    [[nodiscard]] const wstring& abreviation() const { return m_abreviation; }
    void setHasLinString(bool has) { m_hasLinString = has; }
    void setHasDbString(bool has) { m_hasDbString = has; }
    void set_lin(const wstring& suffix) { m_lin = suffix; }
    void set_db(const wstring& suffix) { m_db = suffix; }
    void set_abreviation(const wstring& name) { m_abreviation = name; }

private:
    bool m_hasLinString = false;
    bool m_hasDbString = false;
    wstring m_lin;
    wstring m_db;
    wstring m_abreviation;
};

} // namespace ZelmResult
