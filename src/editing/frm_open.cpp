#include "editing/frm_open.h"

#include "app/help.h"
#include "app/long_operation.h"
#include "app/message_box.h"
#include "app/modal_dialog.h"
#include "app/named_control.h"
#include "app/settings.h"
#include "app/texts.h"
#include "compound/error.h"
#include "editing/drive_list.h"
#include "editing/file_list.h"
#include "editing/folder_browser.h"
#include "editing/folder_list.h"
#include "editing/frame_content.h"
#include "editing/picture_box.h"
#include "editing/screen_place.h"
#include "picture/picture.h"
#include "platform/native_disk.h"
#include "platform/paths.h"
#include "store/damaged_groups.h"
#include "store/names.h"
#include "store/picture_operations.h"

#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QShowEvent>

#include <utility>

namespace editing {

namespace {

constexpr int kTextTitle = 900;
constexpr int kTextFolder = 901;
constexpr int kTextFiles = 902;
constexpr int kTextName = 905;
constexpr int kTextPreview = 906;
constexpr int kTextSave = 907;
constexpr int kTextBack = 908;
constexpr int kTextHelp = 909;
constexpr int kTextNoFile = 950;
constexpr int kTextInvalidName = 951;
constexpr int kTextNoGroup = 952;
constexpr int kTextNoName = 953;
constexpr int kTextOverwrite = 954;
constexpr int kTextDriveBefore = 955;
constexpr int kTextDriveAfter = 956;
constexpr int kTextUnreadable = 957;

constexpr app::TextPair kSeveral = {u"%1 Dateien", u"%1 files"};
constexpr app::TextPair kSaving = {u"Das Bild wird gespeichert", u"The picture is being saved"};

constexpr double kWidth = 7140;
constexpr double kHeight = 4875;
constexpr double kBoxWidth = 1395;
constexpr double kBoxHeight = 1185;
constexpr double kBoxLeft = 90;
constexpr double kBoxTop = 270;
constexpr double kFrameSlack = 90;

constexpr app::TwipRect kFolderFrame{120, 90, 3390, 3030};
constexpr app::TwipRect kFileFrame{3630, 90, 3390, 3030};
constexpr app::TwipRect kPreviewFrame{120, 3195, kBoxLeft + kBoxWidth + kFrameSlack,
                                      kBoxTop + kBoxHeight + kFrameSlack};
constexpr app::TwipRect kNameLabel{1860, 3180, 5160, 270};
constexpr app::TwipRect kNameField{1860, 3480, 5160, 390};
constexpr app::TwipRect kOkButton{1860, 4305, 1620, 435};
constexpr app::TwipRect kBackButton{3630, 4305, 1620, 435};
constexpr app::TwipRect kHelpButton{5400, 4305, 1620, 435};

constexpr std::chrono::milliseconds kScanPatience{1000};

app::TwipRect Normal() {
    return {(kBoxWidth - kBoxHeight) / 2 + kBoxLeft, kBoxTop, kBoxHeight, kBoxHeight};
}

app::TwipRect ReduceWidth(int height, int width) {
    const double fitted = static_cast<double>(width) / height * kBoxHeight;
    return {(kBoxWidth - fitted) / 2 + kBoxLeft, kBoxTop, fitted, kBoxHeight};
}

app::TwipRect ReduceHeight(int height, int width) {
    const double fitted = static_cast<double>(height) / width * kBoxHeight;
    return {kBoxLeft, (kBoxHeight - fitted) / 2 + kBoxTop, kBoxWidth, fitted};
}

std::filesystem::path pathOf(const FileList& files) {
    return platform::toFilePath(platform::joinPath(files.folder(), files.fileName()));
}

QSize pixelsOf(const picture::PictureFacts& facts) {
    return app::toPixels(facts.twips.width, facts.twips.height);
}

QSize previewSizeFor(const picture::PictureFacts& facts) {
    const QSize pixels = pixelsOf(facts);
    return app::toPixels(previewRect(pixels.height(), pixels.width())).size();
}

// Without a folder there is nothing to scan; saving will say what is wrong with it.
std::vector<store::FileName> filesOf(const store::Library& library) {
    try {
        return store::groupFiles(library);
    } catch (const compound::Error&) {
        return {};
    }
}

// A damaged file that cannot be set aside, as on a read-only medium, stays where it is.
bool isSoundOrSetAside(const store::Library& library, const store::FileName& file,
                       const store::LockBudget& budget) {
    const auto state = store::testGroupFile(library, store::pathOf(library, file), budget);
    try {
        if (state == store::GroupFileState::Damaged) {
            return !store::setAside(library, file); // unless somebody has mended it just now
        }
    } catch (const compound::Error&) {
        return false;
    }
    return state == store::GroupFileState::Sound;
}

} // namespace

app::TwipRect previewRect(int height, int width) {
    if (height == width || height <= 0 || width <= 0) {
        return Normal();
    }
    return height > width ? ReduceWidth(height, width) : ReduceHeight(height, width);
}

frmOpen::frmOpen(QWidget* owner, Listener listener)
    : QDialog(owner), listener_(std::move(listener)) {
    setObjectName(QStringLiteral("frmOpen"));
    setModal(true);
    setFixedSize(app::toPixels(kWidth, kHeight));
    makeControls();
    makePreview();
    placeControls();
    connectControls();
    setCaptions();
}

frmOpen::~frmOpen() = default;

// In reading order, which so is the order of the Tab key.
void frmOpen::makeControls() {
    fraOrdner_ = app::makeNamed<QGroupBox>("fraOrdner", this);
    drvDrive_ = app::makeNamed<DriveList>("drvDrive", fraOrdner_);
    dirOrdner_ = app::makeNamed<FolderList>("dirOrdner", fraOrdner_);
    fraDatei_ = app::makeNamed<QGroupBox>("fraDatei", this);
    filDatei_ = app::makeNamed<FileList>("filDatei", pictureSuffixes(), fraDatei_);
    fraVorschau_ = app::makeNamed<QGroupBox>("fraVorschau", this);
    lblName_ = app::makeNamed<QLabel>("lblName", this);
    txtName_ = app::makeNamed<QLineEdit>("txtName", this);
    cmdOK_ = app::makeNamed<QPushButton>("cmdOK", this);
    cmdAbbruch_ = app::makeNamed<QPushButton>("cmdAbbruch", this);
    cmdHilfe_ = app::makeNamed<QPushButton>("cmdHilfe", this);
    filDatei_->allowSeveral();
    lblName_->setTextFormat(Qt::PlainText);
    lblName_->setBuddy(txtName_);
    cmdOK_->setDefault(true);
    const FolderBrowser::UnreadableTexts texts{kTextDriveBefore, kTextDriveAfter, kTextTitle};
    browser_ = new FolderBrowser(drvDrive_, dirOrdner_, filDatei_, texts, this);
}

void frmOpen::makePreview() {
    imgVorschau_ = app::makeNamed<PictureBox>("imgVorschau", fraVorschau_);
    picBild_ = app::makeNamed<QWidget>("picBild", fraVorschau_);
    picBild_->hide();
}

void frmOpen::placeControls() {
    fraOrdner_->setGeometry(app::toPixels(kFolderFrame));
    fraDatei_->setGeometry(app::toPixels(kFileFrame));
    fraVorschau_->setGeometry(app::toPixels(kPreviewFrame));
    lblName_->setGeometry(app::toPixels(kNameLabel));
    txtName_->setGeometry(app::toPixels(kNameField));
    cmdOK_->setGeometry(app::toPixels(kOkButton));
    cmdAbbruch_->setGeometry(app::toPixels(kBackButton));
    cmdHilfe_->setGeometry(app::toPixels(kHelpButton));
    fillFrame(fraOrdner_, {drvDrive_, dirOrdner_});
    fillFrame(fraDatei_, {filDatei_});
}

void frmOpen::connectControls() {
    connect(filDatei_, &FileList::fileClicked, this, &frmOpen::openFile);
    connect(filDatei_, &QListWidget::itemSelectionChanged, this, &frmOpen::showCount);
    connect(imgVorschau_, &PictureBox::loaded, this, &frmOpen::showPicture);
    connect(imgVorschau_, &PictureBox::failed, this, &frmOpen::refusePicture);
    connect(this, &QDialog::finished, imgVorschau_, &PictureBox::clear);
    connect(txtName_, &QLineEdit::textEdited, this, [this] { isNameTyped_ = true; });
    connect(cmdOK_, &QPushButton::clicked, this, &frmOpen::save);
    connect(cmdAbbruch_, &QPushButton::clicked, this, &frmOpen::goBack);
    app::offerHelp(*this, cmdHilfe_, app::HelpTopic::AddPicture);
}

void frmOpen::setCaptions() {
    setWindowTitle(app::text(kTextTitle));
    fraOrdner_->setTitle(app::text(kTextFolder));
    fraDatei_->setTitle(app::text(kTextFiles));
    fraVorschau_->setTitle(app::text(kTextPreview));
    lblName_->setText(app::text(kTextName));
    cmdOK_->setText(app::text(kTextSave));
    cmdAbbruch_->setText(app::text(kTextBack));
    cmdHilfe_->setText(app::text(kTextHelp));
    dirOrdner_->setAccessibleName(app::text(kTextFolder));
    filDatei_->setAccessibleName(app::text(kTextFiles));
    txtName_->setAccessibleName(app::text(kTextName));
    imgVorschau_->setAccessibleName(app::text(kTextPreview));
}

void frmOpen::openFor(const store::Library& library, TargetGroup target) {
    load(library, std::move(target));
    app::execModally(*this);
}

void frmOpen::load(const store::Library& library, TargetGroup target) {
    library_.emplace(library);
    target_ = std::move(target);
    setCaptions();
    clearPicture();
    centreOnScreen(*this);
    (void)Scan();
    browser_->goToRememberedPlace();
    drvDrive_->setFocus();
}

int frmOpen::Scan() {
    return app::resultOfReading(parentWidget(), [this] {
        const store::LockBudget budget(kScanPatience);
        int sound = 0;
        for (const store::FileName& file : filesOf(*library_)) {
            sound += isSoundOrSetAside(*library_, file, budget) ? 1 : 0;
        }
        return sound;
    });
}

void frmOpen::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (event->spontaneous()) {
        return;
    }
    centreOnScreen(*this);
    dirOrdner_->scrollTo(dirOrdner_->currentIndex(), QAbstractItemView::PositionAtCenter);
}

