#include "editing/folder_browser.h"

#include "app/message_box.h"
#include "app/settings.h"
#include "app/texts.h"
#include "editing/drive_list.h"
#include "editing/file_list.h"
#include "editing/folder_list.h"
#include "platform/drives.h"
#include "platform/paths.h"

#include <QDir>
#include <QFileInfo>

namespace editing {
namespace {

// Where to begin before any folder was chosen.
QString firstFolder() {
    const QString pictures = platform::picturesFolder();
    return pictures.isEmpty() ? QDir::homePath() : pictures;
}

} // namespace

FolderBrowser::FolderBrowser(DriveList* drives, FolderList* folders, FileList* files,
                             UnreadableTexts texts, QWidget* window)
    : QObject(window),
      drives_(drives),
      folders_(folders),
      files_(files),
      texts_(texts),
      window_(window) {
    connect(drives_, &DriveList::driveChosen, this, &FolderBrowser::changeDrive);
    connect(folders_, &FolderList::folderChanged, this, &FolderBrowser::changeFolder);
}

void FolderBrowser::goToRememberedPlace() {
    const app::Settings& settings = app::settings();
    const bool isFirstTime = // a chosen drive that is gone is told of
        !settings.isPathChosen() && QDir(platform::nativePath(settings.drive())).exists();
    const QString first = firstFolder();
    isMemorySuppressed_ = true;
    drives_->setDrive(isFirstTime ? platform::driveOf(first, platform::drives())
                                  : QDir::cleanPath(platform::nativePath(settings.drive())));
    const QString place = isFirstTime ? first : platform::nativePath(settings.path());
    changeDrive();
    if (!folders_->setFolder(place)) {
        // Perhaps only unplugged: the next start shall look for it again.
        isMemorySuppressed_ = true;
        folders_->setFolder(QDir::homePath());
    }
    isMemorySuppressed_ = false;
    files_->setFolder(folders_->folder());
}

void FolderBrowser::showFile(const QString& path) {
    const QFileInfo file(path);
    isMemorySuppressed_ = true;
    if (folders_->setFolder(file.absolutePath())) {
        drives_->setDrive(platform::driveOf(folders_->folder(), platform::drives()));
        files_->setFolder(folders_->folder(), file.fileName());
    }
    isMemorySuppressed_ = false;
}

bool FolderBrowser::isBusy() const {
    return folders_->isBusy() || files_->isBusy();
}

void FolderBrowser::changeDrive() {
    while (!folders_->setDrive(drives_->drive())) {
        const QString message =
            app::text(texts_.before) + drives_->drive() + app::text(texts_.after);
        if (app::msgBox(message, app::Buttons::RetryCancel, app::text(texts_.title), window_) !=
            app::kAnswerRetry) {
            return;
        }
    }
    app::settings().setDrive(drives_->drive());
    files_->setFolder(folders_->folder());
}

void FolderBrowser::changeFolder() {
    files_->setFolder(folders_->folder());
    if (!isMemorySuppressed_) {
        app::settings().setPath(folders_->folder());
    }
    isMemorySuppressed_ = false;
}

} // namespace editing
