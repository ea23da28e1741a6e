// Saves, loads, lists and looks up the same data with ZelmResult, HDF5 and SQLite, and prints the times as multiples of
// what the machine itself needs, measured in the same rounds.
//   peers [--rounds N] [--size N] [--processor] [FAMILY...]
//       7 rounds; one size for all instead of several; the times of the processor, for a machine that does something
//       else, too; only some of results, settings, waterfalls
//   peers --store FOLDER FAMILY - CONTENDER N      makes the file that cases read
//   peers --case FOLDER FAMILY JOB CONTENDER N     does one case, prints seconds, those of the processor, and the kB
//   that
//                                                  memory rose by
// Files are in the temporary folder (TMPDIR).

#include "bench/peers/report.h"

#include <algorithm>
#include <charconv>
#include <exception>
#include <iostream>
#include <string_view>
#include <unistd.h>

namespace {

using namespace peers;

struct Options {
    int rounds = 7;
    int size = 0; // those of the families
    double Measured::*time = &Measured::seconds;
    std::vector<std::string> families;
};

[[noreturn]] void Usage()
{
    std::cerr << "usage: peers [--rounds N] [--size N] [--processor] [results] [settings] [waterfalls]\n";
    std::exit(2);
}

int Number(std::string_view text)
{
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size() || number < 1) Usage();
    return number;
}

Options Parse(const std::vector<std::string>& arguments)
{
    Options options;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const bool takesNumber = arguments[i] == "--rounds" || arguments[i] == "--size";
        if (takesNumber && i + 1 == arguments.size()) Usage();
        if (takesNumber)
            (arguments[i] == "--size" ? options.size : options.rounds) = Number(arguments[i + 1]), ++i;
        else if (arguments[i] == "--processor")
            options.time = &Measured::processor;
        else
            options.families.push_back(arguments[i]);
    }
    return options;
}

std::vector<Family> Chosen(const Options& options)
{
    std::vector<Family> families{ResultFamily(), SettingFamily(), WaterfallFamily()};
    for (const std::string& name : options.families)
        if (std::ranges::none_of(families, [&name](const Family& family) { return family.name == name; })) Usage();
    std::erase_if(families, [&options](const Family& family) {
        return !options.families.empty() && std::ranges::count(options.families, family.name) == 0;
    });
    for (Family& family : families)
        if (options.size > 0) family.sizes = {options.size};
    return families;
}

// A folder that goes away with the run.
class Folder {
public:
    Folder() : m_path(std::filesystem::temp_directory_path() / ("zelmresult_peers_" + std::to_string(::getpid())))
    {
        std::filesystem::create_directories(m_path);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    ~Folder() { std::filesystem::remove_all(m_path); }
    [[nodiscard]] const Path& path() const { return m_path; }

private:
    Path m_path;
};

void RunAll(const Options& options)
{
    const std::vector<Family> families = Chosen(options);
    const Folder folder;
    const Files files(folder.path());
    Rounds rounds(std::filesystem::read_symlink("/proc/self/exe"), files);
    for (const Family& family : families) rounds.Store(family);
    rounds.Run(families, options.rounds);
    Report(families, files, rounds, options.time);
}

void RunOne(const std::vector<std::string>& arguments)
{
    if (arguments.size() != 6) Usage();
    Options options;
    options.families = {arguments[2]};
    const Family family = Chosen(options).front();
    const Files files(arguments[1]);
    const std::string& job = arguments[3];
    const std::string& contender = arguments[4];
    const int n = Number(arguments[5]);
    if (arguments[0] == "--store") return family.store(files, contender, n);
    const Measured measured = Measure(family, files, job, contender, n);
    std::cout << measured.seconds << ' ' << measured.processor << ' ' << measured.peak << '\n';
}

} // namespace

int main(int argc, char** argv)
{
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    const bool one = !arguments.empty() && (arguments[0] == "--store" || arguments[0] == "--case");
    try {
        one ? RunOne(arguments) : RunAll(Parse(arguments));
    } catch (const std::exception& error) {
        std::cerr << "peers: " << error.what() << '\n';
        return 2;
    }
    return 0;
}
