#include "tools/zmxf/base/signals.h"

#include <condition_variable>
#include <mutex>
#include <windows.h>

namespace zmxf {

namespace {

// Windows tells of an event in a thread of its own. What the handler of the system does after this one ends the
// process, at any place of the other threads.
struct Events {
    std::mutex mutex;
    std::condition_variable released;
    int held = 0;
    bool isPending = false;
};

Events& TheEvents()
{
    static auto* const events = new Events; // the handler may outlive everything that ends with the program
    return *events;
}

BOOL WINAPI OnEvent(DWORD /*event*/)
{
    Events& events = TheEvents();
    std::unique_lock lock(events.mutex);
    events.isPending = true;
    events.released.wait(lock, [&events] { return events.held == 0; });
    return FALSE;
}

[[noreturn]] void WaitForTheEnd()
{
    while (true) Sleep(INFINITE);
}

} // namespace

struct SignalsHeld::Former {};

SignalsHeld::SignalsHeld()
{
    static const BOOL isHandled = SetConsoleCtrlHandler(OnEvent, TRUE);
    (void)isHandled;
    Events& events = TheEvents();
    std::unique_lock lock(events.mutex);
    if (events.isPending && events.held == 0) {
        lock.unlock();
        WaitForTheEnd();
    }
    ++events.held;
}

SignalsHeld::~SignalsHeld()
{
    Events& events = TheEvents();
    std::unique_lock lock(events.mutex);
    if (--events.held > 0 || !events.isPending) return;
    lock.unlock();
    events.released.notify_all();
    WaitForTheEnd();
}

bool SignalsHeld::IsPending()
{
    Events& events = TheEvents();
    const std::lock_guard lock(events.mutex);
    return events.isPending;
}

} // namespace zmxf
