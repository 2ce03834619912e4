#include "editing/folder_list.h"

#include "app/job.h"
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

constexpr int kIsFilledRole = Qt::UserRole; // or about to be

// Without regard to case, but names that differ in nothing else have an order too.
bool isBefore(const QString& left, const QString& right) {
    const int order = left.compare(right, Qt::CaseInsensitive);
    return order < 0 || (order == 0 && left < right);
}

// The names of the folders below `folder`, without hidden ones, in their order. What cannot be
// listed has none.
QStringList foldersBelow(const QString& folder) {
    QStringList names;
    if (!platform::isListable(folder)) {
        return names;
    }
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
    std::sort(names.begin(), names.end(), isBefore);
    return names;
}

QTreeWidgetItem* makeItem(const QString& name, const QIcon& icon) {
    auto* item = new QTreeWidgetItem({name});
    item->setIcon(0, icon);
    item->setChildIndicatorPolicy(QTreeWidgetItem::ShowIndicator);
    return item;
}

QIcon folderIcon() {
    return QApplication::style()->standardIcon(QStyle::SP_DirIcon);
}

QString pathOf(const QTreeWidgetItem* item) {
    const QTreeWidgetItem* above = item->parent();
    return above == nullptr ? item->text(0) : platform::joinPath(pathOf(above), item->text(0));
}

bool isBelow(const QTreeWidgetItem* item, const QTreeWidgetItem* above) {
    while (item != nullptr && item->parent() != above) {
        item = item->parent();
    }
    return item != nullptr;
}

// A folder that the listing leaves out, such as a hidden one, gets its row all the same.
QTreeWidgetItem* childNamed(QTreeWidgetItem* item, const QString& name) {
    int row = 0;
    while (row < item->childCount() && isBefore(item->child(row)->text(0), name)) {
        ++row;
    }
    if (row == item->childCount() || item->child(row)->text(0) != name) {
        item->insertChild(row, makeItem(name, folderIcon()));
    }
    return item->child(row);
}

} // namespace

FolderList::FolderList(QWidget* parent)
    : QTreeWidget(parent), reading_(std::make_unique<QObject>()) {
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
    reading_ = std::make_unique<QObject>();
    clear();
    QTreeWidgetItem* root = makeItem(drive, style()->standardIcon(QStyle::SP_DriveHDIcon));
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
    auto* job = new app::JobFor<QStringList>(reading_.get());
    connect(job, &app::Job::done, this, [this, item, job] {
        addRows(item, job->result());
        job->deleteLater();
    });
    job->start([folder = pathOf(item)] { return foldersBelow(folder); });
}

bool FolderList::isBusy() const {
    const QList<app::Job*> jobs = reading_->findChildren<app::Job*>();
    return std::any_of(jobs.begin(), jobs.end(), [](const app::Job* job) { return job->isBusy(); });
}

// The rows on the way to the chosen folder are there already and keep their order with the others.
void FolderList::addRows(QTreeWidgetItem* item, const QStringList& names) {
    const QIcon icon = folderIcon();
    auto name = names.begin();
    for (int row = 0; name != names.end(); ++row) {
        const QTreeWidgetItem* present = item->child(row);
        QList<QTreeWidgetItem*> rows;
        for (; name != names.end() && (present == nullptr || isBefore(*name, present->text(0)));
             ++name) {
            rows.append(makeItem(*name, icon));
        }
        item->insertChildren(row, rows);
        row += static_cast<int>(rows.size());
        if (name != names.end() && present != nullptr && *name == present->text(0)) {
            ++name;
        }
    }
    item->setChildIndicatorPolicy(QTreeWidgetItem::DontShowIndicatorWhenChildless);
    if (currentItem() != nullptr && isBelow(currentItem(), item)) {
        scrollTo(currentIndex(), PositionAtCenter);
    }
}

QTreeWidgetItem* FolderList::openDownTo(const QString& folder) {
    QTreeWidgetItem* item = topLevelItem(0);
    const QStringList names = folder.mid(drive_.size()).split(u'/', Qt::SkipEmptyParts);
    for (const QString& name : names) {
        fill(item);
        item->setExpanded(true);
        item = childNamed(item, name);
    }
    return item;
}

} // namespace editing
