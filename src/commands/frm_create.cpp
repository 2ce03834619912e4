#include "commands/frm_create.h"

#include "app/help.h"
#include "app/long_operation.h"
#include "app/message_box.h"
#include "app/modal_dialog.h"
#include "app/named_control.h"
#include "app/texts.h"
#include "app/twips.h"
#include "commands/failure_report.h"
#include "commands/group_name.h"
#include "commands/library_view.h"
#include "commands/skipped_files.h"
#include "compound/error.h"
#include "editing/drive_list.h"
#include "editing/file_list.h"
#include "editing/folder_browser.h"
#include "editing/folder_list.h"
#include "editing/frame_content.h"
#include "editing/screen_place.h"
#include "platform/paths.h"
#include "store/same_pictures.h"

#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QScopeGuard>
#include <QShowEvent>

#include <array>

namespace commands {
namespace {

constexpr int kTitle = 0; // of the window and its boxes
constexpr int kFolder = 1;
constexpr int kFiles = 2;
constexpr int kName = 3;
constexpr int kCreate = 4;
constexpr int kBack = 5;
constexpr int kHelp = 6;
constexpr int kNameMissing = 50;
constexpr int kNoFiles = 51;
constexpr int kNameInvalid = 52;
constexpr int kCreatedBefore = 53;
constexpr int kCreatedAfter = 54;
constexpr int kDriveBefore = 55;
constexpr int kDriveAfter = 56;
constexpr int kAbort = 103;
constexpr int kExistsBefore = 151;
constexpr int kExistsAfter = 152;
constexpr int kTarget = 904;

constexpr app::TextPair kChecking{u"Der Name wird geprüft", u"The name is being checked"};
constexpr app::TextPair kFinishing{u"Wird abgeschlossen", u"Finishing"};
constexpr app::TextPair kAborting{u"Wird abgebrochen", u"Aborting"};
constexpr app::TextPair kAmount{u"%1 von %2", u"%1 of %2"};
constexpr app::TextPair kProgress{u"Fortschritt", u"Progress"};

constexpr double kWidth = 5130;
constexpr double kHeight = 4320;
constexpr app::TwipRect kFolderFrame{120, 60, 2400, 1980};
constexpr app::TwipRect kFileFrame{2610, 60, 2400, 1980};
constexpr app::TwipRect kNameFrame{120, 2055, 4890, 915};
constexpr app::TwipRect kTargetLabel{120, 3015, 1020, 375};
constexpr app::TwipRect kTargetBox{1170, 3015, 3840, 375};
constexpr app::TwipRect kPictureLabel{120, 3435, 1800, 300};
constexpr app::TwipRect kBar{1980, 3465, 1200, 240};
constexpr app::TwipRect kCountLabel{3240, 3435, 1770, 300};
constexpr app::TwipRect kCreateButton{120, 3780, 1560, 435};
constexpr app::TwipRect kBackButton{1785, 3780, 1560, 435};
constexpr app::TwipRect kHelpButton{3450, 3780, 1560, 435};

// What no picture may be called, whatever its file is.
std::array<std::u16string, 1> reservedNames() {
    return {app::text(app::kTextNoPicture).toStdU16String()};
}

} // namespace

frmCreate::frmCreate(LibraryView& view, QWidget* owner) : QDialog(owner), view_(view) {
    setObjectName(QStringLiteral("frmCreate"));
    setModal(true);
    setFixedSize(app::toPixels(kWidth, kHeight));
    makeControls();
    makeProgress();
    placeControls();
    setCaptions();
    setMode(Mode::Idle);
    connect(cmdCreate_, &QPushButton::clicked, this,
            [this] { filDatei_->afterReading([this] { create(); }); });
    connect(cmdBack_, &QPushButton::clicked, this, &frmCreate::reject);
    app::offerHelp(*this, cmdHelp_, app::HelpTopic::CreateGroupFromFolder);
}

// In the order of the Tab key.
void frmCreate::makeControls() {
    fraOrdner_ = app::makeNamed<QGroupBox>("fraOrdner", this);
    drvDrive_ = app::makeNamed<editing::DriveList>("drvDrive", fraOrdner_);
    dirOrdner_ = app::makeNamed<editing::FolderList>("dirOrdner", fraOrdner_);
    fraDatei_ = app::makeNamed<QGroupBox>("fraDatei", this);
    filDatei_ =
        app::makeNamed<editing::FileList>("filDatei", editing::pictureSuffixes(), fraDatei_);
    fraName_ = app::makeNamed<QGroupBox>("fraName", this);
    txtName_ = app::makeNamed<QLineEdit>("txtName", fraName_);
    lblGruppe_ = app::makePlainLabel("lblGruppe", this);
    cboGruppe_ = new GroupTargetBox(this);
    cmdCreate_ = app::makeNamed<QPushButton>("cmdCreate", this);
    cmdBack_ = app::makeNamed<QPushButton>("cmdBack", this);
    cmdHelp_ = app::makeNamed<QPushButton>("cmdHelp", this);
    lblGruppe_->setBuddy(cboGruppe_);
    cmdCreate_->setDefault(true);
    const editing::FolderBrowser::UnreadableTexts texts{kDriveBefore, kDriveAfter, kTitle};
    browser_ = new editing::FolderBrowser(drvDrive_, dirOrdner_, filDatei_, texts, this);
}

void frmCreate::makeProgress() {
    lblBild_ = app::makePlainLabel("lblBild", this);
    prgFortschritt_ = app::makeNamed<QProgressBar>("prgFortschritt", this);
    prgFortschritt_->setTextVisible(false);
    prgFortschritt_->setAccessibleName(app::text(kProgress));
    lblAnzahl_ = app::makePlainLabel("lblAnzahl", this);
    lblAnzahl_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
}

void frmCreate::placeControls() {
    fraOrdner_->setGeometry(app::toPixels(kFolderFrame));
    fraDatei_->setGeometry(app::toPixels(kFileFrame));
    fraName_->setGeometry(app::toPixels(kNameFrame));
    lblGruppe_->setGeometry(app::toPixels(kTargetLabel));
    cboGruppe_->place(app::toPixels(kTargetBox));
    lblBild_->setGeometry(app::toPixels(kPictureLabel));
    prgFortschritt_->setGeometry(app::toPixels(kBar));
    lblAnzahl_->setGeometry(app::toPixels(kCountLabel));
    cmdCreate_->setGeometry(app::toPixels(kCreateButton));
    cmdBack_->setGeometry(app::toPixels(kBackButton));
    cmdHelp_->setGeometry(app::toPixels(kHelpButton));
    editing::fillFrame(fraOrdner_, {drvDrive_, dirOrdner_});
    editing::fillFrame(fraDatei_, {filDatei_});
    editing::fillFrame(fraName_, {txtName_});
}

void frmCreate::setCaptions() {
    setWindowTitle(app::text(kTitle));
    fraOrdner_->setTitle(app::text(kFolder));
    fraDatei_->setTitle(app::text(kFiles));
    fraName_->setTitle(app::text(kName));
    lblGruppe_->setText(app::text(kTarget));
    cmdCreate_->setText(app::text(kCreate));
    cmdHelp_->setText(app::text(kHelp));
    dirOrdner_->setAccessibleName(app::text(kFolder));
    filDatei_->setAccessibleName(app::text(kFiles));
    txtName_->setAccessibleName(app::text(kName));
    cboGruppe_->setAccessibleName(app::text(kTarget));
}

void frmCreate::setMode(Mode mode) {
    mode_ = mode;
    const bool isRunning = mode == Mode::Running;
    for (QWidget* control : {static_cast<QWidget*>(fraOrdner_), static_cast<QWidget*>(fraDatei_),
                             static_cast<QWidget*>(fraName_), static_cast<QWidget*>(cboGruppe_),
                             static_cast<QWidget*>(cmdCreate_), static_cast<QWidget*>(cmdHelp_)}) {
        control->setEnabled(!isRunning);
    }
    for (QWidget* control :
         {static_cast<QWidget*>(lblBild_), static_cast<QWidget*>(prgFortschritt_),
          static_cast<QWidget*>(lblAnzahl_)}) {
        control->setVisible(isRunning);
    }
    cmdBack_->setEnabled(true);
    cmdBack_->setText(app::text(isRunning ? kAbort : kBack));
    if (isRunning) {
        cmdBack_->setFocus();
    }
}

void frmCreate::openFor(const SelectionContext& context, GroupTarget preset) {
    context_ = context;
    cboGruppe_->offer(context, preset);
    txtName_->clear();
    editing::centreOnScreen(*this);
    browser_->goToRememberedPlace();
    drvDrive_->setFocus();
    app::execModally(*this);
}

void frmCreate::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (!event->spontaneous()) {
        editing::centreOnScreen(*this);
        dirOrdner_->scrollTo(dirOrdner_->currentIndex(), QAbstractItemView::PositionAtCenter);
    }
}

