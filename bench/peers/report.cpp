#include "bench/peers/report.h"

#include "bench/peers/hdf5.h"
#include "bench/peers/sqlite.h"

#include <iomanip>
#include <iostream>
#include <sstream>

namespace peers {

namespace {

using Row = std::vector<std::string>;

std::string Fixed(double value, int decimals)
{
    std::ostringstream text;
    text << std::fixed << std::setprecision(decimals) << value;
    return text.str();
}

// Three digits, or all of those before the point.
std::string Short(double value) { return Fixed(value, value < 1 ? 3 : value < 10 ? 2 : value < 100 ? 1 : 0); }

void Print(const Row& row)
{
    for (const std::string& cell : row) std::cout << "| " << cell << ' ';
    std::cout << "|\n";
}

void PrintHead(const Row& row)
{
    std::cout << '\n';
    Print(row);
    for (std::size_t i = 0; i < row.size(); ++i) std::cout << (i == 0 ? "|---" : "|--:");
    std::cout << "|\n";
}

void AddTitles(Row& row, const Family& family, bool withLimit)
{
    for (const Contender& contender : family.contenders)
        if (withLimit || contender.name != kLimit) row.push_back(contender.title);
}

void PrintMultiples(const Family& family, const Rounds& rounds, double Measured::*time)
{
    Row head{family.name, "limit: what it does", "ms", "goal"};
    AddTitles(head, family, false);
    PrintHead(head);
    const int n = family.sizes.back();
    for (const Job& job : family.jobs) {
        const double limit = rounds.Median(family, job.name, kLimit, n).*time;
        Row row{job.title, job.limit, Short(limit * 1e3), Short(job.goal)};
        for (const Contender& contender : family.contenders)
            if (contender.name != kLimit)
                row.push_back(Short(rounds.Median(family, job.name, contender.name, n).*time / limit));
        Print(row);
    }
}

void PrintGrowth(const Family& family, const Rounds& rounds, double Measured::*time)
{
    if (family.sizes.size() < 2) return;
    Row head{"ms for n " + family.name, "n"};
    AddTitles(head, family, true);
    PrintHead(head);
    for (const Job& job : family.jobs)
        for (const int n : family.sizes) {
            Row row{job.title, std::to_string(n)};
            for (const Contender& contender : family.contenders)
                row.push_back(Short(rounds.Median(family, job.name, contender.name, n).*time * 1e3));
            Print(row);
        }
}

void PrintMemory(const Family& family, const Files& files, const Rounds& rounds)
{
    Row head{"MB, " + family.name};
    AddTitles(head, family, true);
    PrintHead(head);
    const int n = family.sizes.back();
    for (const Job& job : family.jobs) {
        Row row{job.title};
        for (const Contender& contender : family.contenders)
            row.push_back(Fixed(static_cast<double>(rounds.Median(family, job.name, contender.name, n).peak) / 1e3, 1));
        Print(row);
    }
    Row sizes{"size of the file"};
    for (const Contender& contender : family.contenders) {
        const Path stored = files.Stored(family.name, contender.name == kLimit ? kOurs : contender.name, n);
        sizes.push_back(Fixed(static_cast<double>(std::filesystem::file_size(stored)) / 1e6, 1));
    }
    Print(sizes);
}

} // namespace

void Report(const std::vector<Family>& families, const Files& files, const Rounds& rounds, double Measured::*time)
{
    std::cout << "With HDF5 " << H5_VERS_MAJOR << '.' << H5_VERS_MINOR << '.' << H5_VERS_RELEASE << " and SQLite "
              << ::sqlite3_libversion() << ".\n\n### Time, as multiples of the limit\n";
    for (const Family& family : families) PrintMultiples(family, rounds, time);
    std::cout << "\n### Growth\n";
    for (const Family& family : families) PrintGrowth(family, rounds, time);
    std::cout << "\n### Memory that a job takes at most, and files\n";
    for (const Family& family : families) PrintMemory(family, files, rounds);
}

} // namespace peers
