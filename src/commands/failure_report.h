// Telling the user that an operation on the selected group failed.
#pragma once

#include "commands/selection_context.h"
#include "compound/trash.h"

#include <exception>

class QWidget;

namespace commands {

class LibraryView;

// Brings the window up to date after a failure that says that it shows what is not there any more,
// or perhaps not yet what is there now.
void showWhatIsLeft(LibraryView& view, const std::exception& failure);

// Asks whether what the trash cannot take is to be deleted, or replaced, for good.
bool isDeletionForGoodConfirmed(const compound::TrashFailure& failure, QWidget* owner);
bool isReplacingForGoodConfirmed(const compound::TrashFailure& failure, QWidget* owner);

// Shows a box with the path of the selection's group and the cause, then what is left. Tells
// nothing of what the user has stopped.
void reportFailure(LibraryView& view, const SelectionContext& selection,
                   const std::exception& failure, const QString& title, QWidget* owner);

// Whether the selection's group has left the window, which may show another one by now: it notices
// by itself what others remove. To be asked once the failure has been reported.
bool hasVanished(const LibraryView& view, const SelectionContext& selection);

} // namespace commands
