// Runs commands. Every tool of a pop-up band and every menu item ends here; which command it is
// stands in the tables of command_tables.h, what the command does in one small function.
//
// A command that has no such function yet is disabled everywhere.
#pragma once

#include "commands/command_tables.h"
#include "commands/selection_context.h"

#include <QPointer>
#include <QString>

namespace editing {
class frmOpen;
class frmOptionenWMF;
} // namespace editing

namespace commands {

class LibraryView;
class frmEditGruppe;
class frmEditorOptionen;
class frmEditSymbol;
class frmGroupInfo;
class frmInfo;
class frmInfos;
class frmNeueGruppe;

// Where a command was chosen. Some commands act differently on the two ways.
enum class Origin { PopUp, Menu };

// The dialogs, each made on its first use, kept for the next one, and owned by the main window.
struct Dialogs {
    QPointer<frmNeueGruppe> newGroup;
    QPointer<frmEditGruppe> renameGroup;
    QPointer<frmGroupInfo> groupInfo;
    QPointer<editing::frmOpen> addPicture;
    QPointer<editing::frmOptionenWMF> vectorPicture;
    QPointer<frmEditSymbol> renamePicture;
    QPointer<frmInfos> pictureInfo;
    QPointer<frmEditorOptionen> editorOptions;
    QPointer<frmInfo> libraryInfo;
};

// What a command's function gets.
struct CommandCall {
    LibraryView& view;
    Dialogs& dialogs;
    SelectionContext selection;
    Origin origin;
};

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
