#pragma once

#include "zelmresult/support/wstring.h"

#include <cstdint>
#include <system_error>
#include <utility>
#include <variant>

namespace ZelmResult {

class CMmioFile;

// Why a part of a document could not be read. A plain value.
struct ReadError {
    enum class Kind : std::uint8_t {
        NotOpened,    // the backend can't open it: there is no such file, or no permission to read it
        NotADocument, // it does not begin with the form of a result document
        CutOff,       // the file ends before the form that it holds
        Damaged,      // something else than what was expected is at the offset
        TooLarge,     // it asks for more than the file holds, or for more memory than a file of its size may
        NoSuchResult, // the document lists fewer results
        UnknownKind,  // the library has no class for a process type of that number
    };

    Kind kind = Kind::Damaged;
    wstring subject;                  // what was to be read, such as "the data of result 3"
    std::uint32_t chunk = 0;          // the code of the chunk that was entered last, 0 for none
    std::int64_t offset = -1;         // in the file, where the read stopped; -1 when none began
    wstring expected;                 // what should have been there; may be empty
    std::error_code systemError = {}; // for NotOpened: why, where the system said so

    // One line for a person: subject, chunk, offset and what was expected.
    [[nodiscard]] wstring Text() const;
    // The error after a failed read of that file.
    static ReadError Of(const CMmioFile& file, wstring subject);
};

// A value, or the reason why there is none. Ask first: the value of a failure is undefined, and so is the error of a
// success.
template <class T>
class [[nodiscard]] Outcome {
public:
    Outcome(T value) : m_content(std::in_place_index<0>, std::move(value)) {}         // NOLINT(*-explicit-*)
    Outcome(ReadError error) : m_content(std::in_place_index<1>, std::move(error)) {} // NOLINT(*-explicit-*)

    explicit operator bool() const { return m_content.index() == 0; }
    T& operator*() & { return *std::get_if<0>(&m_content); }
    const T& operator*() const& { return *std::get_if<0>(&m_content); }
    T&& operator*() && { return std::move(*std::get_if<0>(&m_content)); }
    T* operator->() { return std::get_if<0>(&m_content); }
    const T* operator->() const { return std::get_if<0>(&m_content); }
    [[nodiscard]] const ReadError& error() const { return *std::get_if<1>(&m_content); }

private:
    std::variant<T, ReadError> m_content;
};

} // namespace ZelmResult
