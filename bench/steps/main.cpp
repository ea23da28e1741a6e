// What scripts/check-steps counts:
//   steps            lists the jobs, each with the size to try it at and the job that it begins with
//   steps JOB N      does that one; nothing for the job "nothing"

#include "bench/steps/steps.h"

#include <array>

namespace {

constexpr std::array kGroups{steps::BranchJobs, steps::ResultJobs, steps::WaterfallJobs};

void List()
{
    for (const auto group : kGroups)
        for (const steps::Job& job : group()) std::cout << job.name << ' ' << job.size << ' ' << job.after << '\n';
}

bool Do(const std::string& name, int n)
{
    if (name == "nothing") return true;
    for (const auto group : kGroups)
        for (const steps::Job& job : group())
            if (name == job.name) return job.work(n), true;
    return false;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc == 1) return List(), 0;
    if (argc == 3 && Do(argv[1], std::atoi(argv[2]))) return 0;
    std::cerr << "usage: steps [JOB N]\n";
    return 2;
}
