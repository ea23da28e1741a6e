#include "tools/zmxf/base/terminal.h"

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace zmxf {

bool IsTerminal(Stream stream) { return ::isatty(stream == Stream::Output ? STDOUT_FILENO : STDERR_FILENO) == 1; }

bool TakesEscapes(Stream stream) { return IsTerminal(stream); }

void PrepareStandardStreams()
{
    int descriptor = 0;
    do {
        descriptor = ::open("/dev/null", O_RDONLY); // printing fails, as it does without
    } while (descriptor >= 0 && descriptor <= STDERR_FILENO);
    if (descriptor > STDERR_FILENO) (void)::close(descriptor);
    (void)std::signal(SIGXFSZ, SIG_IGN);
}

} // namespace zmxf
