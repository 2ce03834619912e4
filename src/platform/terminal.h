// Whether someone watches a standard stream.
#pragma once

namespace platform {

enum class StandardStream { Output, Error };

// Whether the stream goes to a terminal (and not to a file, a pipe or nowhere).
bool isTerminal(StandardStream stream);

} // namespace platform
