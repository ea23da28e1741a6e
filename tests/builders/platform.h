#pragma once

#include "tests/builders/memory_file.h"

#include <optional>
#include <string>
#include <vector>

// What differs between the systems that tests run on.

namespace ZelmResult::test {

// A variable of the process's environment that has this value as long as the object lives. A zone of time that is set
// so is that of the process, except on Windows, where it stays what it was at the start.
class Variable {
public:
    Variable(const char* name, const std::string& value);
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;
    ~Variable();
    // As it is now, nothing when there is none.
    static std::optional<std::string> Value(const char* name);

private:
    const char* m_name;
    std::optional<std::string> m_former;
};

// The place for temporary files as long as it lives.
class TempDirectory {
public:
    explicit TempDirectory(const std::string& path);

private:
    Variable m_variable;
};

// Names that the system opens, of what is no regular file. Those that aren't there by themselves lie in the folder.
std::vector<wstring> NamesOfNoFile(const TempFolder& folder);

// Writes over the beginning of a file that is there, in memory that it is mapped to.
void WriteMapped(const std::string& path, const std::string& bytes);

} // namespace ZelmResult::test
