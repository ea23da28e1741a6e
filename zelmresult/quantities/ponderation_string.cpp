#include "zelmresult/quantities/ponderation_string.h"

#include "zelmresult/quantities/translation.h"
#include "zelmresult/support/text.h"

namespace ZelmResult {

const PonderationString::Table& PonderationString::UntranslatedTable()
{
    static const Table table = {Labels{u"(A)", u"A"}, Labels{u"(B)", u"B"}, Labels{u"(C)", u"C"}, Labels{u"(D)", u"D"}};
    return table;
}

PonderationString::Table& PonderationString::TranslatedTable()
{
    static Table table = UntranslatedTable();
    return table;
}

void PonderationString::initialize_translated()
{
    const auto translate = [](const wstring& text) {
        return TranslateUserString("PonderationString", ToUtf8(text).c_str());
    };
    for (std::size_t i = 0; i < TranslatedTable().size(); ++i)
        TranslatedTable()[i] = {translate(UntranslatedTable()[i].lin), translate(UntranslatedTable()[i].db)};
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
