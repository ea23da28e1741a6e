#pragma once

#include "zelmresult/reading/listed_result.h"
#include "zelmresult/reading/owned_result.h"
#include "zelmresult/waterfalls/list_vector_ref.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <utility>

namespace ZelmResult {

class StoredQuantities;

// One result that was read from a document, with all that it needs: its header, the quantities of it and its
// references, and for a result along a waterfall the references that its document stores for it, with the one chosen
// that the header names. Units are ready for decibels.
//
// Owns     all of it. Quantities are shared with the reader and with its other results, so equal pointers mean equal
//          quantities; a change of a quantity or of its unit affects all of them.
// Life     it outlives the reader. It can be moved; after that only the destructor and an assignment may be called on
//          the object that was moved from.
// Threads  one at a time, as for a document.
class StoredResult {
public:
    StoredResult(ListedResult listed, OwnedResult result, std::shared_ptr<StoredQuantities> quantities)
        : m_listed(std::move(listed)), m_quantities(std::move(quantities)), m_result(std::move(result))
    {
    }
    StoredResult(StoredResult&&) noexcept = default;
    StoredResult& operator=(StoredResult&&) noexcept = default;
    StoredResult(const StoredResult&) = delete;
    StoredResult& operator=(const StoredResult&) = delete;
    ~StoredResult() = default;

    [[nodiscard]] const CResult& result() const { return *m_result; }
    [[nodiscard]] CResult& result() { return *m_result; }
    [[nodiscard]] const CResultHeader& header() const { return *m_listed.header; }
    [[nodiscard]] const ListedResult& listed() const { return m_listed; }
    [[nodiscard]] std::int32_t system() const { return m_listed.system; }
    // lends the references of a result along a waterfall; null for any other, and when they could not be read.
    [[nodiscard]] const CListVectorRef* references() const { return m_references.get(); }
    // Why the references could not be read. The result itself is whole.
    [[nodiscard]] const std::optional<ReadError>& lostReferences() const { return m_lostReferences; }

private:
    friend class DocumentReader;

    // In this order, since results use references and both point at quantities.
    ListedResult m_listed;
    std::shared_ptr<StoredQuantities> m_quantities;
    std::unique_ptr<CListVectorRef> m_references;
    std::optional<ReadError> m_lostReferences;
    OwnedResult m_result;
};

} // namespace ZelmResult
