#include "groups/group_tree.h"

#include "groups/group_icons.h"
#include "groups/plain_tool_tip.h"

#include <QContextMenuEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QTreeWidgetItemIterator>

#include <map>
#include <memory>

namespace groups {
namespace {

enum Role {
    kKeyRole = Qt::UserRole,
    kFileRole,
    kStorageRole,
    kParentRole,
    kMarkRole,
};

QString textOf(const std::u16string& text) {
    return QString::fromStdU16String(text);
}

QSet<QString> textsOf(std::span<const store::FileName> files) {
    QSet<QString> texts;
    for (const store::FileName& file : files) {
        texts.insert(textOf(file.text));
    }
    return texts;
}

QString keyTextOf(const store::GroupAddress& address) {
    return textOf(store::keyOf(address));
}

GroupMark markOf(const store::GroupFileReading& reading) {
    switch (reading.state) {
    case store::GroupFileState::Sound:
        return GroupMark::None;
    case store::GroupFileState::Locked:
        return GroupMark::Locked;
    default:
        return GroupMark::Unreadable;
    }
}

void describe(QTreeWidgetItem* item, const store::GroupAddress& address,
              const store::StorageName& parent, const QString& text) {
    item->setText(0, text);
    item->setIcon(0, groupIcon(GroupMark::None));
    item->setData(0, kKeyRole, keyTextOf(address));
    item->setData(0, kFileRole, textOf(address.file.text));
    item->setData(0, kStorageRole, textOf(address.storage.text));
    item->setData(0, kParentRole, textOf(parent.text));
}

void setMark(QTreeWidgetItem* item, const GroupFile& file) {
    const GroupMark mark = markOf(file.reading);
    item->setIcon(0, groupIcon(mark));
    item->setData(0, kMarkRole, static_cast<int>(mark));
    QFont font;
    font.setItalic(mark != GroupMark::None);
    item->setFont(0, font);
    item->setToolTip(0, file.trouble);
    item->setData(0, Qt::AccessibleDescriptionRole, file.trouble);
    item->setChildIndicatorPolicy(mark == GroupMark::None
                                      ? QTreeWidgetItem::DontShowIndicatorWhenChildless
                                      : QTreeWidgetItem::ShowIndicator);
}

// Nodes that would stand deeper hang side by side on this level: a tree's items are destroyed by
// recursion, and a hostile file may hold any number of groups one below the other.
constexpr int kDeepestLevel = 1000;

struct Place {
    QTreeWidgetItem* item;
    int level;
};

// Describes `top` and hangs the file's other groups below it.
void fillTopItem(QTreeWidgetItem* top, const GroupFile& file) {
    const QString title = textOf(file.file.text);
    std::map<std::u16string, Place> byStorage;
    store::GroupAddress topAddress = store::topLevelAddress(file.file.text);
    if (!file.reading.groups.empty()) {
        topAddress = file.reading.groups.front().address;
    }
    describe(top, topAddress, {}, title);
    setMark(top, file);
    for (const store::GroupEntry& entry : file.reading.groups) {
        if (entry.parent.text.empty()) {
            byStorage.insert_or_assign(entry.address.storage.text, Place{top, 0});
            continue;
        }
        const auto found = byStorage.find(entry.parent.text);
        const Place above = found == byStorage.end() ? Place{top, 0} : found->second;
        auto* item = new QTreeWidgetItem(above.item);
        describe(item, entry.address, entry.parent, textOf(entry.name.text));
        byStorage.insert_or_assign(entry.address.storage.text, above.level < kDeepestLevel
                                                                   ? Place{item, above.level + 1}
                                                                   : above);
    }
}

// The key is no part of it: that of a node that a command has added is another.
bool isSameNode(const QTreeWidgetItem& one, const QTreeWidgetItem& other) {
    const auto isSame = [&](int role) { return one.data(0, role) == other.data(0, role); };
    if (!isSame(Qt::DisplayRole) || !isSame(kFileRole) || !isSame(kStorageRole) ||
        !isSame(kParentRole) || !isSame(kMarkRole) || !isSame(Qt::ToolTipRole) ||
        one.childCount() != other.childCount()) {
        return false;
    }
    for (int i = 0; i < one.childCount(); ++i) {
        if (!isSameNode(*one.child(i), *other.child(i))) {
            return false;
        }
    }
    return true;
}

// The keys as they are once the moved group's file has its other name.
QSet<QString> inRenamedFile(const QSet<QString>& keys, const MovedGroup& moved) {
    QSet<QString> renamed;
    for (const QString& key : keys) {
        const store::GroupAddress group = store::addressOf(key.toStdU16String());
        renamed.insert(group.file == moved.from.file
                           ? keyTextOf(store::inRenamedFile(group, moved.to.file))
                           : key);
    }
    return renamed;
}

// What stands at the upper edge of the tree stays there, whatever comes or goes above it.
class PlaceOnScreen {
  public:
    explicit PlaceOnScreen(GroupTree& tree)
        : tree_(tree),
          isScrolled_(tree.verticalScrollBar()->value() > 0),
          sideways_(tree.horizontalScrollBar()->value()) {
        for (QTreeWidgetItem* item = tree.itemAt(0, 0); item != nullptr && isScrolled_;
             item = tree.itemBelow(item)) {
            keys_.append(item->data(0, kKeyRole).toString());
            if (keys_.size() == kKept) {
                break;
            }
        }
    }

