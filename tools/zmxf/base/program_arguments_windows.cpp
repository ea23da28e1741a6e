#include "tools/zmxf/base/program_arguments.h"

#include "tools/zmxf/base/found_names.h"
#include "tools/zmxf/base/paths.h"
#include "zelmresult/support/path_bytes.h"
#include "zelmresult/support/windows_path.h"

#include <algorithm>
#include <string_view>
#include <windows.h>

namespace zmxf {

namespace {

struct Argument {
    std::wstring text = {};
    bool isPattern = false;
};

// Takes the command line apart as the run-time library of C does, but knows what was quoted: a quote begins or ends a
// quoted part; \" is one that counts as a character, and so are two of them in a quoted part; a backslash counts as
// itself unless a quote follows. The name of the program, which comes first, has no such escapes.
class CommandLine {
public:
    explicit CommandLine(std::wstring_view line) : m_rest(line) {}

    std::wstring TakeProgram()
    {
        std::wstring name;
        for (bool isQuoted = false; !m_rest.empty() && (isQuoted || !IsBlank(m_rest.front())); m_rest.remove_prefix(1))
            if (m_rest.front() == L'"')
                isQuoted = !isQuoted;
            else
                name += m_rest.front();
        return name;
    }

    bool Take(Argument& argument)
    {
        while (!m_rest.empty() && IsBlank(m_rest.front())) m_rest.remove_prefix(1);
        if (m_rest.empty()) return false;
        argument = {};
        bool isQuoted = false;
        while (!m_rest.empty() && (isQuoted || !IsBlank(m_rest.front()))) {
            if (TakeBackslashes(argument.text)) continue;
            const wchar_t c = m_rest.front();
            m_rest.remove_prefix(1);
            const bool isDoubled = c == L'"' && isQuoted && m_rest.starts_with(L'"');
            if (isDoubled) m_rest.remove_prefix(1);
            if (c == L'"' && !isDoubled) {
                isQuoted = !isQuoted;
                continue;
            }
            argument.text += c;
            argument.isPattern = argument.isPattern || (!isQuoted && (c == L'*' || c == L'?'));
        }
        return true;
    }

private:
    static bool IsBlank(wchar_t c) { return c == L' ' || c == L'\t'; }

    // Those that stand here, and a quote that they escape.
    bool TakeBackslashes(std::wstring& text)
    {
        const std::size_t count = std::min(m_rest.find_first_not_of(L'\\'), m_rest.size());
        if (count == 0) return false;
        m_rest.remove_prefix(count);
        const bool isBeforeQuote = m_rest.starts_with(L'"');
        text.append(isBeforeQuote ? count / 2 : count, L'\\');
        if (isBeforeQuote && count % 2 == 1) {
            text += L'"';
            m_rest.remove_prefix(1);
        }
        return true;
    }

    std::wstring_view m_rest;
};

std::string Utf8(const std::wstring& text) { return ZelmResult::PathToBytes(ZelmResult::FromWindowsPath(text)); }

std::vector<std::string> Described(const std::string& pattern)
{
    std::error_code ignored; // the pattern stays as it is then, and the verb says why there is no such file
    std::vector<std::string> names = FoundNames(pattern, ignored);
    std::sort(names.begin(), names.end());
    for (std::string& name : names) name.insert(0, FolderOf(pattern));
    return names;
}

} // namespace

std::vector<std::string> ProgramArguments(int /*argc*/, const char* const* /*argv*/)
{
    CommandLine line(GetCommandLineW());
    std::vector<std::string> arguments{Utf8(line.TakeProgram())};
    for (Argument argument; line.Take(argument);) {
        const std::string text = Utf8(argument.text);
        const std::vector<std::string> names = argument.isPattern ? Described(text) : std::vector<std::string>();
        if (names.empty())
            arguments.push_back(text);
        else
            arguments.insert(arguments.end(), names.begin(), names.end());
    }
    return arguments;
}

} // namespace zmxf
