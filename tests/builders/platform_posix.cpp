#include "tests/builders/platform.h"

#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ZelmResult::test {

Variable::Variable(const char* name, const std::string& value) : m_name(name), m_former(Value(name))
{
    (void)::setenv(name, value.c_str(), 1);
    ::tzset();
}

Variable::~Variable()
{
    (void)(m_former ? ::setenv(m_name, m_former->c_str(), 1) : ::unsetenv(m_name));
    ::tzset();
}

TempDirectory::TempDirectory(const std::string& path) : m_variable("TMPDIR", path) {}

std::vector<wstring> NamesOfNoFile([[maybe_unused]] const TempFolder& folder)
{
    std::vector<wstring> names{u"/dev/null"};
#ifndef __EMSCRIPTEN__ // which has no pipes with names
    EXPECT_EQ(::mkfifo(folder.file("pipe").c_str(), 0600), 0);
    names.push_back(folder.wideFile("pipe"));
#endif
    return names;
}

void WriteMapped(const std::string& path, const std::string& bytes)
{
    const int file = ::open(path.c_str(), O_RDWR);
    void* const memory = ::mmap(nullptr, bytes.size(), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    std::memcpy(memory, bytes.data(), bytes.size());
    ::munmap(memory, bytes.size());
    ::close(file);
}

} // namespace ZelmResult::test
