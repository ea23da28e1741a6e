#pragma once

#include "zelmresult/support/wstring.h"

#include <cstdint>

namespace ZelmResult {

class CGrandeur;
class CResultHeader;

// Why a load would not restore a part of a document, each reason as a sentence in the host's language.
class SaveReason {
public:
    static wstring TooManyQuantities(std::size_t count);
    static wstring QuantityMerged(const CGrandeur& quantity);
    static wstring OperandsTooDeep(const CGrandeur& quantity);
    static wstring UnlistedOperand(const CGrandeur& quantity, const CGrandeur& operand);
    static wstring TooManySystems(std::size_t count);
    static wstring PreviewsAlone();
    static wstring FormTooEmpty();

    // Of a result: its number in the file and its caption name it.
    static wstring ResultsWithoutCode();
    static wstring ResultWithoutData(std::int32_t number, const CResultHeader& header);
    static wstring ResultOfOtherKind(std::int32_t number, const CResultHeader& header);
    static wstring ResultWithUnlistedQuantity(std::int32_t number, const CResultHeader& header, const CGrandeur& used);
    static wstring ResultWithLostSlices(std::int32_t number, const CResultHeader& header);
    static wstring ResultWithOwnReferences(std::int32_t number, const CResultHeader& header);
    static wstring ResultWithReferencesOfOthers(std::int32_t number, const CResultHeader& header);
    static wstring ResultUnreadable(std::int32_t number, const CResultHeader& header);

    // Of a system, by its index.
    static wstring ResultsPassedOver(std::int32_t system, std::size_t count);
    static wstring ReferencesLost(std::int32_t system);
    static wstring ReferenceOfOtherResult(std::int32_t system, const wstring& name);
    static wstring ListsBeginEmpty(std::int32_t system);
    static wstring ListUnreachable(std::int32_t system, std::size_t list);
    static wstring ListUnwritable(std::int32_t system, std::size_t list);
    static wstring ListWithUnlistedQuantity(std::int32_t system, std::size_t list, const CGrandeur& used);
    static wstring RecordingWithUnlistedQuantity(std::int32_t system, const CGrandeur& used);
    static wstring TransducersUnread(std::int32_t system);
    static wstring TransducerUnwritable(std::int32_t system);
    static wstring SettingsInPart(std::int32_t system);
};

} // namespace ZelmResult
