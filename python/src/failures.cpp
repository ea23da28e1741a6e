#include "python/src/failures.h"

#include "python/src/convert.h"
#include "tools/zmxf/base/failure.h"
#include "zelmresult/support/text.h"

#include <array>

namespace binding {

namespace {

// In the order of ReadError::Kind.
constexpr std::array kKinds{"not_opened", "not_a_document", "cut_off",     "damaged",
                            "too_large",  "no_such_result", "unknown_kind"};

py::object Errors() { return py::module_::import("zelmresult._errors"); }

// The file's name as Python has it, whatever its bytes.
py::object FileName(const std::string& file) { return py::module_::import("os").attr("fsdecode")(py::bytes(file)); }

void Raise(const py::object& error) { PyErr_SetObject(py::type::handle_of(error).ptr(), error.ptr()); }

void Translate(std::exception_ptr failure)
{
    try {
        if (failure) std::rethrow_exception(std::move(failure));
    } catch (const DocumentFailure& read) {
        Raise(read.ToPython());
    } catch (const SaveFailure& save) {
        Raise(save.ToPython());
    } catch (const zmxf::Failure& other) {
        PyErr_SetString(PyExc_ValueError, other.what());
    }
}

} // namespace

py::object DocumentFailure::ToPython() const
{
    const std::size_t kind = static_cast<std::size_t>(m_error.kind);
    py::object expected = py::none();
    if (!m_error.expected.empty()) expected = binding::ToPython(m_error.expected);
    const std::error_code& system = m_error.systemError;
    const bool isOfC = !system || system.category() == std::generic_category(); // Python knows no other numbers
    return Errors().attr("document_error")(FileName(m_file), binding::ToPython(m_error.Text()), kKinds.at(kind),
                                           m_error.offset < 0 ? py::object(py::none())
                                                              : py::object(py::int_(m_error.offset)),
                                           binding::ToPython(m_error.subject), m_error.chunk, expected,
                                           isOfC ? system.value() : 0, isOfC ? std::string() : system.message());
}

py::object SaveFailure::ToPython() const
{
    py::list reasons;
    for (const ZelmResult::wstring& reason : m_reasons) reasons.append(binding::ToPython(reason));
    return Errors().attr("SaveError")(FileName(m_file), reasons);
}

void RegisterFailures() { py::register_exception_translator(Translate); }

} // namespace binding
