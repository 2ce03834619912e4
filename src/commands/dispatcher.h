// Runs commands. Every tool of a pop-up band and every menu item ends here; which command it is
// stands in the tables of command_tables.h, what the command does in one small function.
//
// A command that has no such function yet is disabled everywhere.
#pragma once

#include "commands/command_call.h"
#include "commands/command_tables.h"

#include <QString>

namespace commands {

// Whether the command has a function yet.
bool hasHandler(Command command);

class Dispatcher {
  public:
    // The view must outlive the dispatcher.
    explicit Dispatcher(LibraryView& view);

    // A click on a tool. The key is compared exactly; an unknown one does nothing.
    void toolClick(const QString& key);

    // A click on a menu's item; an index that no item has does nothing.
    void menuClick(MenuId menu, int index);

    // Fills the context from what is selected now and runs the command. What the command throws is
    // shown in a box.
    void run(Command command, Origin origin);

  private:
    LibraryView& view_;
    Dialogs dialogs_;
};

} // namespace commands
