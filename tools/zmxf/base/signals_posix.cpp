#include "tools/zmxf/base/signals.h"

#include <algorithm>
#include <array>
#include <csignal>

namespace zmxf {

namespace {

constexpr std::array kHeldSignals{SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE};

} // namespace

struct SignalsHeld::Former {
    sigset_t mask{};
};

SignalsHeld::SignalsHeld() : m_former(std::make_unique<Former>())
{
    sigset_t held;
    (void)sigemptyset(&held);
    for (const int signal : kHeldSignals) (void)sigaddset(&held, signal);
    (void)sigprocmask(SIG_BLOCK, &held, &m_former->mask);
}

SignalsHeld::~SignalsHeld() { (void)sigprocmask(SIG_SETMASK, &m_former->mask, nullptr); }

bool SignalsHeld::IsPending()
{
    sigset_t pending;
    (void)sigpending(&pending);
    return std::any_of(kHeldSignals.begin(), kHeldSignals.end(), [&pending](int signal) {
        struct sigaction action {};
        return sigismember(&pending, signal) == 1 && sigaction(signal, nullptr, &action) == 0 &&
               action.sa_handler != SIG_IGN;
    });
}

} // namespace zmxf
