#include "editing/folder_list.h"

#include "platform/drives.h"
#include "platform/paths.h"

#include <QApplication>
#include <QDir>
#include <QHeaderView>
#include <QKeyEvent>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QStyle>

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace editing {

namespace {

constexpr int kPathRole = Qt::UserRole;
constexpr int kIsFilledRole = Qt::UserRole + 1;

// The names of the folders below `folder`, without hidden ones, by name without regard to case.
// What cannot be listed has none.
QStringList foldersBelow(const QString& folder) {
    QStringList names;
    std::error_code failure;
    std::filesystem::directory_iterator entries(platform::toFilePath(folder), failure);
    for (; !failure && entries != std::filesystem::directory_iterator();
         entries.increment(failure)) {
        std::error_code unknown;
        const QString name = platform::fromFilePath(entries->path().filename());
        if (!name.startsWith(u'.') && entries->is_directory(unknown)) {
            names += name;
        }
    }
    names.sort(Qt::CaseInsensitive);
    return names;
}

QTreeWidgetItem* makeItem(const QString& name, const QString& path) {
    auto* item = new QTreeWidgetItem({name});
    item->setData(0, kPathRole, path);
    item->setIcon(0, QApplication::style()->standardIcon(QStyle::SP_DirIcon));
    item->setChildIndicatorPolicy(QTreeWidgetItem::ShowIndicator);
    return item;
}

QString pathOf(const QTreeWidgetItem* item) {
    return item->data(0, kPathRole).toString();
}

QTreeWidgetItem* childNamed(const QTreeWidgetItem* item, const QString& name) {
    for (int index = 0; index < item->childCount(); ++index) {
        if (item->child(index)->text(0) == name) {
            return item->child(index);
        }
    }
    return nullptr;
}

} // namespace

FolderList::FolderList(QWidget* parent) : QTreeWidget(parent) {
    setColumnCount(1);
    setHeaderHidden(true);
    setUniformRowHeights(true);
    setIndentation(fontMetrics().height());
    setTextElideMode(Qt::ElideNone);
    header()->setStretchLastSection(false);
    connect(this, &QTreeWidget::itemExpanded, this, &FolderList::fill);
    connect(this, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem* item) {
        if (item != nullptr) {
            choose(pathOf(item));
        }
    });
}

bool FolderList::setDrive(const QString& drive) {
    if (!platform::isListable(drive)) {
        return false;
    }
    showDrive(drive);
    choose(drive);
    return true;
}

bool FolderList::setFolder(const QString& folder) {
    const QString wanted = QDir::cleanPath(folder);
    if (!platform::isListable(wanted)) {
        return false;
    }
    const bool isOnDrive = !drive_.isEmpty() && !platform::driveOf(wanted, {drive_}).isEmpty();
    if (!isOnDrive) {
        showDrive(platform::driveOf(wanted, platform::drives()));
    }
    {
        const QSignalBlocker blocker(this);
        QTreeWidgetItem* item = openDownTo(wanted);
        setCurrentItem(item);
        scrollTo(currentIndex()); // not scrollToItem, which knows only the base class
    }
    choose(wanted);
    return true;
}

void FolderList::scrollTo(const QModelIndex& index, ScrollHint hint) {
    updateGeometries(); // a scroll bar that appears takes its room first
    QTreeWidget::scrollTo(index, hint);
    // The base class places the whole column, which is wider than the name and its arrow.
    const int room = viewport()->width();
    const int start = visualRect(index).left() - indentation();
    const int end = start + std::min(indentation() + sizeHintForIndex(index).width(), room);
    const int shift = start < 0 ? start : std::max(end - room, 0);
    horizontalScrollBar()->setValue(horizontalScrollBar()->value() + shift);
}

void FolderList::updateGeometries() {
    resizeColumnToContents(0);
    QTreeWidget::updateGeometries();
}

// Rows reach the right edge, so that a click beside a short name chooses it too.
int FolderList::sizeHintForColumn(int column) const {
    return std::max(QTreeWidget::sizeHintForColumn(column), viewport()->width());
}

void FolderList::keyPressEvent(QKeyEvent* event) {
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isEnter && currentItem() != nullptr) {
        currentItem()->setExpanded(!currentItem()->isExpanded());
    } else {
        QTreeWidget::keyPressEvent(event);
    }
}

void FolderList::showDrive(const QString& drive) {
    const QSignalBlocker blocker(this);
    drive_ = drive;
    clear();
    QTreeWidgetItem* root = makeItem(drive, drive);
    root->setIcon(0, style()->standardIcon(QStyle::SP_DriveHDIcon));
    addTopLevelItem(root);
    fill(root);
    root->setExpanded(true);
    setCurrentItem(root);
}

void FolderList::choose(const QString& folder) {
    if (folder == folder_) {
        return;
    }
    folder_ = folder;
    emit folderChanged();
}

void FolderList::fill(QTreeWidgetItem* item) {
    if (item->data(0, kIsFilledRole).toBool()) {
        return;
    }
    item->setData(0, kIsFilledRole, true);
    const QString folder = pathOf(item);
    if (platform::isListable(folder)) {
        for (const QString& name : foldersBelow(folder)) {
            item->addChild(makeItem(name, platform::joinPath(folder, name)));
        }
    }
    item->setChildIndicatorPolicy(QTreeWidgetItem::DontShowIndicatorWhenChildless);
}

// A folder that the listing leaves out, such as a hidden one, gets its row all the same.
QTreeWidgetItem* FolderList::openDownTo(const QString& folder) {
    QTreeWidgetItem* item = topLevelItem(0);
    const QStringList names = folder.mid(drive_.size()).split(u'/', Qt::SkipEmptyParts);
    for (const QString& name : names) {
        fill(item);
        item->setExpanded(true);
        QTreeWidgetItem* child = childNamed(item, name);
        if (child == nullptr) {
            child = makeItem(name, platform::joinPath(pathOf(item), name));
            item->addChild(child);
        }
        item = child;
    }
    return item;
}

} // namespace editing
