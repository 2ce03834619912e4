#include "commands/frm_import.h"

#include "app/help.h"
#include "app/long_operation.h"
#include "app/message_box.h"
#include "app/modal_dialog.h"
#include "app/named_control.h"
#include "app/texts.h"
#include "app/twips.h"
#include "catalogue/contents.h"
#include "commands/failure_report.h"
#include "commands/library_view.h"
#include "compound/error.h"
#include "editing/drive_list.h"
#include "editing/file_list.h"
#include "editing/folder_browser.h"
#include "editing/folder_list.h"
#include "editing/frame_content.h"
#include "editing/screen_place.h"
#include "platform/paths.h"
#include "store/group_import.h"

#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QShowEvent>

namespace commands {
namespace {

constexpr int kTitle = 600; // of the window and its boxes
constexpr int kFolder = 601;
constexpr int kFiles = 602;
constexpr int kImport = 603;
constexpr int kBack = 604;
constexpr int kHelp = 605;
constexpr int kNoFile = 650;
constexpr int kGroupExists = 651;
constexpr int kInvalidFormat = 652;
constexpr int kDriveBefore = 653;
constexpr int kDriveAfter = 654;
constexpr int kReady = 655;
constexpr int kTarget = 904;

constexpr app::TextPair kImporting{u"Die Gruppe wird importiert", u"The group is being imported"};

// After a merge that is done.
constexpr app::TextPair kSourceUnchanged{
    u"Die importierte Datei konnte nicht umnummeriert werden und ist wie zuvor.",
    u"The imported file could not be renumbered and is as it was."};

constexpr double kWidth = 4575;
constexpr double kHeight = 3525;
constexpr app::TwipRect kFolderFrame{120, 60, 2130, 2310};
constexpr app::TwipRect kFileFrame{2325, 60, 2130, 2310};
constexpr app::TwipRect kTargetLabel{120, 2475, 960, 390};
constexpr app::TwipRect kTargetBox{1110, 2475, 3345, 390};
constexpr app::TwipRect kImportButton{120, 2985, 1380, 435};
constexpr app::TwipRect kBackButton{1590, 2985, 1380, 435};
constexpr app::TwipRect kHelpButton{3060, 2985, 1395, 435};

} // namespace

frmImport::frmImport(LibraryView& view, QWidget* owner) : QDialog(owner), view_(view) {
    setObjectName(QStringLiteral("frmImport"));
    setModal(true);
    setFixedSize(app::toPixels(kWidth, kHeight));
    makeControls();
    placeControls();
    setCaptions();
    connect(cmdOK_, &QPushButton::clicked, this,
            [this] { filDatei_->afterReading([this] { importFile(); }); });
    connect(cmdReset_, &QPushButton::clicked, this, &QDialog::reject);
    app::offerHelp(*this, cmdHelp_, app::HelpTopic::ImportGroup);
}

// In the order of the Tab key.
void frmImport::makeControls() {
    const QStringList suffixes{QStringLiteral(".stg")};
    fraOrdner_ = app::makeNamed<QGroupBox>("fraOrdner", this);
    drvDrive_ = app::makeNamed<editing::DriveList>("drvDrive", fraOrdner_);
    dirVerzeichniss_ = new editing::FolderList(fraOrdner_);
    dirVerzeichniss_->setObjectName(QStringLiteral("dirVerzeichniß"));
    fraDatei_ = app::makeNamed<QGroupBox>("fraDatei", this);
    filDatei_ = app::makeNamed<editing::FileList>("filDatei", suffixes, fraDatei_);
    lblGruppe_ = app::makePlainLabel("lblGruppe", this);
    cboGruppe_ = new GroupTargetBox(this);
    cmdOK_ = app::makeNamed<QPushButton>("cmdOK", this);
    cmdReset_ = app::makeNamed<QPushButton>("cmdReset", this);
    cmdHelp_ = app::makeNamed<QPushButton>("cmdHelp", this);
    lblGruppe_->setBuddy(cboGruppe_);
    cmdOK_->setDefault(true);
    const editing::FolderBrowser::UnreadableTexts texts{kDriveBefore, kDriveAfter, kTitle};
    browser_ = new editing::FolderBrowser(drvDrive_, dirVerzeichniss_, filDatei_, texts, this);
}

void frmImport::placeControls() {
    fraOrdner_->setGeometry(app::toPixels(kFolderFrame));
    fraDatei_->setGeometry(app::toPixels(kFileFrame));
    lblGruppe_->setGeometry(app::toPixels(kTargetLabel));
    cboGruppe_->place(app::toPixels(kTargetBox));
    cmdOK_->setGeometry(app::toPixels(kImportButton));
    cmdReset_->setGeometry(app::toPixels(kBackButton));
    cmdHelp_->setGeometry(app::toPixels(kHelpButton));
    editing::fillFrame(fraOrdner_, {drvDrive_, dirVerzeichniss_});
    editing::fillFrame(fraDatei_, {filDatei_});
}

void frmImport::setCaptions() {
    setWindowTitle(app::text(kTitle));
    fraOrdner_->setTitle(app::text(kFolder));
    fraDatei_->setTitle(app::text(kFiles));
    lblGruppe_->setText(app::text(kTarget));
    cmdOK_->setText(app::text(kImport));
    cmdReset_->setText(app::text(kBack));
    cmdHelp_->setText(app::text(kHelp));
    dirVerzeichniss_->setAccessibleName(app::text(kFolder));
    filDatei_->setAccessibleName(app::text(kFiles));
    cboGruppe_->setAccessibleName(app::text(kTarget));
}

void frmImport::openFor(const SelectionContext& context, const std::filesystem::path& file) {
    context_ = context;
    cboGruppe_->offer(context, defaultTarget(context));
    editing::centreOnScreen(*this);
    browser_->goToRememberedPlace();
    drvDrive_->setFocus();
    if (!file.empty()) {
        browser_->showFile(platform::fromFilePath(file));
        filDatei_->setFocus();
    }
    app::execModally(*this);
}

void frmImport::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (!event->spontaneous()) {
        editing::centreOnScreen(*this);
        dirVerzeichniss_->scrollTo(dirVerzeichniss_->currentIndex(),
                                   QAbstractItemView::PositionAtCenter);
    }
}