void frmOpen::clearPicture() {
    isInvalidPicture_ = false;
    savesWhenLoaded_ = false;
    unsetCursor();
    imgVorschau_->clear();
    txtName_->clear();
}

void frmOpen::openFile() {
    isInvalidPicture_ = false;
    savesWhenLoaded_ = false;
    isNameTyped_ = false;
    setCursor(Qt::BusyCursor);
    imgVorschau_->load(
        [path = pathOf(*filDatei_)] {
            return store::readPictureFile(platform::nativeDisk(), path);
        },
        previewSizeFor);
}

void frmOpen::showPicture(const picture::PictureFacts& facts) {
    unsetCursor();
    picBild_->resize(pixelsOf(facts));
    VorschauAnpassen();
    const QString fileName = filDatei_->fileName();
    if (!isNameTyped_ && txtName_->isEnabled()) {
        txtName_->setText(fileName.left(fileName.indexOf(u'.')));
    }
    if (std::exchange(savesWhenLoaded_, false)) {
        save();
    }
}

// Whatever is wrong with it, to the user it is a file that is no picture.
void frmOpen::refusePicture() {
    unsetCursor();
    isInvalidPicture_ = true;
    savesWhenLoaded_ = false;
    if (filDatei_->selectedFileNames().size() > 1) {
        return; // it is told when they are stored
    }
    tell(kTextUnreadable);
}

