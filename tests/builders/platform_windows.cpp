#include "tests/builders/platform.h"

#include <cstdlib>
#include <cstring>
#include <windows.h>

namespace ZelmResult::test {

Variable::Variable(const char* name, const std::string& value) : m_name(name), m_former(Value(name))
{
    (void)::_putenv_s(name, value.c_str());
}

Variable::~Variable() { (void)::_putenv_s(m_name, m_former.value_or("").c_str()); }

TempDirectory::TempDirectory(const std::string& path) : m_variable("TMP", path) {}

std::vector<wstring> NamesOfNoFile(const TempFolder& /*folder*/) { return {u"NUL", u"\\\\.\\NUL", u"CON"}; }

void WriteMapped(const std::string& path, const std::string& bytes)
{
    const HANDLE file = ::CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                      nullptr, OPEN_EXISTING, 0, nullptr);
    const HANDLE mapping = ::CreateFileMappingW(file, nullptr, PAGE_READWRITE, 0, 0, nullptr);
    void* const memory = ::MapViewOfFile(mapping, FILE_MAP_WRITE, 0, 0, bytes.size());
    std::memcpy(memory, bytes.data(), bytes.size());
    ::UnmapViewOfFile(memory);
    ::CloseHandle(mapping);
    ::CloseHandle(file);
}

} // namespace ZelmResult::test
