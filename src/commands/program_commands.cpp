#include "commands/program_commands.h"

#include "app/help.h"
#include "app/message_box.h"
#include "app/texts.h"
#include "commands/command_call.h"
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