void frmOpen::VorschauAnpassen() {
    imgVorschau_->setGeometry(app::toPixels(previewRect(picBild_->height(), picBild_->width())));
}

// The text id of what keeps the picture from being saved before the group is asked.
std::optional<int> frmOpen::refusal() const {
    const QString name = txtName_->text();
    if (isInvalidPicture_ || filDatei_->fileName().isEmpty()) {
        return kTextNoFile;
    }
    if (name == app::text(app::kTextNoPicture)) {
        return kTextInvalidName;
    }
    if (name.isEmpty()) {
        return kTextNoName;
    }
    if (!target_.address) {
        return kTextNoGroup;
    }
    if (store::isGroupText(name.toStdU16String())) {
        return kTextInvalidName;
    }
    return std::nullopt;
}

// Several files are called as they are.
void frmOpen::showCount() {
    const auto count = filDatei_->selectedFileNames().size();
    const bool isOne = count <= 1;
    if (!isOne && txtName_->isEnabled()) {
        txtName_->clear();
    }
    txtName_->setPlaceholderText(isOne ? QString() : app::text(kSeveral).arg(count));
    txtName_->setEnabled(isOne);
}

void frmOpen::saveSeveral() {
    if (!target_.address) {
        tell(kTextNoGroup);
        return;
    }
    std::vector<std::filesystem::path> files;
    for (const QString& name : filDatei_->selectedFileNames()) {
        files.push_back(platform::toFilePath(platform::joinPath(filDatei_->folder(), name)));
    }
    try {
        listener_.takeSeveral(target_, files, this);
    } catch (const std::exception& error) {
        tellFailure(error);
    }
}

