// What the windows with a drive, a folder and a file list have in common: the lists follow each
// other, and the drive and folder that the user picks are remembered in app::settings().
#pragma once

#include <QObject>
#include <QString>

class QWidget;

namespace editing {

class DriveList;
class FileList;
class FolderList;

class FolderBrowser : public QObject {
    Q_OBJECT

  public:
    // Text ids of the box for a drive that cannot be read: the drive's name stands between the
    // first two.
    struct UnreadableTexts {
        int before;
        int after;
        int title;
    };

    // The lists must live as long as the browser.
    FolderBrowser(DriveList* drives, FolderList* folders, FileList* files, UnreadableTexts texts,
                  QWidget* window);

    // Goes to the remembered drive, then to the remembered folder; the drive's own folder is not
    // remembered on the way. A remembered folder that is gone gives way to the home folder; where
    // none was ever chosen it is that of the user's pictures, if there is one.
    void goToRememberedPlace();

    // Shows the folder of a file and chooses the file in it, remembering nothing. Where the folder
    // cannot be listed everything stays as it is.
    void showFile(const QString& path);

    // Whether a list is still being read.
    bool isBusy() const;

  private:
    void changeDrive();
    void changeFolder();

    DriveList* drives_;
    FolderList* folders_;
    FileList* files_;
    UnreadableTexts texts_;
    QWidget* window_;
    bool isMemorySuppressed_ = false;
};

} // namespace editing
