// What the user can take back: deletions, renamings and moves since the program was started, the
// last one first.
#pragma once

#include "store/library.h"
#include "store/progress.h"

#include <QString>

#include <functional>
#include <vector>

namespace commands {

class LibraryView;

// One change. `undo` is run beside the window and throws what the store throws; what it returns
// shows in the window that the change is taken back.
struct UndoStep {
    using Show = std::function<void(LibraryView&)>;

    QString what; // "3 Bilder löschen"
    std::function<Show(const store::Library&, store::Progress&)> undo;

    // The steps before it can be taken back without it: a name that is taken now ends it, for it
    // would stand in their way for good.
    bool isForgottenIfNameTaken = false;
};

class UndoHistory {
  public:
    // Called whenever there begins or ceases to be something to take back.
    std::function<void(bool)> availabilityChanged;

    void add(UndoStep step);
    bool isEmpty() const { return steps_.empty(); }

    // Takes the last change back and forgets it. When that fails the box tells why; what may
    // succeed later (the file is locked, the disk full, ...) can be tried again, everything else is
    // forgotten.
    void undoLast(LibraryView& view);

  private:
    void drop();

    std::vector<UndoStep> steps_;
};

} // namespace commands
