#include "browser/key_bindings.h"

#include "browser/main_menus.h"

#include <QKeySequence>

namespace browser {

using commands::Command;

void bindKeys(const KeyTargets& targets) {
    MainMenus& menus = *targets.menus;
    menus.setKeys(Command::RenameGroup, {Qt::Key_F2}, {targets.tree});
    menus.setKeys(Command::DeleteGroup, {Qt::Key_Delete}, {targets.tree});
    menus.setKeys(Command::RenamePicture, {Qt::Key_F2}, {targets.strip});
    menus.setKeys(Command::DeletePicture, {Qt::Key_Delete}, {targets.strip, targets.list});
    menus.setKeys(Command::EditPicture, {Qt::Key_Enter, Qt::Key_Return}, {}); // the views do it
    menus.setKeys(Command::Undo, QKeySequence::keyBindings(QKeySequence::Undo));
    menus.setKeys(Command::CutPictures, QKeySequence::keyBindings(QKeySequence::Cut));
    menus.setKeys(Command::CopyPictures, QKeySequence::keyBindings(QKeySequence::Copy));
    menus.setKeys(Command::PastePictures, QKeySequence::keyBindings(QKeySequence::Paste));
    menus.setKeys(Command::SelectAll, QKeySequence::keyBindings(QKeySequence::SelectAll));
    menus.setKeys(Command::Refresh, QKeySequence::keyBindings(QKeySequence::Refresh));
    menus.setKeys(Command::Find, QKeySequence::keyBindings(QKeySequence::Find));
    menus.setKeys(Command::LargerThumbnails, {Qt::CTRL | Qt::Key_Plus, Qt::CTRL | Qt::Key_Equal});
    menus.setKeys(Command::SmallerThumbnails, {Qt::CTRL | Qt::Key_Minus});
    menus.setKeys(Command::NormalThumbnails, {Qt::CTRL | Qt::Key_0});
}

} // namespace browser
