// The window `frmAusgelassen`: which files a run has left out, and why.
#pragma once

#include "store/pictures_from_files.h"

#include <span>

class QWidget;

namespace commands {

// Shows the list modally; without files nothing.
void showSkippedFiles(std::span<const store::SkippedFile> files, QWidget* owner);

} // namespace commands
