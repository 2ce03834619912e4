// The library browser: the one main window. It composes tree, picture panel, menus and commands and
// passes their events on; what each of them does stands in its own file.
//
// Creating the window reads nothing. The first showing loads: captions, settings, tree. Once the
// window is shown the damaged files are reported and the group last used is selected.
#pragma once

#include "browser/library_watch.h"
#include "commands/dispatcher.h"
#include "commands/enabling.h"
#include "commands/library_view.h"
#include "commands/undo_history.h"

#include <QMainWindow>

#include <memory>
#include <optional>

namespace groups {
class GroupTree;
}

namespace browser {

class FindPanel;
class FirstSteps;
class GroupBrowsing;
class DuplicateWatch;
class MainMenus;
class PictureCarrying;
class PicturePanel;
class Splitters;
class StatusLine;

enum class StartMode {
    Standalone, // the user started the program; leaving the window ends it
    Server,     // another program started it; leaving the window hides it
};

class frmMain : public QMainWindow, public commands::LibraryView {
    Q_OBJECT

  public:
    explicit frmMain(StartMode mode, Noticing noticing = Noticing::ByItself);
    ~frmMain() override;

    // Whether the first activation is over and nothing is being laid out or loaded.
    bool isSettled() const;

    // LibraryView
    QWidget* owner() override { return this; }
    const store::Library& library() const override { return *library_; }
    std::unique_ptr<compound::Trash> makeTrash() const override;
    commands::UndoHistory& history() override { return history_; }
    std::optional<commands::SelectedGroup> selectedGroup() const override;
    const commands::ShownPicture& shownPicture() const override;
    std::vector<store::PictureName> selectedPictures() const override;
    void selectAll() override;
    void copyPictures() override;
    void cutPictures() override;
    void pastePictures() override;
    void ShowPictures(const store::GroupAddress& group,
                      const std::vector<store::PictureName>& pictures) override;
    void FillTreeView() override;
    void SetCurrentGroup(const store::GroupAddress& group) override;
    void TreeViewSelectNode(const store::GroupAddress& group) override;
    void TreeViewAdd(const store::GroupName& name) override;
    void TreeViewRemove(const store::GroupAddress& group) override;
    void SelectFirstGroup() override;
    void awaitShown() override;
    void Aktualisieren() override;
    void PictureRenamed(const store::GroupAddress& group, const QString& name) override;
    void PictureDeleted(const store::GroupAddress& group,
                        const std::optional<store::PictureName>& beside) override;
    void FillListView(const store::GroupAddress& group) override;
    void MiniVorschau(std::size_t startIndex) override;
    void ClearVorschau() override;
    void NoPictures() override;
    void ShowNoPicture() override;
    bool GraphicalPreview() const override;
    void VorschauAktiviert() override;
    void VorschauDeaktiviert() override;
    void
    PicturesArrived(const std::function<std::vector<store::PictureAddress>()>& arrived) override;
    void TellResult(const QString& result) override;
    void changeView(commands::ViewChange change) override;
    void HandOver(const QString& path) override;
    void Exit() override;
    void ExitAfterHandOver() override;

    // The picture handed over last; empty for none, and after leaving the window as a server.
    const QString& handOverValue() const { return handOverValue_; }

    // Selects the group that the settings remember.
    void SelectNode();
    void SelectPicture();
    void SetImgScrollProperties();
    void NoToolTip();

    // Whether the library is being read or searched for what is to be found.
    bool isFinding() const;

    // Takes over what others have changed by now; isSettled() when that is done.
    void lookForChanges();

    // Reads the library again and shows the same group and picture, if they are still there.
    void refresh();

    // Writes what the next run is to find: settings and the window's place. Nothing before the
    // window was shown. A failure is told in a box.
    void saveSettings();

    // The number, from 1, of the first node with that text; 0 if there is none.
    int GetNodeIndex(const QString& text) const;

  signals:
    // The user has taken a picture over; `path` is a copy of its file. The next hand-over may
    // replace the copy.
    void PictureSelected(const QString& path);

    // The window was closed and has saved its settings.
    void unloaded();

  protected:
    void showEvent(QShowEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void connectTree();
    void connectPanel();
    void connectWatch();
    void connectFinding();
    void showFirstSteps();
    void load();
    void activate();
    void unload();
    void leave();
    void placeParts();
    void updateMenuState();
    void updateEditItem(commands::EditItemCause cause);
    void tellRenameFailure(const store::GroupAddress& group, const std::exception& failure);

    StartMode mode_;
    commands::UndoHistory history_;
    commands::Dispatcher dispatcher_;
    QWidget* surface_;
    groups::GroupTree* tree_;
    PicturePanel* panel_;
    MainMenus* menus_;
    Splitters* splitters_;
    StatusLine* status_;
    DuplicateWatch* duplicates_;
    FirstSteps* firstSteps_;
    FindPanel* find_;
    PictureCarrying* carrying_;
    std::optional<store::Library> library_;
    LibraryWatch watch_;
    std::unique_ptr<GroupBrowsing> groups_;
    QString handOverValue_;
    QString loadFailure_;
    bool isLoaded_ = false;
    bool Activated_ = false;
    bool isUnloaded_ = false;
};

} // namespace browser
