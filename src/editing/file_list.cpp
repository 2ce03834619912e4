#include "editing/file_list.h"

#include "base/picture_units.h"
#include "compound/error.h"
#include "platform/drives.h"
#include "platform/native_disk.h"
#include "platform/paths.h"

#include <QHideEvent>
#include <QMouseEvent>
#include <QSignalBlocker>

#include <string_view>
#include <utility>

namespace editing {

namespace {

bool hasSuffix(const QString& name, const QStringList& suffixes) {
    for (const QString& suffix : suffixes) {
        if (name.endsWith(suffix, Qt::CaseInsensitive)) {
            return true;
        }
    }
    return false;
}

// The list stays empty for a folder without permission, as for one without pictures.
QStringList picturesIn(const QString& folder, const QStringList& suffixes) {
    QStringList names;
    if (!platform::isListable(folder)) {
        return names;
    }
    try {
        for (const auto& entry : platform::nativeDisk().list(platform::toFilePath(folder))) {
            const QString name = platform::fromFilePath(entry.name);
            if (entry.isRegularFile && hasSuffix(name, suffixes)) {
                names += name;
            }
        }
    } catch (const compound::Error&) {
        names.clear();
    }
    names.sort(Qt::CaseInsensitive);
    return names;
}

} // namespace

QStringList pictureSuffixes() {
    QStringList suffixes;
    for (const std::string_view code : base::kTypeCodes) {
        suffixes += u'.' + QString::fromLatin1(code.data(), static_cast<qsizetype>(code.size()));
    }
    return suffixes;
}

FileList::FileList(const QStringList& suffixes, QWidget* parent)
    : QListWidget(parent), suffixes_(suffixes) {
    setUniformItemSizes(true);
    // Under a pressed button the click is announced at its release, so that a box that it may bring
    // up does not come between press and release.
    connect(this, &QListWidget::itemSelectionChanged, this, [this] {
        if (!isPressed_ && !fileName().isEmpty()) {
            emit fileClicked(fileName());
        }
    });
    connect(&names_, &app::Job::done, this, &FileList::showNames);
}

void FileList::setFolder(const QString& folder, const QString& fileToSelect) {
    const QSignalBlocker blocker(this);
    folder_ = folder;
    fileToSelect_ = fileToSelect;
    afterReading_ = {};
    clear();
    setCursor(Qt::BusyCursor);
    names_.start([folder, suffixes = suffixes_] { return picturesIn(folder, suffixes); });
}

void FileList::showNames() {
    unsetCursor();
    addItems(names_.result());
    if (!fileToSelect_.isEmpty()) {
        setCurrentItem(
            findItems(fileToSelect_, Qt::MatchExactly | Qt::MatchCaseSensitive).value(0));
    }
    if (const auto action = std::exchange(afterReading_, {})) {
        action();
    }
}

void FileList::afterReading(std::function<void()> action) {
    if (isBusy()) {
        afterReading_ = std::move(action);
    } else {
        action();
    }
}

void FileList::hideEvent(QHideEvent* event) {
    if (!event->spontaneous()) {
        afterReading_ = {};
    }
    QListWidget::hideEvent(event);
}

QStringList FileList::fileNames() const {
    QStringList names;
    names.reserve(count());
    for (int row = 0; row < count(); ++row) {
        names += item(row)->text();
    }
    return names;
}

QString FileList::fileName() const {
    if (currentItem() != nullptr && currentItem()->isSelected()) {
        return currentItem()->text();
    }
    const QStringList selected = selectedFileNames();
    return selected.isEmpty() ? QString() : selected.first();
}

QStringList FileList::selectedFileNames() const {
    QStringList names;
    for (int row = 0; row < count(); ++row) {
        if (item(row)->isSelected()) {
            names += item(row)->text();
        }
    }
    return names;
}

void FileList::mousePressEvent(QMouseEvent* event) {
    isPressed_ = true;
    nameAtPress_ = fileName();
    QListWidget::mousePressEvent(event);
}

void FileList::mouseReleaseEvent(QMouseEvent* event) {
    QListWidget::mouseReleaseEvent(event);
    const bool wasPressed = std::exchange(isPressed_, false);
    const QString name = fileName();
    const bool isOnSelected = itemAt(event->position().toPoint()) == currentItem();
    if (wasPressed && !name.isEmpty() && (isOnSelected || name != nameAtPress_)) {
        emit fileClicked(name);
    }
}

} // namespace editing
