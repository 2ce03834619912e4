// The window that stores picture files in a group: browse to a file, see it fitted into the
// preview, name it, save it. It stays open, so that several files can be stored one after another.
#pragma once

#include "app/twips.h"
#include "store/library.h"

#include <QDialog>
#include <QString>

#include <filesystem>
#include <functional>
#include <optional>
#include <vector>

namespace imaging {
struct PictureFacts;
}

class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace editing {

class DriveList;
class FileList;
class FolderBrowser;
class FolderList;
class PictureBox;

// The group that pictures go to, as it was when the window was opened. No address: saving tells the
// user that no group is selected.
struct TargetGroup {
    std::optional<store::GroupAddress> address;
    QString path; // the names from the top level down to it, for reading
};

// The fitted preview box for a picture of this height and width (any unit, whole numbers), in twips
// relative to the preview's frame. At most 1395 wide and 1185 high. A wide picture's height is
// scaled from 1185 and not from 1395, which shows it slightly stretched; that is intended. A side
// of zero gives the square box.
app::TwipRect previewRect(int height, int width);

class frmOpen : public QDialog {
    Q_OBJECT

  public:
    // What the main window is told.
    struct Listener {
        std::function<void()> Aktualisieren;                   // the user goes back by button
        std::function<void(const std::exception&)> saveFailed; // after a box has told it
        std::function<void(const store::GroupAddress&, const store::PictureName&)> added = {};
        // Stores several files in the target's group, and tells what comes of it. The window is
        // the owner of what is shown meanwhile.
        std::function<void(const TargetGroup&, const std::vector<std::filesystem::path>&, QWidget*)>
            takeSeveral = {};
    };
    frmOpen(QWidget* owner, Listener listener);
    ~frmOpen() override;

    // Opens the window modally for `target` and returns when it is closed. The drive and folder
    // that the user browses to are remembered in app::settings(). The library is copied.
    void openFor(const store::Library& library, TargetGroup target);

    // The opening alone: captions, position, one check of all group files, drive, folder.
    void load(const store::Library& library, TargetGroup target);

    // Whether no picture is being loaded for the preview.
    bool isSettled() const;

    // Tests every group file and sets aside the damaged ones; returns how many are sound.
    int Scan();

  protected:
    void showEvent(QShowEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override; // Escape goes back like the button

  private:
    void makeControls();
    void makePreview();
    void placeControls();
    void connectControls();
    void setCaptions();
    void clearPicture();

    void openFile();
    void showPicture(const imaging::PictureFacts& facts);
    void refusePicture();
    void VorschauAnpassen();
    void showCount();
    void saveSeveral();
    void save();
    std::optional<int> refusal() const;
    void addToGroup(const store::GroupAddress& group, const store::PictureName& name);
    void goBack();
    void tell(int textId);
    void tellFailure(const std::exception& error);

    Listener listener_;
    std::optional<store::Library> library_;
    TargetGroup target_;
    bool isInvalidPicture_ = false;
    // The user was faster than the picture that is being loaded.
    bool savesWhenLoaded_ = false;
    bool isNameTyped_ = false;

    QGroupBox* fraOrdner_ = nullptr;
    DriveList* drvDrive_ = nullptr;
    FolderList* dirOrdner_ = nullptr;
    QGroupBox* fraDatei_ = nullptr;
    FileList* filDatei_ = nullptr;
    QGroupBox* fraVorschau_ = nullptr;
    PictureBox* imgVorschau_ = nullptr;
    QWidget* picBild_ = nullptr; // never shown; has the picture's size in pixels
    QLabel* lblName_ = nullptr;
    QLineEdit* txtName_ = nullptr;
    QPushButton* cmdOK_ = nullptr;
    QPushButton* cmdAbbruch_ = nullptr;
    QPushButton* cmdHilfe_ = nullptr;
    FolderBrowser* browser_ = nullptr;
};

} // namespace editing
