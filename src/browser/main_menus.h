// The menu bar and the two pop-up bands, built from the tables of commands.
//
// A menu item is the action MENU_INDEX (Men_Datei_0), a tool the action with its key as name (tools
// without a band belong to the window and do nothing); the menus themselves are named Men_Datei,
// ..., the bands Band1 and Band2.
#pragma once

#include "browser/view_choices.h"
#include "commands/dispatcher.h"
#include "commands/enabling.h"

#include <QKeySequence>
#include <QList>
#include <QObject>

#include <map>
#include <set>
#include <string_view>

class QAction;
class QMenu;
class QMenuBar;
class QWidget;

namespace browser {

class MainMenus : public QObject {
    Q_OBJECT

  public:
    // The dispatcher must outlive the menus; `owner` owns the pop-up bands.
    MainMenus(QMenuBar* bar, commands::Dispatcher& dispatcher, QWidget* owner);

    // Sets all captions from the text table.
    void setCaptions();

    // Enables the items for such a selection.
    void setState(commands::Selection selection);

    // Whether the command could do anything at present. At first it could, in the eyes of the
    // menus.
    void setPossible(commands::Command command, bool isPossible);

    void setGraphicalPreview(bool on);

    // What can be done about the thumbnails: nothing while there are none.
    void setThumbnails(const ViewChoices& choices, bool areShown);

    // The menu's item shows the keys. They count while one of the widgets has the focus itself: a
    // field that edits in place has its own. Without widgets the item only shows the first of them.
    void setKeys(commands::Command command, const QList<QKeySequence>& keys,
                 const QList<QWidget*>& widgets);
    // The same with keys that count in the whole window.
    void setKeys(commands::Command command, const QList<QKeySequence>& keys);

    // Chooses the menu's item of that command; nothing while it is disabled.
    void trigger(commands::Command command);

    // Shows a band at that place of the screen.
    void popUp(commands::BandId band, const QPoint& globalPosition);

  signals:
    void editMenuOpens();
    void editMenuCloses();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void buildMenu(QMenuBar* bar, const commands::Menu& menu);
    QAction* buildTool(std::string_view key, std::u16string_view caption, QObject* owner);
    void buildBand(const commands::Band& band, QWidget* owner);
    void updateItem(commands::Command command);
    QAction* itemOf(commands::Command command) const; // there must be one
    QAction* toolOf(commands::Command command) const;

    commands::Dispatcher& dispatcher_;
    std::map<commands::MenuId, QMenu*> menus_;
    std::map<commands::BandId, QMenu*> bands_;
    std::map<commands::Command, QAction*> menuActions_; // a command has one item at most
    std::map<commands::Command, QAction*> bandActions_; // and one tool at most
    commands::Selection selection_ = commands::Selection::None;
    std::set<commands::Command> impossible_;
    QList<QKeySequence> keysOfViews_;
};

} // namespace browser
