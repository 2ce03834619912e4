#include "platform/terminal.h"

#include <unistd.h>

namespace platform {

bool isTerminal(StandardStream stream) {
    return ::isatty(stream == StandardStream::Output ? STDOUT_FILENO : STDERR_FILENO) == 1;
}

} // namespace platform
