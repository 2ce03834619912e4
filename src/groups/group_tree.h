// The tree of groups, `tvwGruppen`. It knows nodes and keys, but no files: what it shows is handed
// to it.
//
// The selected node is the selection, never the current item: a tree that gets the focus may make
// its first row current without selecting it.
#pragma once

#include "groups/library_reading.h"
#include "groups/selected_group.h"

#include <QPersistentModelIndex>
#include <QSet>
#include <QTreeWidget>

#include <optional>
#include <span>

namespace groups {

// What selecting does to what is folded.
enum class Reveal {
    Unfold,     // the node can be seen with what is below it
    KeepFolded, // nothing changes
};

class GroupTree : public QTreeWidget {
    Q_OBJECT

  public:
    explicit GroupTree(QWidget* parent = nullptr);

    // Replaces all nodes. What was unfolded stays so, as does the scroll bar; nothing is selected.
    void rebuild(std::span<const GroupFile> files);

    // Replaces one file's nodes, whose top node keeps its selection; a missing reading removes
    // them.
    void replaceFile(const store::FileName& file, const std::optional<GroupFile>& reading);

    // Takes over what others have changed: `files` are the library's files in their order, `read`
    // those of them that were read anew. What is still there stays as it is: selected, unfolded and
    // in its place on the screen, and what is in a file that has got another name is unfolded as it
    // was. Nothing is selected afterwards if the selected group has gone.
    void takeChanges(std::span<const store::FileName> files, std::span<const GroupFile> read,
                     const std::optional<MovedGroup>& moved);

    // Adds a top-level node with the key NAME & "a".
    void addTopLevelNode(const store::GroupName& name);

    // Removes the node of that address and those below it; nothing is selected afterwards if the
    // selected node was one of them.
    void remove(const store::GroupAddress& address);

    int nodeCount() const;

    // Selects the node of that address; clears the selection and returns false when there is none.
    bool select(const store::GroupAddress& address);

    // Selects the node with exactly that key; a key that ends in "a" and that no node has may name
    // the top-level group before the "a".
    bool selectKey(const QString& key, Reveal reveal = Reveal::Unfold);

    void selectFirst(Reveal reveal = Reveal::Unfold);

    std::optional<SelectedGroup> selected() const;
    // The group of the node at that place of the viewport.
    std::optional<SelectedGroup> groupAt(const QPoint& position) const;

    // Marks the node at that place as the one that would take what is dropped there, and scrolls on
    // near the upper and the lower edge; nothing: no node is marked any more.
    void showDropAt(const std::optional<QPoint>& position);

    // Unfolds the node at that place.
    void unfoldAt(const QPoint& position);

    std::optional<SelectedGroup> find(const store::GroupAddress& address) const;
    QString selectedKey() const; // empty when nothing is selected
    QString firstNodeText() const;

    // The number, from 1, of the first node with exactly that text, in the order in which they
    // were added; 0 if there is none.
    int GetNodeIndex(const QString& text) const;

    // Whether the selected node's file could not be read last time.
    bool selectedIsMarked() const;
    bool isMarked(const store::FileName& file) const; // the same of any file

  signals:
    // The user chose the node that is selected now (also when it was selected before).
    void nodeClicked();
    // The user took the selection away.
    void selectionCleared();
    // A node whose file could not be read was unfolded.
    void retryWanted(const store::FileName& file);
    // The band of group commands is wanted at that place of the screen.
    void popUpWanted(const QPoint& globalPosition);
    void pointerMoved();

  protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override; // Enter unfolds or folds the selected node

  private:
    bool takeFile(QTreeWidgetItem*& top, QTreeWidgetItem* before, const GroupFile& file);
    void unfoldAgain(const QSet<QString>& unfolded);
    static std::optional<SelectedGroup> groupOf(const QTreeWidgetItem* item);
    QTreeWidgetItem* selectedItem() const;
    QTreeWidgetItem* itemOf(const QString& key) const;
    QTreeWidgetItem* itemOf(const store::GroupAddress& address) const;
    void selectItem(QTreeWidgetItem* item, Reveal reveal);
    QSet<QString> unfoldedKeys() const;
    void onSelectionChanged();

    QPersistentModelIndex dropIndex_;
    bool selectingByProgram_ = false;
    bool reportedDuringPress_ = false;
};

} // namespace groups
