#include "commands/picture_commands.h"

#include "commands/dispatcher.h"
#include "commands/library_view.h"
#include "editing/frm_open.h"

namespace commands {

void addPicture(CommandCall& call) {
    LibraryView& view = call.view;
    if (!call.dialogs.addPicture) {
        call.dialogs.addPicture =
            new editing::frmOpen(view.owner(), [&view] { view.Aktualisieren(); });
    }
    call.dialogs.addPicture->openFor(view.library(),
                                     {call.selection.group(), call.selection.groupName});
}

} // namespace commands
