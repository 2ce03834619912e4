#include "editing/bitmap_editor/editor_menus.h"

#include "app/texts.h"

#include <QAction>
#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>

#include <utility>
#include <vector>

namespace editing {

namespace {

using Command = EditorCommand;
using Keys = QList<QKeySequence>;

struct Item {
    int index; // a gap between two of them is a line
    Command command;
    int textId;
    Keys keys = {};
};

} // namespace

struct EditorMenu {
    const char* name;
    int textId;
    std::vector<Item> items;
};

namespace {

// On many keyboards the plus sign is on the key of the equals sign.
const std::vector<EditorMenu>& menus() {
    static const std::vector<EditorMenu> all{
        {"Men_Datei",
         1001,
         {{0, Command::Save, 1004, {QKeySequence(Qt::CTRL | Qt::Key_S)}},
          {2, Command::Back, 1005}}},
        {"Men_Bearbeiten",
         1002,
         {{0, Command::Undo, 1006, {QKeySequence(Qt::CTRL | Qt::Key_Z)}},
          {1,
           Command::Redo,
           1007,
           {QKeySequence(Qt::CTRL | Qt::Key_Y), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z)}}}},
        {"Men_Bild",
         1003,
         {{0,
           Command::ZoomIn,
           1021,
           {QKeySequence(Qt::CTRL | Qt::Key_Plus), QKeySequence(Qt::CTRL | Qt::Key_Equal)}},
          {1, Command::ZoomOut, 1022, {QKeySequence(Qt::CTRL | Qt::Key_Minus)}},
          {2, Command::FlipVertical, 1012},
          {3, Command::FlipHorizontal, 1013}}},
        {"Men_Farben",
         1019,
         {{0, Command::Saturation, 1014},
          {1, Command::Contrast, 1015},
          {2, Command::Brightness, 1016},
          {3, Command::ChangeColours, 1018},
          {4, Command::Invert, 1017}}},
        {"Men_Hilfe", 1020, {{0, Command::Help, 1023, {QKeySequence(Qt::Key_F1)}}}},
    };
    return all;
}

// Below the item 4 of the menu "Men_Bild".
const EditorMenu& rotations() {
    static const EditorMenu menu{"Men_BildRotation",
                                 1008,
                                 {{0, Command::RotateLeft, 1009},
                                  {1, Command::RotateRight, 1010},
                                  {2, Command::RotateFreely, 1011}}};
    return menu;
}

constexpr int kRotationsIndex = 4;

QString itemName(const QMenu& menu, int index) {
    return QStringLiteral("%1_%2").arg(menu.objectName()).arg(index);
}

} // namespace

EditorMenus::EditorMenus(QMenuBar* bar, std::function<void(EditorCommand)> run)
    : QObject(bar), run_(std::move(run)) {
    int number = 0;
    for (const EditorMenu& menu : menus()) {
        QMenu* popUp = addMenu(bar, menu);
        popUp->menuAction()->setObjectName(QStringLiteral("Men_%1").arg(number++));
        bar->addMenu(popUp);
        if (popUp->objectName() == QLatin1String("Men_Bild")) {
            QMenu* below = addMenu(popUp, rotations());
            below->menuAction()->setObjectName(itemName(*popUp, kRotationsIndex));
            popUp->addMenu(below);
        }
    }
}

QMenu* EditorMenus::addMenu(QWidget* parent, const EditorMenu& menu) {
    auto* popUp = new QMenu(parent);
    popUp->setObjectName(QString::fromLatin1(menu.name));
    captions_.append({popUp->menuAction(), menu.textId});
    int expected = 0;
    for (const Item& item : menu.items) {
        if (item.index != expected) {
            popUp->addSeparator()->setObjectName(itemName(*popUp, expected));
        }
        expected = item.index + 1;
        QAction* action = popUp->addAction(QString());
        action->setObjectName(itemName(*popUp, item.index));
        action->setShortcuts(item.keys);
        connect(action, &QAction::triggered, this, [this, &item] { run_(item.command); });
        actions_[item.command] = action;
        captions_.append({action, item.textId});
    }
    return popUp;
}

void EditorMenus::setCaptions() {
    for (const Captioned& each : captions_) {
        each.action->setText(app::text(each.textId));
    }
}

QString EditorMenus::captionOf(EditorCommand command) const {
    return actions_.value(command)->text();
}

void EditorMenus::setEnabled(EditorCommand command, bool enabled) {
    actions_.value(command)->setEnabled(enabled);
}

} // namespace editing
