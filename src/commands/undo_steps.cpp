#include "commands/undo_steps.h"

#include "app/texts.h"
#include "commands/library_view.h"
#include "commands/skipped_files.h"
#include "compound/error.h"
#include "platform/desktop_trash.h"

#include <utility>

namespace commands {
namespace {

constexpr app::TextPair kDeletePicture{u"Bild \"%1\" löschen", u"delete picture \"%1\""};
constexpr app::TextPair kDeletePictures{u"%1 Bilder löschen", u"delete %1 pictures"};
constexpr app::TextPair kReplacePicture{u"Bild \"%1\" ersetzen", u"replace picture \"%1\""};
constexpr app::TextPair kReplacePictures{u"%1 Bilder ersetzen", u"replace %1 pictures"};
constexpr app::TextPair kRenamePicture{u"Bild \"%1\" umbenennen", u"rename picture \"%1\""};
constexpr app::TextPair kDeleteGroup{u"Gruppe \"%1\" löschen", u"delete group \"%1\""};
constexpr app::TextPair kRenameGroup{u"Gruppe \"%1\" umbenennen", u"rename group \"%1\""};

QString textOf(const std::u16string& text) {
    return QString::fromStdU16String(text);
}

UndoStep::Show showGroup(const store::GroupAddress& group) {
    return [group](LibraryView& view) {
        view.FillTreeView();
        view.TreeViewSelectNode(group);
        view.Aktualisieren();
    };
}

QString nameOrCount(const std::vector<store::TrashedPicture>& pictures, const app::TextPair& one,
                    const app::TextPair& many) {
    return pictures.size() == 1 ? app::text(one).arg(textOf(pictures[0].name.text))
                                : app::text(many).arg(pictures.size());
}

std::function<UndoStep::Show(const store::Library&, store::Progress&)>
restoring(const store::GroupAddress& group, std::vector<store::TrashedPicture> pictures,
          store::IfNameTaken ifTaken) {
    return [group, ifTaken, pictures = std::move(pictures)](
               const store::Library& library, store::Progress& progress) -> UndoStep::Show {
        platform::DesktopTrash trash;
        auto restored = store::restorePictures(library, group, pictures, trash, ifTaken, progress);
        if (restored.names.empty() && !restored.missing.empty()) {
            throw compound::Error(restored.missing.front());
        }
        return [group, restored = std::move(restored)](LibraryView& view) {
            view.ShowPictures(group, restored.names);
            showFailures(restored.missing, view.owner());
        };
    };
}

} // namespace

UndoStep picturesDeleted(const store::GroupAddress& group,
                         std::vector<store::TrashedPicture> deleted) {
    const QString what = nameOrCount(deleted, kDeletePicture, kDeletePictures);
    return {what, restoring(group, std::move(deleted), store::IfNameTaken::KeepBoth)};
}

UndoStep picturesReplaced(const store::GroupAddress& group,
                          std::vector<store::TrashedPicture> replaced) {
    const QString what = nameOrCount(replaced, kReplacePicture, kReplacePictures);
    return {what, restoring(group, std::move(replaced), store::IfNameTaken::Replace)};
}

UndoStep pictureRenamed(const store::GroupAddress& group, const store::PictureName& from,
                        const store::PictureName& to) {
    return {app::text(kRenamePicture).arg(textOf(from.text)),
            [=](const store::Library& library, store::Progress&) -> UndoStep::Show {
                store::renamePicture(library, group, to, from);
                return [=](LibraryView& view) { view.ShowPictures(group, {from}); };
            },
            true};
}

UndoStep groupDeleted(store::TrashedGroup deleted) {
    return {app::text(kDeleteGroup).arg(textOf(deleted.name.text)),
            [deleted = std::move(deleted)](const store::Library& library,
                                           store::Progress& progress) -> UndoStep::Show {
                platform::DesktopTrash trash;
                return showGroup(store::restoreGroup(library, deleted, trash, progress));
            }};
}

UndoStep groupRenamed(const store::GroupAddress& before, const store::GroupName& from,
                      const store::GroupAddress& after, const store::GroupName& to) {
    return {app::text(kRenameGroup).arg(textOf(from.text)),
            [=](const store::Library& library, store::Progress& progress) -> UndoStep::Show {
                if (!store::isTopLevel(after) && store::readGroupName(library, after) != to) {
                    throw compound::Error(compound::ErrorCode::NotFound,
                                          store::pathOf(library, after.file),
                                          "the group is called otherwise now");
                }
                store::renameGroup(library, after, from, progress);
                return showGroup(before);
            }};
}

} // namespace commands