void frmCreate::reject() {
    if (mode_ == Mode::Idle) {
        QDialog::reject();
        return;
    }
    lblBild_->setText(app::text(kAborting));
    cmdBack_->setEnabled(false);
    app::stopLongOperation();
}

void frmCreate::create() {
    const std::optional<store::GroupAddress> parent = cboGruppe_->parentGroup();
    const store::GroupName name{txtName_->text().toStdU16String()};
    std::optional<store::FilesAdded> added;
    try {
        if (isAcceptable(parent, name)) {
            added = run(parent, name);
        }
    } catch (const std::exception& failure) {
        tellFailure(failure);
    }
    if (!added) {
        txtName_->setFocus();
        return;
    }
    tell(app::text(kCreatedBefore) + txtName_->text() + app::text(kCreatedAfter));
    showSkippedFiles(added->skipped, this);
    accept();
    showInLibrary(added->group);
}

bool frmCreate::isAcceptable(const std::optional<store::GroupAddress>& parent,
                             const store::GroupName& name) {
    if (name.text.empty()) {
        tell(app::text(kNameMissing));
        return false;
    }
    if (filDatei_->count() == 0) {
        tell(app::text(kNoFiles));
        return false;
    }
    const auto state =
        app::resultOfLong<GroupNameState>({app::text(kChecking)}, this, [&](store::Progress&) {
            return stateOfGroupName(view_.library(), parent, name);
        });
    if (state == GroupNameState::Taken) {
        tell(app::text(kExistsBefore) + txtName_->text() + app::text(kExistsAfter));
    } else if (state == GroupNameState::Invalid) {
        tell(app::text(kNameInvalid));
    }
    return state == GroupNameState::Free;
}

