#pragma once

#include "zelmresult/zelmresult.h"

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <string>
#include <unistd.h>

// Documents for counting what is done with them: the program ends when a step fails.

namespace steps {

using namespace ZelmResult;

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

} // namespace steps
