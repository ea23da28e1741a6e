#pragma once

#include "bench/peers/measure.h"

#include <map>
#include <tuple>
#include <vector>

// Cases as processes of their own, in rounds: each round does every case once, so that whatever slows the machine down
// for a while slows all contenders.

namespace peers {

class Rounds {
public:
    // program: this one, which does a case when it is called so, see main.cpp.
    Rounds(Path program, const Files& files) : m_program(std::move(program)), m_files(files) {}

    void Store(const Family& family) const; // makes the files that the cases read
    void Run(const std::vector<Family>& families, int rounds);

    // Medians over the rounds.
    [[nodiscard]] Measured Median(const Family& family, const std::string& job, const std::string& contender,
                                  int n) const;

private:
    using Key = std::tuple<std::string, std::string, std::string, int>; // family, job, contender, n

    [[nodiscard]] std::string Command(const std::string& what, const Key& key) const;
    [[nodiscard]] Measured Child(const Key& key) const;

    Path m_program;
    const Files& m_files;
    std::map<Key, std::vector<Measured>> m_measured;
};

} // namespace peers
