// The window that makes a new group of all picture files of one folder, named after the files. The
// run is one transaction: aborted, or failed, it leaves nothing behind.
#pragma once

#include "commands/group_target_box.h"
#include "commands/selection_context.h"
#include "store/group_operations.h"
#include "store/pictures_from_files.h"

#include <QDialog>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <vector>

class QGroupBox;
class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;

namespace editing {
class DriveList;
class FileList;
class FolderBrowser;
class FolderList;
} // namespace editing

namespace commands {

class LibraryView;

class frmCreate : public QDialog {
    Q_OBJECT

  public:
    // The view must outlive the window.
    frmCreate(LibraryView& view, QWidget* owner);

    // Shows the window for that selection and returns when it is closed. Its boxes tell what is
    // missing, taken, invalid or failed; then the library is as it was and the window stays open. A
    // group that was made is shown in the main window, and files that could not be added are
    // listed. While a run lasts the button back, Escape and the close box abort it.
    void openFor(const SelectionContext& context, GroupTarget preset);

    void reject() override;

  protected:
    void showEvent(QShowEvent* event) override;

  private:
    enum class Mode { Idle, Running };

    void makeControls();
    void makeProgress();
    void placeControls();
    void setCaptions();
    void setMode(Mode mode);

    void create();
    bool isAcceptable(const std::optional<store::GroupAddress>& parent,
                      const store::GroupName& name);
    std::vector<std::filesystem::path> files() const;
    std::optional<store::FilesAdded> run(const std::optional<store::GroupAddress>& parent,
                                         const store::GroupName& name);
    void showProgress(std::uint64_t done, std::uint64_t total);
    void showInLibrary(const store::GroupAddress& group);
    void tellFailure(const std::exception& failure);
    void tell(const QString& text);

    LibraryView& view_;
    SelectionContext context_;
    Mode mode_ = Mode::Idle;

    QGroupBox* fraOrdner_ = nullptr;
    editing::DriveList* drvDrive_ = nullptr;
    editing::FolderList* dirOrdner_ = nullptr;
    QGroupBox* fraDatei_ = nullptr;
    editing::FileList* filDatei_ = nullptr;
    QGroupBox* fraName_ = nullptr;
    QLineEdit* txtName_ = nullptr;
    QLabel* lblGruppe_ = nullptr;
    GroupTargetBox* cboGruppe_ = nullptr;
    QLabel* lblBild_ = nullptr;
    QProgressBar* prgFortschritt_ = nullptr;
    QLabel* lblAnzahl_ = nullptr;
    QPushButton* cmdCreate_ = nullptr;
    QPushButton* cmdBack_ = nullptr;
    QPushButton* cmdHelp_ = nullptr;
    editing::FolderBrowser* browser_ = nullptr;
};

} // namespace commands
