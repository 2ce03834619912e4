#include "commands/group_commands.h"

#include "app/message_box.h"
#include "app/texts.h"
#include "commands/dispatcher.h"
#include "commands/failure_report.h"
#include "commands/frm_edit_gruppe.h"
#include "commands/frm_group_info.h"
#include "commands/frm_neue_gruppe.h"
#include "commands/library_view.h"
#include "store/group_operations.h"

namespace commands {
namespace {

constexpr int kDeleteBefore = 304;
constexpr int kDeleteAfter = 305;
constexpr int kNoGroup = 306;

bool isGroupSelected(const CommandCall& call) {
    if (!call.selection.hasGroup()) {
        app::msgBox(app::text(kNoGroup), app::Buttons::Ok, app::kProgramTitle, call.view.owner());
    }
    return call.selection.hasGroup();
}

bool isDeletionConfirmed(const CommandCall& call) {
    const QString question =
        app::text(kDeleteBefore) + call.selection.groupName + app::text(kDeleteAfter);
    return app::msgBox(question, app::Buttons::YesNo, app::kProgramTitle, call.view.owner()) ==
           app::kAnswerYes;
}

void deleteFromLibrary(const store::Library& library, const SelectionContext& selection) {
    if (selection.TopLevelSelected) {
        store::removeGroupFile(library, selection.CurrentGroup);
    } else {
        store::deleteGroup(library, *selection.group());
    }
}

} // namespace

void newGroup(CommandCall& call) {
    if (!call.dialogs.newGroup) {
        call.dialogs.newGroup = new frmNeueGruppe(call.view, call.view.owner());
    }
    call.dialogs.newGroup->openFor(call.selection);
}

void renameGroup(CommandCall& call) {
    if (!call.dialogs.renameGroup) {
        call.dialogs.renameGroup = new frmEditGruppe(call.view, call.view.owner());
    }
    call.dialogs.renameGroup->openFor(call.selection);
}

void deleteGroup(CommandCall& call) {
    if (!isGroupSelected(call) || !isDeletionConfirmed(call)) {
        return;
    }
    try {
        deleteFromLibrary(call.view.library(), call.selection);
    } catch (const std::exception& error) {
        reportFailure(call.view, call.selection, error, app::kProgramTitle, call.view.owner());
        return;
    }
    call.view.TreeViewRemove(*call.selection.group());
    call.view.SelectFirstGroup();
}

void showGroupInfo(CommandCall& call) {
    if (!isGroupSelected(call)) {
        return;
    }
    if (!call.dialogs.groupInfo) {
        call.dialogs.groupInfo = new frmGroupInfo(call.view, call.view.owner());
    }
    call.dialogs.groupInfo->openFor(call.selection);
}

} // namespace commands
