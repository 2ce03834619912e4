#include "commands/group_commands.h"

#include "commands/dispatcher.h"
#include "commands/frm_neue_gruppe.h"
#include "commands/library_view.h"

namespace commands {

void newGroup(CommandCall& call) {
    if (!call.dialogs.newGroup) {
        call.dialogs.newGroup = new frmNeueGruppe(call.view, call.view.owner());
    }
    call.dialogs.newGroup->openFor(call.selection);
}

} // namespace commands
