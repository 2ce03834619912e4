// The window that brings a group file from any folder into the library: as a top-level group of its
// own, or with all that is in it below a group.
#pragma once

#include "commands/group_target_box.h"
#include "commands/selection_context.h"
#include "store/address.h"

#include <QDialog>

#include <exception>
#include <filesystem>
#include <optional>

class QGroupBox;
class QLabel;
class QPushButton;

namespace editing {
class DriveList;
class FileList;
class FolderBrowser;
class FolderList;
} // namespace editing

namespace commands {

class LibraryView;

class frmImport : public QDialog {
    Q_OBJECT

  public:
    // The view must outlive the window.
    frmImport(LibraryView& view, QWidget* owner);

    // Shows the window for that selection and returns when it is closed. What keeps a file from
    // being imported is told in a box; then the library and the file are as they were and the
    // window stays open. It closes after a new top-level group, which is shown in the main window,
    // and stays open after a group below another one. With a file its folder is shown and the file
    // chosen.
    void openFor(const SelectionContext& context, const std::filesystem::path& file = {});

  protected:
    void showEvent(QShowEvent* event) override;

  private:
    void makeControls();
    void placeControls();
    void setCaptions();

    void importFile();
    void importAsTopLevel(const std::filesystem::path& file);
    void mergeBelow(const store::GroupAddress& parent, const std::filesystem::path& file);
    void tellArrival(const store::GroupAddress& group);
    void tellFailure(const std::exception& failure, const std::filesystem::path& file);
    void tell(int textId);

    LibraryView& view_;
    SelectionContext context_;

    QGroupBox* fraOrdner_ = nullptr;
    editing::DriveList* drvDrive_ = nullptr;
    editing::FolderList* dirVerzeichniss_ = nullptr;
    QGroupBox* fraDatei_ = nullptr;
    editing::FileList* filDatei_ = nullptr;
    QLabel* lblGruppe_ = nullptr;
    GroupTargetBox* cboGruppe_ = nullptr;
    QPushButton* cmdOK_ = nullptr;
    QPushButton* cmdReset_ = nullptr;
    QPushButton* cmdHelp_ = nullptr;
    editing::FolderBrowser* browser_ = nullptr;
};

} // namespace commands