    // Once the tree is laid out.
    void restore() {
        if (!isScrolled_) {
            tree_.verticalScrollBar()->setValue(0);
            return;
        }
        QHash<QString, QTreeWidgetItem*> present;
        for (QTreeWidgetItemIterator node(&tree_); *node != nullptr; ++node) {
            present.insert((*node)->data(0, kKeyRole).toString(), *node);
        }
        for (const QString& key : keys_) {
            if (QTreeWidgetItem* item = present.value(key)) {
                tree_.scrollToItem(item, QAbstractItemView::PositionAtTop);
                break;
            }
        }
        tree_.horizontalScrollBar()->setValue(sideways_);
    }

  private:
    static constexpr qsizetype kKept = 100; // nodes, any of which may go
    GroupTree& tree_;
    bool isScrolled_;
    int sideways_;
    QStringList keys_;
};

} // namespace

GroupTree::GroupTree(QWidget* parent) : QTreeWidget(parent) {
    setObjectName(QStringLiteral("tvwGruppen"));
    setColumnCount(1);
    setHeaderHidden(true);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setUniformRowHeights(true);
    setIconSize({18, 18});
    setIndentation(18);
    setTextElideMode(Qt::ElideRight);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    header()->setStretchLastSection(true);
    setItemDelegate(new ToolTipDelegate(this));
    setMouseTracking(true);
    connect(this, &QTreeWidget::itemSelectionChanged, this, &GroupTree::onSelectionChanged);
    connect(this, &QTreeWidget::itemExpanded, this, [this](QTreeWidgetItem* item) {
        if (item->data(0, kMarkRole).toInt() != static_cast<int>(GroupMark::None)) {
            collapseItem(item);
            emit retryWanted({item->data(0, kFileRole).toString().toStdU16String()});
        }
    });
}

QSet<QString> GroupTree::unfoldedKeys() const {
    QSet<QString> unfolded;
    for (QTreeWidgetItemIterator node(const_cast<GroupTree*>(this)); *node != nullptr; ++node) {
        if ((*node)->isExpanded()) {
            unfolded.insert((*node)->data(0, kKeyRole).toString());
        }
    }
    return unfolded;
}

void GroupTree::rebuild(std::span<const GroupFile> files) {
    const QSet<QString> unfolded = unfoldedKeys();
    const int scrolled = verticalScrollBar()->value();
    const QScopedValueRollback guard(selectingByProgram_, true);
    clear();
    QList<QTreeWidgetItem*> items;
    items.reserve(static_cast<qsizetype>(files.size()));
    for (const GroupFile& file : files) {
        items.append(new QTreeWidgetItem);
        fillTopItem(items.back(), file);
    }
    addTopLevelItems(items);
    unfoldAgain(unfolded);
    executeDelayedItemsLayout(); // until then there is nothing to scroll
    verticalScrollBar()->setValue(scrolled);
}

void GroupTree::unfoldAgain(const QSet<QString>& unfolded) {
    for (QTreeWidgetItemIterator node(this); !unfolded.isEmpty() && *node != nullptr; ++node) {
        const bool isMarked =
            (*node)->data(0, kMarkRole).toInt() != static_cast<int>(GroupMark::None);
        if (!isMarked && unfolded.contains((*node)->data(0, kKeyRole).toString())) {
            (*node)->setExpanded(true);
        }
    }
}

void GroupTree::takeChanges(std::span<const store::FileName> files, std::span<const GroupFile> read,
                            const std::optional<MovedGroup>& moved) {
    const bool isSameCount = files.size() == static_cast<std::size_t>(topLevelItemCount());
    if (read.empty() && isSameCount) {
        return; // what came in another one's place was read
    }
    const QScopedValueRollback guard(selectingByProgram_, true);
    const QString selected = selectedKey();
    QSet<QString> unfolded = unfoldedKeys();
    if (moved) {
        unfolded = inRenamedFile(unfolded, *moved);
    }
    PlaceOnScreen place(*this);
    QHash<QString, QTreeWidgetItem*> tops;
    bool isChanged = false;
    const QSet<QString> present = textsOf(files);
    for (int i = topLevelItemCount() - 1; i >= 0; --i) {
        const QString file = topLevelItem(i)->data(0, kFileRole).toString();
        if (present.contains(file)) {
            tops.insert(file, topLevelItem(i));
        } else {
            delete takeTopLevelItem(i);
            isChanged = true;
        }
    }
    auto next = read.begin();
    QTreeWidgetItem* before = nullptr;
    for (const store::FileName& file : files) {
        QTreeWidgetItem*& top = tops[textOf(file.text)];
        if (next != read.end() && next->file == file) {
            isChanged = takeFile(top, before, *next) || isChanged;
            ++next;
        }
        before = top == nullptr ? before : top;
    }
    if (isChanged) {
        unfoldAgain(unfolded);
        if (selectedKey() != selected) { // a current node that goes has its neighbour selected
            selectItem(itemOf(selected), Reveal::KeepFolded);
        }
        executeDelayedItemsLayout(); // until then there is nothing to scroll
        place.restore();
    }
}

// Makes the node of a file, behind another one, or brings it up to date. False if it was.
bool GroupTree::takeFile(QTreeWidgetItem*& top, QTreeWidgetItem* before, const GroupFile& file) {
    auto fresh = std::make_unique<QTreeWidgetItem>();
    fillTopItem(fresh.get(), file);
    if (top == nullptr) {
        top = fresh.get();
        insertTopLevelItem(indexOfTopLevelItem(before) + 1, fresh.release());
        return true;
    }
    if (isSameNode(*top, *fresh)) {
        return false;
    }
    const QVariant key = top->data(0, kKeyRole);
    const QVariant storage = top->data(0, kStorageRole);
    qDeleteAll(top->takeChildren());
    fillTopItem(top, file);
    if (top->data(0, kStorageRole) == storage) {
        top->setData(0, kKeyRole, key);
    }
    if (top->data(0, kMarkRole).toInt() != static_cast<int>(GroupMark::None)) {
        top->setExpanded(false);
    }
    return true;
}

void GroupTree::replaceFile(const store::FileName& file, const std::optional<GroupFile>& reading) {
    const QScopedValueRollback guard(selectingByProgram_, true);
    for (int i = 0; i < topLevelItemCount(); ++i) {
        QTreeWidgetItem* top = topLevelItem(i);
        if (top->data(0, kFileRole).toString() != textOf(file.text)) {
            continue;
        }
        if (!reading) {
            delete takeTopLevelItem(i);
            return;
        }
        qDeleteAll(top->takeChildren());
        fillTopItem(top, *reading);
        return;
    }
}

void GroupTree::addTopLevelNode(const store::GroupName& name) {
    auto item = std::make_unique<QTreeWidgetItem>();
    describe(item.get(), store::topLevelAddress(name.text), {}, textOf(name.text));
    item->setData(0, kKeyRole, textOf(name.text) + u'a');
    addTopLevelItem(item.release());
}

// By what the node stands for: the key of one that a command has added is another.
void GroupTree::remove(const store::GroupAddress& address) {
    const QScopedValueRollback guard(selectingByProgram_, true);
    delete itemOf(address);
}

int GroupTree::nodeCount() const {
    int count = 0;
    for (QTreeWidgetItemIterator node(const_cast<GroupTree*>(this)); *node != nullptr; ++node) {
        ++count;
    }
    return count;
}

QTreeWidgetItem* GroupTree::selectedItem() const {
    const QList<QTreeWidgetItem*> items = selectedItems();
    return items.isEmpty() ? nullptr : items.front();
}

QTreeWidgetItem* GroupTree::itemOf(const QString& key) const {
    for (QTreeWidgetItemIterator node(const_cast<GroupTree*>(this)); *node != nullptr; ++node) {
        if ((*node)->data(0, kKeyRole).toString() == key) {
            return *node;
        }
    }
    return nullptr;
}

// A node's key is not always its address: see addTopLevelNode.
QTreeWidgetItem* GroupTree::itemOf(const store::GroupAddress& address) const {
    for (QTreeWidgetItemIterator node(const_cast<GroupTree*>(this)); *node != nullptr; ++node) {
        if ((*node)->data(0, kFileRole).toString() == textOf(address.file.text) &&
            (*node)->data(0, kStorageRole).toString() == textOf(address.storage.text)) {
            return *node;
        }
    }
    return nullptr;
}

void GroupTree::selectItem(QTreeWidgetItem* item, Reveal reveal) {
    const QScopedValueRollback guard(selectingByProgram_, true);
    if (item == nullptr) {
        clearSelection();
        return;
    }
    setAutoScroll(reveal == Reveal::Unfold); // scrolling unfolds what stands above
    setCurrentItem(item, 0, QItemSelectionModel::ClearAndSelect);
    setAutoScroll(true);
    if (reveal == Reveal::KeepFolded) {
        return;
    }
    scrollToItem(item);
    item->setExpanded(item->data(0, kMarkRole).toInt() == static_cast<int>(GroupMark::None));
}

bool GroupTree::select(const store::GroupAddress& address) {
    QTreeWidgetItem* item = itemOf(address);
    selectItem(item, Reveal::Unfold);
    return item != nullptr;
}

bool GroupTree::selectKey(const QString& key, Reveal reveal) {
    QTreeWidgetItem* item = itemOf(key);
    if (item == nullptr && key.endsWith(u'a')) {
        item = itemOf(store::topLevelAddress(key.chopped(1).toStdU16String()));
    }
    selectItem(item, reveal);
    return item != nullptr;
}

void GroupTree::selectFirst(Reveal reveal) {
    selectItem(topLevelItem(0), reveal);
}

std::optional<SelectedGroup> GroupTree::selected() const {
    return groupOf(selectedItem());
}

std::optional<SelectedGroup> GroupTree::groupAt(const QPoint& position) const {
    return groupOf(itemAt(position));
}

void GroupTree::showDropAt(const std::optional<QPoint>& position) {
    constexpr int kEdge = 16; // pixels
    constexpr float kStrength = 0.35F;
    if (position) {
        const int below = viewport()->height() - kEdge;
        QScrollBar* bar = verticalScrollBar();
        bar->setValue(bar->value() + (position->y() > below ? 1 : position->y() < kEdge ? -1 : 0));
    }
    const QModelIndex index = position ? indexAt(*position) : QModelIndex();
    if (dropIndex_ == index) {
        return;
    }
    if (dropIndex_.isValid()) {
        model()->setData(dropIndex_, QVariant(), Qt::BackgroundRole);
    }
    dropIndex_ = index;
    if (index.isValid()) {
        QColor colour = palette().color(QPalette::Highlight);
        colour.setAlphaF(kStrength);
        model()->setData(index, QBrush(colour), Qt::BackgroundRole);
    }
}

void GroupTree::unfoldAt(const QPoint& position) {
    if (QTreeWidgetItem* item = itemAt(position)) {
        item->setExpanded(true);
    }
}

std::optional<SelectedGroup> GroupTree::find(const store::GroupAddress& address) const {
    return groupOf(itemOf(address));
}

std::optional<SelectedGroup> GroupTree::groupOf(const QTreeWidgetItem* item) {
    if (item == nullptr) {
        return std::nullopt;
    }
    QString path = item->text(0);
    for (const QTreeWidgetItem* above = item->parent(); above != nullptr; above = above->parent()) {
        path.prepend(above->text(0) + QLatin1String(" / "));
    }
    return SelectedGroup{{{item->data(0, kFileRole).toString().toStdU16String()},
                          {item->data(0, kStorageRole).toString().toStdU16String()}},
                         {item->data(0, kParentRole).toString().toStdU16String()},
                         item->text(0),
                         path};
}

QString GroupTree::selectedKey() const {
    const QTreeWidgetItem* item = selectedItem();
    return item == nullptr ? QString() : item->data(0, kKeyRole).toString();
}

QString GroupTree::firstNodeText() const {
    return topLevelItemCount() == 0 ? QString() : topLevelItem(0)->text(0);
}

int GroupTree::GetNodeIndex(const QString& text) const {
    int index = 0;
    for (QTreeWidgetItemIterator node(const_cast<GroupTree*>(this)); *node != nullptr; ++node) {
        ++index;
        if ((*node)->text(0) == text) {
            return index;
        }
    }
    return 0;
}

bool GroupTree::selectedIsMarked() const {
    const QTreeWidgetItem* item = selectedItem();
    return item != nullptr && item->data(0, kMarkRole).toInt() != static_cast<int>(GroupMark::None);
}

bool GroupTree::isMarked(const store::FileName& file) const {
    for (int i = 0; i < topLevelItemCount(); ++i) {
        const QTreeWidgetItem* top = topLevelItem(i);
        if (top->data(0, kFileRole).toString() == textOf(file.text)) {
            return top->data(0, kMarkRole).toInt() != static_cast<int>(GroupMark::None);
        }
    }
    return false;
}

void GroupTree::onSelectionChanged() {
    if (selectingByProgram_) {
        return;
    }
    reportedDuringPress_ = true;
    if (selectedItem() == nullptr) {
        emit selectionCleared();
    } else {
        emit nodeClicked();
    }
}

void GroupTree::mousePressEvent(QMouseEvent* event) {
    reportedDuringPress_ = false;
    QTreeWidget::mousePressEvent(event);
    // Choosing the selected node again changes no selection, and is a click all the same.
    QTreeWidgetItem* item = itemAt(event->position().toPoint());
    if (!reportedDuringPress_ && item != nullptr && item->isSelected() &&
        visualItemRect(item).contains(event->position().toPoint())) {
        emit nodeClicked();
    }
}

void GroupTree::mouseMoveEvent(QMouseEvent* event) {
    QTreeWidget::mouseMoveEvent(event);
    emit pointerMoved();
}

void GroupTree::keyPressEvent(QKeyEvent* event) {
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    QTreeWidgetItem* item = selectedItem();
    if (isEnter && item != nullptr) {
        item->setExpanded(!item->isExpanded());
        return;
    }
    QTreeWidget::keyPressEvent(event);
}

void GroupTree::contextMenuEvent(QContextMenuEvent* event) {
    if (event->reason() == QContextMenuEvent::Mouse) {
        QTreeWidgetItem* below = itemAt(event->pos());
        if (below == nullptr) {
            clearSelection();
        } else if (!below->isSelected()) {
            setCurrentItem(below); // a press beside its name, on the sign that unfolds it
        }
        emit popUpWanted(event->globalPos());
        return;
    }
    const QTreeWidgetItem* item = selectedItem();
    if (item != nullptr) {
        scrollToItem(item); // the band stands below its node, not beside the tree
    }
    const QRect rect = item == nullptr ? QRect() : visualItemRect(item);
    emit popUpWanted(viewport()->mapToGlobal(rect.bottomLeft()));
}

} // namespace groups
