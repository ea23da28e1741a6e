#pragma once

#include <memory>

namespace zmxf {

// Signals that ask the program to end wait as long as an object lives, so nothing but writing should happen meanwhile.
// On Windows these are Ctrl-C, Ctrl-Break and the closing of the console.
class SignalsHeld {
public:
    SignalsHeld();
    SignalsHeld(const SignalsHeld&) = delete;
    SignalsHeld& operator=(const SignalsHeld&) = delete;
    ~SignalsHeld(); // those that wait end the program here, unless another object holds them

    [[nodiscard]] static bool IsPending(); // whether one waits that isn't ignored

private:
    struct Former;

    std::unique_ptr<Former> m_former;
};

} // namespace zmxf
