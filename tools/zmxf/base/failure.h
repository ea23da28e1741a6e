#pragma once

#include <fmt/format.h>

#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

namespace zmxf {

// What stops a verb: its text is the one line that the user reads after "zmxf: ".
class Failure : public std::runtime_error {
public:
    explicit Failure(const std::string& text) : std::runtime_error(text) {}
    template <class... Args>
    explicit Failure(fmt::format_string<Args...> text, Args&&... args)
        : std::runtime_error(fmt::format(text, std::forward<Args>(args)...))
    {
    }
};

// Ends the program with a status that says what a verb found, after all of its output.
struct ExitStatus {
    int status = 0;
};

// The line on standard error for a part of the work that failed while the rest goes on; like that for a whole verb.
void PrintFailure(std::string_view what);
// The line for what the user should know of work that is done.
void PrintWarning(std::string_view what);

} // namespace zmxf
