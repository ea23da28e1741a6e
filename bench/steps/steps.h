#pragma once

#include "zelmresult/zelmresult.h"

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <span>
#include <string>
#include <unistd.h>

// Jobs of a given size, whose instructions are counted for n and for 2n. Each job has parts where each one could cost a
// step for every other. The program ends when a step fails.

namespace steps {

using namespace ZelmResult;

struct Job {
    const char* name;
    void (*work)(int);
    int size;          // at which a step per pair would show, within the limits of the format
    const char* after; // the job that it begins with, whose instructions don't count; "nothing" when there is none
};

std::span<const Job> ResultJobs();
std::span<const Job> WaterfallJobs();
std::span<const Job> BranchJobs();

inline void Require(bool holds, const char* what)
{
    if (holds) return;
    std::cerr << "steps: " << what << " failed\n";
    std::exit(2);
}

// A file that goes away with the program.
class File {
public:
    File() : m_path(std::filesystem::temp_directory_path() / ("zelmresult_steps_" + std::to_string(getpid()))) {}
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    ~File() { std::filesystem::remove(m_path); }
    [[nodiscard]] const std::filesystem::path& path() const { return m_path; }
    [[nodiscard]] wstring wide() const { return FromUtf8(m_path.string()); }

private:
    std::filesystem::path m_path;
};

class Document : public CZMXFFile {
public:
    Document() : CZMXFFile(true, false) {}
    ~Document() override { NeedToRemoveEverything(true); }
    void SaveTo(const File& file) { Require(Save(file.wide().c_str()), "a save"); }
    void LoadFrom(const File& file) { Require(Load(file.wide().c_str(), ZMXFFileLoadScope::all()), "a load"); }
};

inline constexpr std::int32_t kValues = 4; // of a result

inline wstring Name(const char16_t* what, int i) { return what + ToDecimal(i); }

// Saved and loaded again.
inline void StoreAndLoad(Document& document)
{
    const File file;
    document.SaveTo(file);
    Document().LoadFrom(file);
}

CResultHeader* NewHeader(std::uint32_t process, std::uint32_t dimension, const wstring& response);
void AddSpectra(Document& document, int n);

} // namespace steps
