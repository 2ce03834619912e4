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
}

namespace browser {

class PicturePanel;

class GroupBrowsing : public QObject {
    Q_OBJECT

  public:
    // Tree and panel must outlive it. Nothing but the connections is made before setLibrary.
    GroupBrowsing(groups::GroupTree& tree, PicturePanel& panel);

    // The library must outlive it.
    void setLibrary(const store::Library& library) { library_ = &library; }

    // Reads all group files and rebuilds the tree. Nothing is selected afterwards.
    void fillTree();

    // Reads the library again and shows the same group, or the one that was selected before its
    // file was locked; the first one when it is gone. Without a selected group nothing is selected.
    void refresh();

    // Selects the node with that key and makes its group the panel's; what is remembered from the
    // last run. The pictures are not shown yet.
    void selectRemembered(const QString& key);

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

    // Selects the first node and shows its pictures; with an empty tree none.
    void selectFirst();

  signals:
    // The user has chosen a node.
    void editItemWanted(commands::EditItemCause cause);
    // Reading has found damaged files and renamed them.
    void filesSetAside();

  private:
    void nodeClicked();
    void selectionCleared();
    void retry(const store::FileName& file);
    void showSelected();
    void selectAgain(const QString& key);
    bool isInMarkedFile(const QString& key) const;

    groups::GroupTree& tree_;
    PicturePanel& panel_;
    const store::Library* library_ = nullptr;
    QString CurrentGroup_; // key of the group whose pictures are shown, or, after the start and
                           // after `add`, a node's text
    QString awaitedKey_;   // of a group that was selected until its file could not be read
    bool isReachable_ = false;
};

} // namespace browser
