#include "zelmresult/document/save_reason.h"

#include "zelmresult/document/result_header.h"
#include "zelmresult/quantities/grandeur.h"
#include "zelmresult/quantities/translation.h"
#include "zelmresult/support/text.h"

namespace ZelmResult {

namespace {

wstring Sentence(const char* text, const wstring& first = {}, const wstring& second = {})
{
    return FillPlaceholders(TranslateUserString("SaveReason", text), first, second);
}

wstring Number(std::size_t number) { return ToDecimal(static_cast<std::int64_t>(number)); }

// "12 (Channel 1)"
wstring Named(std::int32_t number, const CResultHeader& header)
{
    const wstring caption = header.caption();
    return caption.empty() ? ToDecimal(number) : Concat(number, u" (", caption, u")");
}

} // namespace

wstring SaveReason::TooManyQuantities(std::size_t count)
{
    return Sentence("The document has %1 quantities. Only the first 9999 have a code of their own: what uses others "
                    "comes back with the wrong one.",
                    Number(count));
}

wstring SaveReason::QuantityMerged(const CGrandeur& quantity)
{
    return Sentence(
        "Several quantities %1 have the same key and dimension but another unit or other operands: they come "
        "back as the first of them.",
        quantity.GetNomGrandeur());
}

wstring SaveReason::OperandsTooDeep(const CGrandeur& quantity)
{
    return Sentence("The quantity %1 is built from itself, or more than 64 deep from others: every load refuses that.",
                    quantity.GetNomGrandeur());
}

wstring SaveReason::UnlistedOperand(const CGrandeur& quantity, const CGrandeur& operand)
{
    return Sentence("The quantity %1 is built from the quantity %2, which isn't in the document's list.",
                    quantity.GetNomGrandeur(), operand.GetNomGrandeur());
}

wstring SaveReason::TooManySystems(std::size_t count)
{
    return Sentence("The document has %1 systems. A file holds 17.", Number(count));
}

wstring SaveReason::PreviewsAlone()
{
    return Sentence("All results of the document are recording previews: no load looks for results then.");
}

wstring SaveReason::FormTooEmpty()
{
    return Sentence(
        "The document reserves far more memory than it fills: every load refuses so much memory to so small a file.");
}

wstring SaveReason::ResultsWithoutCode()
{
    return Sentence("The document has more than 10000 results: those after them come back with the data of others.");
}

wstring SaveReason::ResultWithoutData(std::int32_t number, const CResultHeader& header)
{
    return Sentence("Result %1 has a header but no data, so it isn't stored.", Named(number, header));
}

wstring SaveReason::ResultOfOtherKind(std::int32_t number, const CResultHeader& header)
{
    return Sentence("Result %1 isn't of the class that its header calls for: it can't be read back.",
                    Named(number, header));
}

wstring SaveReason::ResultWithUnlistedQuantity(std::int32_t number, const CResultHeader& header, const CGrandeur& used)
{
    return Sentence("Result %1 uses the quantity %2, which isn't in the document's list.", Named(number, header),
                    used.GetNomGrandeur());
}

wstring SaveReason::ResultWithLostSlices(std::int32_t number, const CResultHeader& header)
{
    return Sentence("Result %1 lacks slices: there was no room to keep them.", Named(number, header));
}

wstring SaveReason::ResultWithOwnReferences(std::int32_t number, const CResultHeader& header)
{
    return Sentence("The references along result %1 aren't among the lists of its system, so they aren't stored.",
                    Named(number, header));
}

wstring SaveReason::ResultWithReferencesOfOthers(std::int32_t number, const CResultHeader& header)
{
    return Sentence("Result %1 has no references, but its header names a list of its system: it comes back with those.",
                    Named(number, header));
}

wstring SaveReason::ResultUnreadable(std::int32_t number, const CResultHeader& header)
{
    return Sentence("Result %1 is in a state that no load gives back.", Named(number, header));
}

wstring SaveReason::ResultsPassedOver(std::int32_t system, std::size_t count)
{
    return Sentence("%2 results of system %1 were of kinds that this version doesn't know and weren't loaded: a save "
                    "over their file loses them for good.",
                    ToDecimal(system), Number(count));
}

wstring SaveReason::ReferencesLost(std::int32_t system)
{
    return Sentence("References of system %1 couldn't be loaded: a save over their file loses them for good.",
                    ToDecimal(system));
}

wstring SaveReason::ReferenceOfOtherResult(std::int32_t system, const wstring& name)
{
    return Sentence("The reference %2 of system %1 comes back in another result than the one that shows it, whose name "
                    "holds this one's.",
                    ToDecimal(system), name);
}

wstring SaveReason::ListsBeginEmpty(std::int32_t system)
{
    return Sentence("The reference lists of system %1 begin with an empty place, so none is stored.",
                    ToDecimal(system));
}

wstring SaveReason::ListUnreachable(std::int32_t system, std::size_t list)
{
    return Sentence("Reference list %2 of system %1 comes after an empty place and no result names it or a later one: "
                    "no load looks for it.",
                    ToDecimal(system), Number(list));
}

wstring SaveReason::ListUnwritable(std::int32_t system, std::size_t list)
{
    return Sentence("Reference list %2 of system %1 is in a state that no load gives back.", ToDecimal(system),
                    Number(list));
}

wstring SaveReason::ListWithUnlistedQuantity(std::int32_t system, std::size_t list, const CGrandeur& used)
{
    return Sentence("Reference list %1 uses the quantity %2, which isn't in the document's list.",
                    Concat(list, u" / ", system), used.GetNomGrandeur());
}

wstring SaveReason::RecordingWithUnlistedQuantity(std::int32_t system, const CGrandeur& used)
{
    return Sentence("The recording of system %1 uses the quantity %2, which isn't in the document's list.",
                    ToDecimal(system), used.GetNomGrandeur());
}

wstring SaveReason::TransducersUnread(std::int32_t system)
{
    return Sentence(
        "System %1 has transducers and settings of application version 1.1: loads don't read transducers then.",
        ToDecimal(system));
}

wstring SaveReason::TransducerUnwritable(std::int32_t system)
{
    return Sentence("A transducer of system %1 can't be stored as it is.", ToDecimal(system));
}

wstring SaveReason::SettingsInPart(std::int32_t system)
{
    return Sentence("The settings of system %1 came in part from their file: a save loses the rest for good.",
                    ToDecimal(system));
}

} // namespace ZelmResult