void frmImport::importFile() {
    const QString name = filDatei_->fileName();
    if (name.isEmpty()) {
        tell(kNoFile);
        return;
    }
    const auto file = platform::toFilePath(platform::joinPath(filDatei_->folder(), name));
    try {
        if (const auto parent = cboGruppe_->parentGroup()) {
            mergeBelow(*parent, file);
        } else {
            importAsTopLevel(file);
        }
    } catch (const std::exception& failure) {
        tellFailure(failure, file);
    }
}

void frmImport::importAsTopLevel(const std::filesystem::path& file) {
    const auto group = app::resultOfLong<store::GroupAddress>(
        {app::text(kImporting), app::LongOperation::Stopping::Offered}, this,
        [&](store::Progress& progress) {
            return store::importGroupFile(view_.library(), file, progress);
        });
    accept();
    view_.FillTreeView();
    view_.TreeViewSelectNode(group);
    view_.Aktualisieren();
    tellArrival(group);
}

void frmImport::mergeBelow(const store::GroupAddress& parent, const std::filesystem::path& file) {
    const auto merged = app::resultOfLong<store::MergedGroup>(
        {app::text(kImporting), app::LongOperation::Stopping::Offered}, this,
        [&](store::Progress& progress) {
            return store::mergeGroupFile(view_.library(), parent, file, progress);
        });
    view_.FillTreeView();
    view_.TreeViewSelectNode(parent); // unfolded, so that the new group can be seen
    tellArrival(merged.group);
    tell(kReady);
    if (merged.sourceFailure) {
        app::msgBox(app::text(kSourceUnchanged) + QStringLiteral("\n\n") +
                        app::errorText(*merged.sourceFailure),
                    app::Buttons::Ok, app::text(kTitle), this);
    }
}

void frmImport::tellArrival(const store::GroupAddress& group) {
    view_.PicturesArrived([library = view_.library(), group] {
        std::vector<store::PictureAddress> pictures;
        for (const auto& section :
             catalogue::readContents(library, group, catalogue::SubGroups::Included)) {
            for (const store::PictureEntry& picture : section.pictures) {
                pictures.push_back({section.group, picture.name});
            }
        }
        return pictures;
    });
}

void frmImport::tellFailure(const std::exception& failure, const std::filesystem::path& file) {
    const auto* error = dynamic_cast<const compound::Error*>(&failure);
    if (error != nullptr && error->code() == compound::ErrorCode::Exists) {
        tell(kGroupExists);
    } else if (error != nullptr && error->file() == file &&
               (error->code() == compound::ErrorCode::Damaged ||
                error->code() == compound::ErrorCode::NotCompoundFile)) {
        tell(kInvalidFormat);
    } else {
        const bool isBelow = cboGruppe_->target() == GroupTarget::BelowSelected;
        reportFailure(view_, isBelow ? context_ : SelectionContext{}, failure, app::text(kTitle),
                      this);
        if (isBelow && hasVanished(view_, context_)) {
            cboGruppe_->offer({}, GroupTarget::TopLevel);
        }
    }
}

void frmImport::tell(int textId) {
    app::msgBox(app::text(textId), app::Buttons::Ok, app::text(kTitle), this);
}

} // namespace commands
