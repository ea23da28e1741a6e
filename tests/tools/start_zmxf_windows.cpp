#include "tests/builders/memory_file.h"
#include "tests/tools/run_zmxf.h"
#include "zelmresult/support/path_bytes.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <windows.h>

namespace zmxf::test {

namespace {

// A quote ends the argument unless an odd number of backslashes is in front of it.
std::wstring quoted(const std::string& argument)
{
    std::wstring text = L"\"";
    std::size_t backslashes = 0;
    for (const char16_t c : ZelmResult::PathFromBytes(argument)) {
        if (c == u'"') text.append(backslashes + 1, L'\\');
        backslashes = c == u'\\' ? backslashes + 1 : 0;
        text += static_cast<wchar_t>(c);
    }
    return text.append(backslashes, L'\\') + L'"';
}

HANDLE fileFor(const std::string& path)
{
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    return CreateFileA(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL,
                       nullptr);
}

} // namespace

Outcome zmxf(const std::vector<std::string>& arguments, int fileLimit, const std::string& temporary)
{
    EXPECT_EQ(fileLimit, 0) << "no file has a limit";
    const ZelmResult::test::TempFolder folder;
    std::wstring command = quoted(ZMXF_PROGRAM);
    for (const std::string& argument : arguments) command += L' ' + quoted(argument);
    STARTUPINFOW start{};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdOutput = fileFor(folder.file("out"));
    start.hStdError = fileFor(folder.file("err"));
    std::wstring former(GetEnvironmentVariableW(L"TMP", nullptr, 0), L'\0');
    former.resize(GetEnvironmentVariableW(L"TMP", former.data(), static_cast<DWORD>(former.size())));
    if (!temporary.empty()) SetEnvironmentVariableA("TMP", temporary.c_str());
    PROCESS_INFORMATION process{};
    EXPECT_TRUE(CreateProcessW(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start, &process));
    SetEnvironmentVariableW(L"TMP", former.c_str());
    (void)WaitForSingleObject(process.hProcess, INFINITE);
    DWORD status = 0;
    (void)GetExitCodeProcess(process.hProcess, &status);
    for (const HANDLE handle : {process.hProcess, process.hThread, start.hStdOutput, start.hStdError})
        (void)CloseHandle(handle);
    return {static_cast<int>(status), ZelmResult::test::readDiskFile(folder.file("out")),
            ZelmResult::test::readDiskFile(folder.file("err"))};
}

} // namespace zmxf::test
