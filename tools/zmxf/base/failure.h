#pragma once

#include <fmt/format.h>

#include <stdexcept>
#include <string>
#include <utility>

namespace zmxf {

// What stops a verb: its text is the one line that the user reads behind "zmxf: ".
class Failure : public std::runtime_error {
public:
    explicit Failure(const std::string& text) : std::runtime_error(text) {}
    template <class... Args>
    explicit Failure(fmt::format_string<Args...> text, Args&&... args)
        : std::runtime_error(fmt::format(text, std::forward<Args>(args)...))
    {
    }
};

// Ends the program with a status that tells what a verb found. What it has to say is said.
struct ExitStatus {
    int status = 0;
};

} // namespace zmxf
