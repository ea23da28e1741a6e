#include "tools/zmxf/base/progress.h"

#include "tools/zmxf/base/terminal.h"

#include <algorithm>
#include <iostream>
#include <utility>

namespace zmxf {

using namespace std::chrono_literals;

Progress::Progress(std::string what)
    : m_what(std::move(what)), m_terminal(IsTerminal(Stream::Errors)), m_next(Clock::now() + 1s)
{
}

Progress::~Progress()
{
    if (m_shown) std::cerr << '\r' << std::string(m_what.size() + 6, ' ') << '\r' << std::flush;
}

void Progress::operator()(std::int64_t done, std::int64_t total)
{
    if (!m_terminal || Clock::now() < m_next) return;
    const std::int64_t percent = std::min<std::int64_t>(done / (total / 100 + 1), 100);
    std::cerr << '\r' << m_what << ' ' << percent << " %" << std::flush;
    m_shown = true;
    m_next = Clock::now() + 200ms;
}

} // namespace zmxf
