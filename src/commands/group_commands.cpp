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
#include "commands/undo_steps.h"
#include "store/group_trash.h"

#include <utility>

namespace commands {
namespace {

constexpr int kDeleteBefore = 304;
constexpr int kDeleteAfter = 305;
constexpr int kNoGroup = 306;
constexpr app::TextPair kLooking{u"Die Gruppe wird angesehen", u"The group is being looked at"};
constexpr app::TextPair kOneBelow{u"Ihre Untergruppe wird mitgelöscht.",
                                  u"Its sub-group is deleted as well."};
constexpr app::TextPair kManyBelow{u"Ihre %1 Untergruppen werden mitgelöscht.",
                                   u"Its %1 sub-groups are deleted as well."};
constexpr app::TextPair kDeleted{u"Gruppe %1 gelöscht", u"Group %1 deleted"};
constexpr app::TextPair kDeleting{u"Die Gruppe wird gelöscht", u"The group is being deleted"};

void sayThatNoGroupIsSelected(const CommandCall& call) {
    app::msgBox(app::text(kNoGroup), app::Buttons::Ok, app::kProgramTitle, call.view.owner());
}

// Says what goes along; nothing for a group alone.
QString subGroupsText(const CommandCall& call, const store::GroupAddress& group) {
    const auto count = app::resultOfLong<std::size_t>(
        {app::text(kLooking)}, call.view.owner(),
        [&](store::Progress&) { return store::countGroupsBelow(call.view.library(), group); });
    return count == 0   ? QString()
           : count == 1 ? QStringLiteral("\n\n") + app::text(kOneBelow)
                        : QStringLiteral("\n\n") + app::text(kManyBelow).arg(count);
}

bool isDeletionConfirmed(const CommandCall& call, const store::GroupAddress& group) {
    const QString question = app::text(kDeleteBefore) + call.selection.groupName +
                             app::text(kDeleteAfter) + subGroupsText(call, group);
    return app::msgBox(question, app::Buttons::YesNo, app::kProgramTitle, call.view.owner()) ==
           app::kAnswerYes;
}

void deleteConfirmed(const CommandCall& call, const store::GroupAddress& group) {
    const store::Library& library = call.view.library();
    try {
        auto deleted = app::resultOfLong<store::TrashedGroup>(
            {app::text(kDeleting)}, call.view.owner(), [&](store::Progress& progress) {
                const auto trash = call.view.makeTrash();
                return store::trashGroup(library, group, *trash, progress);
            });
        if (!deleted.file.empty()) {
            call.view.history().add(groupDeleted(std::move(deleted)));
        }
    } catch (const compound::TrashFailure& failure) {
        if (store::isTopLevel(group)) {
            throw;
        }
        if (!isDeletionForGoodConfirmed(failure, call.view.owner())) {
            return;
        }
        app::runLong({app::text(kDeleting)}, call.view.owner(),
                     [&](store::Progress&) { store::deleteGroup(library, group); });
    }
    call.view.TreeViewRemove(group);
    call.view.SelectFirstGroup();
    call.view.TellResult(app::text(kDeleted).arg(call.selection.groupName));
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
    try {
        if (isDeletionConfirmed(call, *group)) {
            deleteConfirmed(call, *group);
        }
    } catch (const std::exception& error) {
        reportFailure(call.view, call.selection, error, app::kProgramTitle, call.view.owner());
    }
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
