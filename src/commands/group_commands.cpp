#include "commands/group_commands.h"

#include "app/long_operation.h"
#include "app/message_box.h"
#include "app/texts.h"
#include "commands/command_call.h"
#include "commands/failure_report.h"
#include "commands/frm_create.h"
#include "commands/frm_edit_gruppe.h"
#include "commands/frm_group_info.h"
#include "commands/frm_import.h"
#include "commands/frm_katalog.h"
#include "commands/frm_neue_gruppe.h"
#include "commands/library_view.h"
#include "store/group_operations.h"

namespace commands {
namespace {

constexpr int kDeleteBefore = 304;
constexpr int kDeleteAfter = 305;
constexpr int kNoGroup = 306;
constexpr app::TextPair kDeleting{u"Die Gruppe wird gelöscht", u"The group is being deleted"};

void sayThatNoGroupIsSelected(const CommandCall& call) {
    app::msgBox(app::text(kNoGroup), app::Buttons::Ok, app::kProgramTitle, call.view.owner());
}

bool isDeletionConfirmed(const CommandCall& call) {
    const QString question =
        app::text(kDeleteBefore) + call.selection.groupName + app::text(kDeleteAfter);
    return app::msgBox(question, app::Buttons::YesNo, app::kProgramTitle, call.view.owner()) ==
           app::kAnswerYes;
}

// From the menu a folder becomes a group below whatever group is selected.
GroupTarget targetForFolder(const CommandCall& call) {
    return call.origin == Origin::Menu && call.selection.hasGroup() ? GroupTarget::BelowSelected
                                                                    : defaultTarget(call.selection);
}

} // namespace

void newGroup(CommandCall& call) {
    keptDialog(call.dialogs.newGroup, call.view, call.view.owner()).openFor(call.selection);
}

void createGroupFromFolder(CommandCall& call) {
    keptDialog(call.dialogs.groupFromFolder, call.view, call.view.owner())
        .openFor(call.selection, targetForFolder(call));
}

void importGroup(CommandCall& call) {
    keptDialog(call.dialogs.importGroup, call.view, call.view.owner()).openFor(call.selection);
}

void renameGroup(CommandCall& call) {
    keptDialog(call.dialogs.renameGroup, call.view, call.view.owner()).openFor(call.selection);
}

void deleteGroup(CommandCall& call) {
    const auto group = call.selection.group();
    if (!group) {
        sayThatNoGroupIsSelected(call);
        return;
    }
    if (!isDeletionConfirmed(call)) {
        return;
    }
    try {
        app::runLong({app::text(kDeleting)}, call.view.owner(), [&](store::Progress&) {
            if (call.selection.TopLevelSelected) {
                store::removeGroupFile(call.view.library(), group->file);
            } else {
                store::deleteGroup(call.view.library(), *group);
            }
        });
    } catch (const std::exception& error) {
        reportFailure(call.view, call.selection, error, app::kProgramTitle, call.view.owner());
        return;
    }
    call.view.TreeViewRemove(*group);
    call.view.SelectFirstGroup();
}

void showGroupInfo(CommandCall& call) {
    if (!call.selection.hasGroup()) {
        sayThatNoGroupIsSelected(call);
        return;
    }
    keptDialog(call.dialogs.groupInfo, call.view, call.view.owner()).openFor(call.selection);
}

void printCatalogue(CommandCall& call) {
    if (!call.selection.hasGroup()) {
        sayThatNoGroupIsSelected(call);
        return;
    }
    keptDialog(call.dialogs.catalogue, call.view, call.view.owner()).openFor(call.selection);
}

} // namespace commands
