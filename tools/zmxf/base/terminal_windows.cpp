#include "tools/zmxf/base/terminal.h"

#include <array>
#include <cstdlib>
#include <fcntl.h>
#include <io.h>
#include <windows.h>

namespace zmxf {

namespace {

UINT g_formerCodePage = 0;

HANDLE HandleOf(Stream stream) { return GetStdHandle(stream == Stream::Output ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE); }

void RestoreCodePage() { (void)SetConsoleOutputCP(g_formerCodePage); }

BOOL WINAPI OnEvent(DWORD /*event*/)
{
    RestoreCodePage();
    return FALSE; // the program is ended without its usual exit
}

void SpeakUtf8()
{
    g_formerCodePage = GetConsoleOutputCP();
    if (g_formerCodePage == 0 || g_formerCodePage == CP_UTF8 || SetConsoleOutputCP(CP_UTF8) == 0) return;
    (void)std::atexit(RestoreCodePage);
    (void)SetConsoleCtrlHandler(OnEvent, TRUE);
}

} // namespace

bool IsTerminal(Stream stream)
{
    DWORD mode = 0;
    return GetConsoleMode(HandleOf(stream), &mode) != 0;
}

bool TakesEscapes(Stream stream)
{
    DWORD mode = 0;
    return GetConsoleMode(HandleOf(stream), &mode) != 0 &&
           SetConsoleMode(HandleOf(stream), mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
}

void PrepareStandardStreams()
{
    for (const int stream : std::array{0, 1, 2}) (void)_setmode(stream, _O_BINARY);
    SpeakUtf8();
}

} // namespace zmxf
