#include "tests/builders/platform.h"

#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#ifdef __EMSCRIPTEN__
#include <emscripten/emscripten.h>

// The module has variables of its own, but the zone is that of node.
EM_JS(void, zelmresult_set_of_node, (const char* name, const char* value), {
    if (value)
        process.env[UTF8ToString(name)] = UTF8ToString(value);
    else
        delete process.env[UTF8ToString(name)];
});
#endif

namespace ZelmResult::test {

namespace {

// Null removes it.
void Set(const char* name, const char* value)
{
#ifdef __EMSCRIPTEN__
    zelmresult_set_of_node(name, value);
#endif
    (void)(value != nullptr ? ::setenv(name, value, 1) : ::unsetenv(name));
    ::tzset();
}

} // namespace

Variable::Variable(const char* name, const std::string& value) : m_name(name), m_former(Value(name))
{
    Set(name, value.c_str());
}

Variable::~Variable() { Set(m_name, m_former ? m_former->c_str() : nullptr); }

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
