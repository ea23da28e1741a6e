#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace zmxf {

// How far a long work has come, as one line on standard error that is gone when the object is. Shows nothing unless
// standard error is a terminal, and nothing in the first second.
class Progress {
public:
    explicit Progress(std::string what);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress();
    void operator()(std::int64_t done, std::int64_t total);

private:
    using Clock = std::chrono::steady_clock;

    std::string m_what;
    bool m_terminal;
    bool m_shown = false;
    Clock::time_point m_next;
};

} // namespace zmxf
