#pragma once

#include "python/src/failures.h"
#include "tools/zmxf/base/selection.h"
#include "zelmresult/reading/document_reader.h"

#include <mutex>
#include <optional>
#include <string>
#include <utility>

namespace binding {

namespace py = pybind11;

// A document reader for Python. Calls from several threads wait for each other, and none of them holds the lock of the
// interpreter while it waits or reads.
class Reader {
public:
    // The name of a file as the system has it, which is bytes.
    explicit Reader(const std::string& path);
    // Keeps the bytes; the name is the one in errors.
    Reader(py::bytes bytes, std::string name);

    void Close();
    [[nodiscard]] bool IsClosed();
    [[nodiscard]] const std::string& name() const { return m_name; }

    // What the function answers for the reader, without the lock of the interpreter. Throws ValueError once closed.
    template <class Function>
    auto With(const Function& function)
    {
        const py::gil_scoped_release unlocked;
        const std::lock_guard guard(m_mutex);
        if (!m_reader) throw py::value_error(m_name + " is closed");
        return function(*m_reader);
    }
    [[nodiscard]] ZelmResult::ListedResult ListedAt(std::size_t number);

private:
    std::string m_name;
    py::bytes m_bytes;
    std::mutex m_mutex;
    std::optional<ZelmResult::DocumentReader> m_reader;
};

} // namespace binding
