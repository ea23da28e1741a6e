#include "bench/peers/measure.h"

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fstream>
#include <stdexcept>
#include <sys/mman.h>
#include <unistd.h>

namespace peers {

namespace {

constexpr std::size_t kTouched = 256U << 20U; // more than any case takes

// Has the machine hand out its memory once, and take it back: a guest's first use of a page is the host's affair.
void TouchMemory()
{
    void* memory = ::mmap(nullptr, kTouched, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    Require(memory != MAP_FAILED, "memory to touch");
    std::memset(memory, 1, kTouched);
    (void)::munmap(memory, kTouched);
}

// In kB, from what the system says about this process.
long StatusOf(const std::string& name)
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with(name + ":")) return std::atol(line.c_str() + name.size() + 1);
    return 0;
}

double ProcessorSeconds()
{
    timespec time{};
    Require(::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time) == 0, "asking for the time");
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

void ForgetPeak() { std::ofstream("/proc/self/clear_refs") << "5"; }

Measured DoOnce(const Case& job)
{
    job.prepare();
    ForgetPeak();
    const long before = StatusOf("VmRSS");
    const double processorBegin = ProcessorSeconds();
    const auto begin = std::chrono::steady_clock::now();
    job.run();
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
    const double processor = ProcessorSeconds() - processorBegin;
    const long peak = StatusOf("VmHWM") - before;
    job.check();
    return {taken.count(), processor, peak};
}

} // namespace

void Require(bool holds, const char* what)
{
    if (!holds) throw std::runtime_error(std::string(what) + " failed");
}

Path Files::Fresh() const
{
    static int number = 0;
    Path path = m_folder / ("fresh." + std::to_string(::getpid()) + "." + std::to_string(++number));
    std::filesystem::remove(path);
    return path;
}

Measured Measure(const Family& family, const Files& files, const std::string& job, const std::string& contender, int n)
{
    (void)DoOnce(family.makeCase(files, job, contender, kWarmUp));
    TouchMemory();
    return DoOnce(family.makeCase(files, job, contender, n));
}

} // namespace peers
