#include "bench/peers/rounds.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <memory>

namespace peers {

namespace {

// The families' cases in the order of a round.
template <class Action>
void ForEachCase(const Family& family, const Action& action)
{
    for (const Job& job : family.jobs)
        for (const int n : family.sizes)
            for (const Contender& contender : family.contenders) action(job.name, contender.name, n);
}

template <class Value>
Value MedianOf(std::vector<Measured> all, Value Measured::*member)
{
    const auto middle = all.begin() + static_cast<std::ptrdiff_t>(all.size() / 2);
    std::nth_element(all.begin(), middle, all.end(),
                     [member](const Measured& a, const Measured& b) { return a.*member < b.*member; });
    return (*middle).*member;
}

} // namespace

std::string Rounds::Command(const std::string& what, const Key& key) const
{
    const auto& [family, job, contender, n] = key;
    return "'" + m_program.string() + "' " + what + " '" + m_files.folder().string() + "' " + family + " " + job + " " +
           contender + " " + std::to_string(n);
}

void Rounds::Store(const Family& family) const
{
    std::vector<int> sizes = family.sizes;
    sizes.push_back(kWarmUp);
    for (const int n : sizes)
        for (const Contender& contender : family.contenders)
            Require(std::system(Command("--store", {family.name, "-", contender.name, n}).c_str()) == 0,
                    "making a file");
}

void Rounds::Run(const std::vector<Family>& families, int rounds)
{
    for (int round = 1; round <= rounds; ++round) {
        std::cerr << "round " << round << " of " << rounds << '\n';
        for (const Family& family : families)
            ForEachCase(family, [this, &family](const std::string& job, const std::string& contender, int n) {
                const Key key{family.name, job, contender, n};
                m_measured[key].push_back(Child(key));
            });
    }
}

Measured Rounds::Child(const Key& key) const
{
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> pipe(::popen(Command("--case", key).c_str(), "r"), ::pclose);
    Require(pipe != nullptr, "starting a case");
    Measured measured;
    const int fields = std::fscanf(pipe.get(), "%lf %lf %ld", &measured.seconds, &measured.processor, &measured.peak);
    if (fields != 3) std::cerr << Command("--case", key) << '\n';
    Require(fields == 3, "a case");
    return measured;
}

Measured Rounds::Median(const Family& family, const std::string& job, const std::string& contender, int n) const
{
    const std::vector<Measured>& all = m_measured.at({family.name, job, contender, n});
    return {MedianOf(all, &Measured::seconds), MedianOf(all, &Measured::processor), MedianOf(all, &Measured::peak)};
}

} // namespace peers
