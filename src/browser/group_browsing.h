// Which group is selected in the tree and which group's pictures are shown, over clicks, commands
// and rereadings of the library.
//
// Without a selected node nothing is shown.
//
// A sub-group has no node while its file is locked. Then its file's node stands for it, and the
// next reading that succeeds selects it again; whatever else is selected meanwhile ends that.
#pragma once

#include "commands/enabling.h"
#include "commands/selection_context.h"
#include "store/library.h"

#include <QObject>
#include <QString>

#include <optional>

namespace groups {
class GroupTree;
struct LibraryChanges;
} // namespace groups

namespace browser {

class LibraryWatch;
class PicturePanel;

class GroupBrowsing : public QObject {
    Q_OBJECT

  public:
    // Tree, panel and watch must outlive it. Nothing but the connections is made before setLibrary.
    GroupBrowsing(groups::GroupTree& tree, PicturePanel& panel, LibraryWatch& watch);

    // Begins to notice what others change. The library must outlive it.
    void setLibrary(const store::Library& library);

    // Reads all group files and rebuilds the tree. Nothing is selected afterwards.
    void fillTree();

    // Reads the library again and shows the same group, or the one that was selected before its
    // file was locked; the first one when it is gone. Without a selected group nothing is selected.
    void refresh();

    // Selects the node with that key and makes its group the panel's; what is remembered from the
    // last run. The pictures are not shown yet.
    void selectRemembered(const QString& key);

    // Whether the library could be read and holds no group.
    bool isEmptyLibrary() const;

    // What is to be remembered for the next run; nothing when the library could not be read, and
    // what is remembered already may still be right.
    std::optional<QString> keyToRemember() const;

    // Makes a group the one whose pictures are shown, without touching the tree's selection.
    void setCurrent(const store::GroupAddress& group);

    // Selects the node; its pictures are not shown yet. With a missing node nothing is selected nor
    // shown; then false.
    bool select(const store::GroupAddress& group);

    // Adds a top-level node without reading any file, selects it and shows its pictures.
    void add(const store::GroupName& name);

    // Shows the group, with that picture selected if there is one. False, with nothing done, for a
    // group without a node.
    bool goTo(const store::GroupAddress& group, const std::optional<store::PictureName>& picture);

    // Takes the group's node out of the tree without reading any file.
    void remove(const store::GroupAddress& group);

    // Selects the first node and shows its pictures; with an empty tree none.
    void selectFirst();

  signals:
    // The user has chosen a node.
    void editItemWanted(commands::EditItemCause cause);
    // Reading has found damaged files and renamed them.
    void filesSetAside();
    // What others have changed is shown now.
    void changesTaken();

  private:
    void nodeClicked();
    void selectionCleared();
    void retry(const store::FileName& file);
    void showSelected();
    void takeChanges(const groups::LibraryChanges& changes);
    void selectAgain(const QString& key);
    bool isInMarkedFile(const QString& key) const;

    groups::GroupTree& tree_;
    PicturePanel& panel_;
    LibraryWatch& watch_;
    const store::Library* library_ = nullptr;
    QString CurrentGroup_; // key of the group whose pictures are shown, or, after the start and
                           // after `add`, a node's text
    QString awaitedKey_;   // of a group that was selected until its file could not be read
    bool isReachable_ = false;
};

} // namespace browser
