// Display of the help file.
#pragma once

#include <QString>

namespace platform {

enum class HelpOutcome { Shown, FileMissing, NoViewer };

// Opens the compiled help file at the topic with this context number in the system's help viewer.
HelpOutcome displayHelp(const QString& nativeFile, int contextId);

} // namespace platform
