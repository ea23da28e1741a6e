#pragma once

#include "zelmresult/document/zmxf_file.h"
#include "zelmresult/quantities/grandeur.h"
#include "zelmresult/quantities/unite.h"

#include <pybind11/pybind11.h>

#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace ZelmResult {
class CListVectorRef;
} // namespace ZelmResult

namespace binding {

namespace py = pybind11;

// A document that Python fills and saves. Calls from several threads wait for each other.
class Writer {
public:
    Writer();
    // With all that a file holds.
    explicit Writer(const std::string& path);

    // The number of a quantity, by which results name it. One that the file held already isn't added again: the same
    // twice would not come back.
    std::size_t AddQuantity(const py::dict& fields);
    [[nodiscard]] ZelmResult::CGrandeur* QuantityAt(std::size_t number) const { return m_quantities.at(number); }
    // Takes the result under a header with these fields. The list of references that it uses comes along.
    void Add(const py::dict& header, std::unique_ptr<ZelmResult::CResult> result);
    [[nodiscard]] std::size_t Count() const;

    // Sentences for all that wouldn't come back.
    py::list Check();
    void Save(const std::string& path, bool acceptLosses);
    py::bytes ToBytes();

private:
    [[nodiscard]] std::vector<ZelmResult::wstring> TakeMessages();

    std::mutex m_mutex;
    std::deque<ZelmResult::CUnite> m_units; // of the document's quantities, and so outlives them
    ZelmResult::CZMXFFile m_document{true, false};
    std::vector<ZelmResult::CGrandeur*> m_loaded; // of the file that it began with
    std::vector<ZelmResult::CGrandeur*> m_quantities;
};

} // namespace binding
