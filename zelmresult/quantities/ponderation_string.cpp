#include "zelmresult/quantities/ponderation_string.h"

#include "zelmresult/quantities/translation.h"
#include "zelmresult/support/text.h"

namespace ZelmResult {

namespace {

struct Texts {
    const char* lin;
    const char* db;
};

constexpr std::array<Texts, 4> kTexts = {Texts{"(A)", "A"}, {"(B)", "B"}, {"(C)", "C"}, {"(D)", "D"}};

} // namespace

const PonderationString::Table& PonderationString::UntranslatedTable()
{
    static const Table table = [] {
        Table texts;
        for (std::size_t i = 0; i < texts.size(); ++i) texts[i] = {FromUtf8(kTexts[i].lin), FromUtf8(kTexts[i].db)};
        return texts;
    }();
    return table;
}

PonderationString::Table& PonderationString::TranslatedTable()
{
    static Table table = UntranslatedTable();
    return table;
}

void PonderationString::initialize_translated()
{
    const auto translate = [](const char* text) { return TranslateUserString("PonderationString", text); };
    for (std::size_t i = 0; i < kTexts.size(); ++i)
        TranslatedTable()[i] = {translate(kTexts[i].lin), translate(kTexts[i].db)};
}

const PonderationString::Labels* PonderationString::translated(int weighting)
{
    return weighting >= 1 && weighting <= 4 ? &TranslatedTable()[static_cast<std::size_t>(weighting - 1)] : nullptr;
}

const PonderationString::Labels* PonderationString::untranslated(int weighting)
{
    return weighting >= 1 && weighting <= 4 ? &UntranslatedTable()[static_cast<std::size_t>(weighting - 1)] : nullptr;
}

} // namespace ZelmResult
