#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

// A case is one job of one contender on n things. It runs in a process of its own, see measure.h.

namespace peers {

using Path = std::filesystem::path;

// Throws when a step fails: a contender that doesn't do its job has no time.
void Require(bool holds, const char* what);

// The files of a run, all in one folder.
class Files {
public:
    explicit Files(Path folder) : m_folder(std::move(folder)) {}

    [[nodiscard]] const Path& folder() const { return m_folder; }
    // What a contender has stored, for the cases that read it.
    [[nodiscard]] Path Stored(const std::string& family, const std::string& contender, int n) const
    {
        return m_folder / (family + "." + contender + "." + std::to_string(n));
    }
    // A new file that a case writes. There is none of that name yet.
    [[nodiscard]] Path Fresh() const;

private:
    Path m_folder;
};

struct Case {
    std::function<void()> prepare; // not timed: what a host has at hand before it begins
    std::function<void()> run;     // timed
    std::function<void()> check;   // that the job was done
};

inline constexpr const char* kLimit = "limit"; // the contender that does only what the machine must do
inline constexpr const char* kOurs = "ours";

struct Contender {
    std::string name;
    std::string title;
};

struct Job {
    std::string name;
    std::string title;
    std::string limit; // what the limit does
    double goal;       // the multiple of the limit that ours is to stay within
};

// Jobs on one set of data, and who does them.
struct Family {
    std::string name;
    std::vector<Job> jobs;
    std::vector<Contender> contenders; // the limit first
    std::vector<int> sizes;            // the last one is that of the main table
    std::function<void(const Files&, const std::string& contender, int n)> store; // makes the file that cases read
    std::function<Case(const Files&, const std::string& job, const std::string& contender, int n)> makeCase;
};

Family ResultFamily();
Family SettingFamily();
Family WaterfallFamily();

} // namespace peers