std::vector<std::filesystem::path> frmCreate::files() const {
    std::vector<std::filesystem::path> files;
    for (const QString& name : filDatei_->fileNames()) {
        files.push_back(platform::toFilePath(platform::joinPath(filDatei_->folder(), name)));
    }
    return files;
}

// Nothing if the user has aborted.
std::optional<store::FilesAdded> frmCreate::run(const std::optional<store::GroupAddress>& parent,
                                                const store::GroupName& name) {
    const auto paths = files();
    const auto reserved = reservedNames();
    std::optional<store::FilesAdded> added;
    setMode(Mode::Running);
    const auto idle = qScopeGuard([this] { setMode(Mode::Idle); });
    try {
        app::runLongShown(
            [this](std::uint64_t done, std::uint64_t total) { showProgress(done, total); },
            [&](store::Progress& progress) {
                added = store::createGroupFromFiles(view_.library(), parent, name, paths, reserved,
                                                    progress);
            });
    } catch (const compound::Error& error) {
        if (error.code() != compound::ErrorCode::Cancelled) {
            throw;
        }
    }
    return added;
}

// The file at position `done` is being added.
void frmCreate::showProgress(std::uint64_t done, std::uint64_t total) {
    prgFortschritt_->setRange(0, static_cast<int>(total));
    prgFortschritt_->setValue(static_cast<int>(done));
    lblAnzahl_->setText(total == 0 ? QString() : app::text(kAmount).arg(done).arg(total));
    if (!cmdBack_->isEnabled()) {
        return; // what is said about that stays
    }
    if (total > 0 && done == total) {
        lblBild_->setText(app::text(kFinishing));
        cmdBack_->setEnabled(false);
        return;
    }
    const int position = static_cast<int>(done);
    filDatei_->setCurrentRow(position);
    const QListWidgetItem* file = filDatei_->item(position);
    const QString picture =
        file == nullptr
            ? QString()
            : QString::fromStdU16String(
                  store::pictureNameOf(platform::toFilePath(file->text()), done, reservedNames())
                      .text);
    lblBild_->setText(fontMetrics().elidedText(picture, Qt::ElideRight, lblBild_->width()));
}

void frmCreate::showInLibrary(const store::GroupAddress& group) {
    if (store::isTopLevel(group)) {
        view_.TreeViewAdd({group.file.text});
    } else {
        view_.FillTreeView();
        view_.TreeViewSelectNode(group);
    }
    view_.Aktualisieren();
    view_.PicturesArrived(
        [library = view_.library(), group] { return store::allPictures(library, group); });
}

// A group beside the selected one has nothing to do with it. A parent that has vanished is offered
// no longer.
void frmCreate::tellFailure(const std::exception& failure) {
    const bool isBelow = cboGruppe_->target() == GroupTarget::BelowSelected;
    reportFailure(view_, isBelow ? context_ : SelectionContext{}, failure, app::text(kTitle), this);
    if (isBelow && hasVanished(view_, context_)) {
        cboGruppe_->offer({}, GroupTarget::TopLevel);
    }
}

void frmCreate::tell(const QString& text) {
    app::msgBox(text, app::Buttons::Ok, app::text(kTitle), this);
}

} // namespace commands
