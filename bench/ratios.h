#pragma once

#include <benchmark/benchmark.h>

#include <iomanip>
#include <iostream>
#include <map>
#include <string>
#include <vector>

// What the benchmarks of this folder share: speeds as ratios within one run.

namespace ratios {

// Prints as usual, and keeps the times by name for the ratios.
class TimesReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs)
            if (run.run_type == Run::RT_Iteration) m_times[run.benchmark_name()] = run.GetAdjustedRealTime();
    }

    void PrintRatio(const std::string& of, const std::string& to, double aim) const
    {
        const auto numerator = m_times.find(of);
        const auto denominator = m_times.find(to);
        if (numerator == m_times.end() || denominator == m_times.end()) return;
        std::cout << std::left << std::setw(16) << of << " / " << std::setw(18) << to << std::fixed
                  << std::setprecision(2) << numerator->second / denominator->second << "  (aim: at most " << aim
                  << ")\n";
    }

private:
    std::map<std::string, double> m_times;
};

} // namespace ratios
