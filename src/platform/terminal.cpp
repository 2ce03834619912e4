#include "platform/terminal.h"

#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace platform {

bool isTerminal(StandardStream stream) {
    const int descriptor = stream == StandardStream::Output ? 1 : 2;
#ifdef _WIN32
    return _isatty(descriptor) != 0;
#else
    return ::isatty(descriptor) == 1;
#endif
}

} // namespace platform
