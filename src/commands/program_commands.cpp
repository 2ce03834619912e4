#include "commands/program_commands.h"

#include "app/help.h"
#include "app/message_box.h"
#include "app/texts.h"
#include "commands/dispatcher.h"
#include "commands/frm_editor_optionen.h"
#include "commands/frm_info.h"
#include "commands/library_view.h"

namespace commands {

void toggleGraphicalPreview(CommandCall& call) {
    if (call.view.GraphicalPreview()) {
        call.view.VorschauDeaktiviert();
    } else {
        call.view.VorschauAktiviert();
    }
}

void showEditorOptions(CommandCall& call) {
    if (!call.dialogs.editorOptions) {
        call.dialogs.editorOptions = new frmEditorOptionen(call.view.owner());
    }
    call.dialogs.editorOptions->openAfresh();
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
    if (!call.dialogs.libraryInfo) {
        call.dialogs.libraryInfo = new frmInfo(call.view.owner());
    }
    call.dialogs.libraryInfo->openFor(call.view.library());
}

} // namespace commands
