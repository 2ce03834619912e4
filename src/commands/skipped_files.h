// The window `frmAusgelassen`: which files a run has left out, and why; or what else it has to tell
// that one box could not hold.
#pragma once

#include "store/pictures_from_files.h"

#include <QString>
#include <QStringList>

#include <span>

class QWidget;

namespace commands {

// Shows the list modally; without files nothing.
void showSkippedFiles(std::span<const store::SkippedFile> files, QWidget* owner);

// The same for failures of which each names its file.
void showFailures(std::span<const compound::Error> failures, QWidget* owner);

// The same window with other words; without entries nothing.
void showSummary(const QString& caption, const QStringList& entries, QWidget* owner);

} // namespace commands
