#include "browser/key_bindings.h"

#include "browser/main_menus.h"

#include <QMainWindow>
#include <QShortcut>

namespace browser {
namespace {

using commands::Command;

// The key counts while that very widget has the focus: a field that edits in place has its own.
void bind(QWidget* widget, Qt::Key key, const std::function<void()>& action) {
    auto* shortcut = new QShortcut(QKeySequence(key), widget);
    shortcut->setContext(Qt::WidgetShortcut);
    QObject::connect(shortcut, &QShortcut::activated, widget, action);
}

void bind(QMainWindow& window, QKeySequence::StandardKey key, const std::function<void()>& action) {
    auto* shortcut = new QShortcut(key, &window);
    QObject::connect(shortcut, &QShortcut::activated, &window, action);
}

} // namespace

void bindKeys(QMainWindow& window, const KeyTargets& targets) {
    const auto run = [menus = targets.menus](Command command) {
        return [menus, command] { menus->trigger(command); };
    };
    bind(targets.tree, Qt::Key_F2, run(Command::RenameGroup));
    bind(targets.tree, Qt::Key_Delete, run(Command::DeleteGroup));
    bind(targets.strip, Qt::Key_F2, run(Command::RenamePicture));
    bind(targets.strip, Qt::Key_Delete, run(Command::DeletePicture));
    bind(targets.list, Qt::Key_Delete, run(Command::DeletePicture));
    bind(window, QKeySequence::Copy, targets.copy);
    bind(window, QKeySequence::Refresh, targets.refresh);
    bind(window, QKeySequence::Find, targets.find);
}

} // namespace browser