void frmOpen::save() {
    if (filDatei_->selectedFileNames().size() > 1 && listener_.takeSeveral) {
        saveSeveral();
        return;
    }
    if (imgVorschau_->isBusy()) { // only then it is known what will be saved, and under which name
        savesWhenLoaded_ = true;
        return;
    }
    if (const std::optional<int> reason = refusal()) {
        tell(*reason);
        return;
    }
    try {
        addToGroup(*target_.address, {txtName_->text().toStdU16String()});
    } catch (const std::exception& error) {
        tellFailure(error);
    }
}

void frmOpen::tellFailure(const std::exception& error) {
    app::msgBox(app::groupFailureText(target_.path, error), app::Buttons::Ok, app::text(kTextTitle),
                this);
    if (listener_.saveFailed) {
        listener_.saveFailed(error);
    }
}

void frmOpen::addToGroup(const store::GroupAddress& group, const store::PictureName& name) {
    auto ifExists = store::IfPictureExists::Refuse;
    const auto [isTaken, isValid] = app::resultOfReading(this, [&] {
        return std::pair(store::pictureExists(*library_, group, name),
                         store::testPictureName(*library_, group, name));
    });
    if (isTaken) {
        if (app::msgBox(app::text(kTextOverwrite), app::Buttons::YesNo, app::text(kTextTitle),
                        this) != app::kAnswerYes) {
            return;
        }
        ifExists = store::IfPictureExists::Replace;
    } else if (!isValid) {
        tell(kTextInvalidName);
        return;
    }
    app::runLong({app::text(kSaving)}, this, [&, path = pathOf(*filDatei_)](store::Progress&) {
        store::addPicture(*library_, group, name, path, ifExists);
    });
    if (listener_.added) {
        listener_.added(group, name);
    }
}

void frmOpen::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Cancel)) {
        goBack();
    } else {
        QDialog::keyPressEvent(event);
    }
}

bool frmOpen::isSettled() const {
    return !imgVorschau_->isBusy() && !browser_->isBusy();
}

void frmOpen::goBack() {
    if (listener_.Aktualisieren) {
        listener_.Aktualisieren();
    }
    reject();
}

void frmOpen::tell(int textId) {
    app::msgBox(app::text(textId), app::Buttons::Ok, app::text(kTextTitle), this);
}

} // namespace editing
