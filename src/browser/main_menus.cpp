#include "browser/main_menus.h"

#include "app/texts.h"

#include <QAction>
#include <QKeyEvent>
#include <QMenu>
#include <QMenuBar>

namespace browser {
namespace {

using commands::Band;
using commands::Command;
using commands::Menu;
using commands::MenuId;
using commands::MenuItem;

QString fromAscii(std::string_view text) {
    return QString::fromLatin1(text.data(), static_cast<qsizetype>(text.size()));
}

QString captionOf(const MenuItem& item) {
    if (item.textId != commands::kNoTextId) {
        return app::text(item.textId);
    }
    return item.caption.german == nullptr ? QString() : app::text(item.caption);
}

QString actionName(const Menu& menu, int index) {
    return QStringLiteral("%1_%2").arg(fromAscii(menu.name)).arg(index);
}

} // namespace

MainMenus::MainMenus(QMenuBar* bar, commands::Dispatcher& dispatcher, QWidget* owner)
    : QObject(owner), dispatcher_(dispatcher) {
    for (const Menu& menu : commands::menus()) {
        buildMenu(bar, menu);
    }
    for (const Band& band : commands::bands()) {
        buildBand(band, owner);
    }
    for (const commands::IdleTool& tool : commands::idleTools()) {
        buildTool(tool.key, tool.storedCaption, owner);
    }
    itemOf(Command::Help)->setShortcut(QKeySequence::HelpContents);
    itemOf(Command::PrintCatalogue)->setShortcut(QKeySequence::Print);
    setState(selection_);
    bar->installEventFilter(this);
    const QMenu* edit = menus_.at(MenuId::Bearbeiten);
    connect(edit, &QMenu::aboutToShow, this, &MainMenus::editMenuOpens);
    connect(edit, &QMenu::aboutToHide, this, &MainMenus::editMenuCloses);
}

QAction* MainMenus::itemOf(Command command) const {
    return menuActions_.at(command);
}

QAction* MainMenus::toolOf(Command command) const {
    return bandActions_.at(command);
}

void MainMenus::buildMenu(QMenuBar* bar, const Menu& menu) {
    auto* popUp = new QMenu(bar);
    popUp->setObjectName(fromAscii(menu.name));
    popUp->menuAction()->setObjectName(QStringLiteral("Men_%1").arg(static_cast<int>(menu.id)));
    int expected = 0;
    for (const MenuItem& item : menu.items) {
        if (item.index != expected) {
            popUp->addSeparator()->setObjectName(actionName(menu, expected));
        }
        expected = item.index + 1;
        auto* action = new QAction(popUp);
        action->setObjectName(actionName(menu, item.index));
        action->setVisible(item.textId != commands::kNoTextId || item.caption.german != nullptr);
        action->setCheckable(item.command == Command::GraphicalPreview ||
                             item.command == Command::ThumbnailNames);
        action->setChecked(item.command == Command::GraphicalPreview);
        connect(action, &QAction::triggered, this,
                [this, id = menu.id, index = item.index] { dispatcher_.menuClick(id, index); });
        popUp->addAction(action);
        menuActions_[item.command] = action;
    }
    menus_[menu.id] = popUp;
    bar->addMenu(popUp);
}

QAction* MainMenus::buildTool(std::string_view key, std::u16string_view caption, QObject* owner) {
    auto* tool = new QAction(
        QString::fromUtf16(caption.data(), static_cast<qsizetype>(caption.size())), owner);
    tool->setObjectName(fromAscii(key));
    connect(tool, &QAction::triggered, this,
            [this, name = tool->objectName()] { dispatcher_.toolClick(name); });
    return tool;
}

void MainMenus::buildBand(const Band& band, QWidget* owner) {
    auto* popUp = new QMenu(owner);
    popUp->setObjectName(fromAscii(band.name));
    for (const commands::Tool& tool : band.tools) {
        QAction* action = buildTool(tool.key, tool.storedCaption, popUp);
        action->setEnabled(commands::hasHandler(tool.command));
        popUp->addAction(action);
        bandActions_[tool.command] = action;
    }
    bands_[band.id] = popUp;
}

void MainMenus::setCaptions() {
    for (const Menu& menu : commands::menus()) {
        menus_.at(menu.id)->setTitle(app::text(menu.textId));
        for (const MenuItem& item : menu.items) {
            itemOf(item.command)->setText(captionOf(item));
        }
    }
    for (const Band& band : commands::bands()) {
        for (const commands::Tool& tool : band.tools) {
            toolOf(tool.command)->setText(app::text(tool.textId));
        }
    }
}

void MainMenus::setState(commands::Selection selection) {
    selection_ = selection;
    for (const auto& [command, item] : menuActions_) {
        updateItem(command);
    }
}

void MainMenus::setPossible(Command command, bool isPossible) {
    if (isPossible) {
        impossible_.erase(command);
    } else {
        impossible_.insert(command);
    }
    updateItem(command);
}

void MainMenus::updateItem(Command command) {
    itemOf(command)->setEnabled(!impossible_.contains(command) &&
                                commands::isOffered(command, selection_));
}

void MainMenus::setGraphicalPreview(bool on) {
    itemOf(Command::GraphicalPreview)->setChecked(on);
}

void MainMenus::setThumbnails(const ViewChoices& choices, bool areShown) {
    const int side = choices.thumbnailSide;
    itemOf(Command::ThumbnailNames)->setChecked(choices.hasNames);
    setPossible(Command::ThumbnailNames, areShown);
    setPossible(Command::LargerThumbnails, areShown && side != kThumbnailSides.back());
    setPossible(Command::SmallerThumbnails, areShown && side != kThumbnailSides.front());
    setPossible(Command::NormalThumbnails, areShown && side != kDefaultThumbnailSide);
}

void MainMenus::setKeys(Command command, const QList<QKeySequence>& keys,
                        const QList<QWidget*>& widgets) {
    QAction* item = itemOf(command);
    item->setShortcuts(keys);
    item->setShortcutContext(Qt::WidgetShortcut);
    keysOfViews_.append(keys);
    for (QWidget* widget : widgets) {
        widget->addAction(item);
    }
}

void MainMenus::setKeys(Command command, const QList<QKeySequence>& keys) {
    itemOf(command)->setShortcuts(keys);
}

// Whoever has gone to the menu bar by Alt opens a menu by Enter, and does not edit a picture.
bool MainMenus::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride &&
        keysOfViews_.contains(static_cast<QKeyEvent*>(event)->keyCombination())) {
        event->accept();
        return true;
    }
    return QObject::eventFilter(watched, event);
}

void MainMenus::trigger(Command command) {
    itemOf(command)->trigger();
}

void MainMenus::popUp(commands::BandId band, const QPoint& globalPosition) {
    bands_.at(band)->popup(globalPosition);
}

} // namespace browser
