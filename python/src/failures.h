#pragma once

#include "zelmresult/reading/read_error.h"

#include <pybind11/pybind11.h>

#include <exception>
#include <string>
#include <utility>
#include <vector>

namespace binding {

// Becomes zelmresult.DocumentError. Needs no lock of the interpreter.
class DocumentFailure : public std::exception {
public:
    DocumentFailure(std::string file, ZelmResult::ReadError error) : m_file(std::move(file)), m_error(std::move(error))
    {
    }
    [[nodiscard]] const char* what() const noexcept override { return "a document can't be read"; }
    [[nodiscard]] pybind11::object ToPython() const;

private:
    std::string m_file;
    ZelmResult::ReadError m_error;
};

// Becomes zelmresult.SaveError.
class SaveFailure : public std::exception {
public:
    SaveFailure(std::string file, std::vector<ZelmResult::wstring> reasons)
        : m_file(std::move(file)), m_reasons(std::move(reasons))
    {
    }
    [[nodiscard]] const char* what() const noexcept override { return "a document can't be saved"; }
    [[nodiscard]] pybind11::object ToPython() const;

private:
    std::string m_file;
    std::vector<ZelmResult::wstring> m_reasons;
};

// The value of an outcome, or the failure.
template <class T>
T Require(ZelmResult::Outcome<T> outcome, const std::string& file)
{
    if (!outcome) throw DocumentFailure(file, outcome.error());
    return *std::move(outcome);
}

void RegisterFailures();

} // namespace binding
