#include "commands/program_commands.h"

#include "app/help.h"
#include "app/message_box.h"
#include "app/texts.h"
#include "commands/command_call.h"
#include "commands/frm_editor_optionen.h"
#include "commands/frm_info.h"
#include "commands/library_view.h"
#include "commands/undo_history.h"

namespace commands {

void toggleGraphicalPreview(CommandCall& call) {
    if (call.view.GraphicalPreview()) {
        call.view.VorschauDeaktiviert();
    } else {
        call.view.VorschauAktiviert();
    }
}

void undo(CommandCall& call) {
    call.view.history().undoLast(call.view);
}

void cutPictures(CommandCall& call) {
    call.view.cutPictures();
}

void copyPictures(CommandCall& call) {
    call.view.copyPictures();
}

void pastePictures(CommandCall& call) {
    call.view.pastePictures();
}

void selectAll(CommandCall& call) {
    call.view.selectAll();
}

void showEditorOptions(CommandCall& call) {
    keptDialog(call.dialogs.editorOptions, call.view.owner()).openAfresh();
}

void exitProgram(CommandCall& call) {
    call.view.Exit();
}

void showMainHelp(CommandCall& call) {
    app::showHelp(app::HelpTopic::MainWindow, call.view.owner());
}

void searchHelp(CommandCall& call) {
    app::msgBox(QStringLiteral("Leider noch keine Hilfe verfügbar"), app::Buttons::Ok,
                app::kProgramTitle, call.view.owner());
}

void showLibraryInfo(CommandCall& call) {
    keptDialog(call.dialogs.libraryInfo, call.view.owner()).openFor(call.view.library());
}

} // namespace commands
