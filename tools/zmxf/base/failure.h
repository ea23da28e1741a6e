#pragma once

#include <stdexcept>

namespace zmxf {

// What stops a verb: its text is the one line that the user reads behind "zmxf: ".
class Failure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Ends the program with a status that tells what a verb found. What it has to say is said.
struct ExitStatus {
    int status = 0;
};

} // namespace zmxf
