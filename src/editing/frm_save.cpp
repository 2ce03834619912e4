#include "editing/frm_save.h"

#include "app/help.h"
#include "app/long_operation.h"
#include "app/message_box.h"
#include "app/modal_dialog.h"
#include "app/named_control.h"
#include "app/texts.h"
#include "compound/error.h"
#include "editing/picture_pane.h"
#include "groups/group_tree.h"
#include "groups/library_reading.h"
#include "store/names.h"
#include "store/picture_operations.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include <chrono>
#include <vector>

namespace editing {

namespace {

constexpr int kBoxTitle = 900; // not the dialog's own
constexpr int kTextInvalidName = 951;
constexpr int kTextNoGroup = 952;
constexpr int kTextOverwrite = 954;
constexpr int kTextTitle = 1100;
constexpr int kTextGroup = 1101;
constexpr int kTextName = 1102;
constexpr int kTextKind = 1103;
constexpr int kTextSave = 1104;
constexpr int kTextAbort = 1105;
constexpr int kTextHelp = 1106;
constexpr int kTextPreview = 1107;
constexpr int kTextOptions = 1108;

constexpr app::TextPair kReading = {u"Die Gruppen werden gelesen", u"The groups are being read"};
constexpr app::TextPair kChecking = {u"Der Name wird geprüft", u"The name is being checked"};
constexpr app::TextPair kSaving = {u"Das Bild wird gespeichert", u"The picture is being saved"};

constexpr std::chrono::milliseconds kPatience{1000}; // with locked files, of all together
constexpr QSize kTreeSize{280, 220};
constexpr QSize kPreviewSize{250, 210};

} // namespace

frmSave::frmSave(QWidget* owner) : QDialog(owner) {
    setObjectName(QStringLiteral("frmSave"));
    setModal(true);
    makeControls();
    setCaptions();
    arrange();
    connect(cmdSave_, &QPushButton::clicked, this, &frmSave::save);
    connect(cmdEnde_, &QPushButton::clicked, this, &QDialog::reject);
    app::offerHelp(*this, cmdHelp_, app::HelpTopic::SavePicture);
}

frmSave::~frmSave() = default;

// In the order of the Tab key.
void frmSave::makeControls() {
    fraOptionen_ = app::makeNamed<QGroupBox>("fraOptionen", this);
    lblGruppe_ = app::makePlainLabel("lblGruppe", fraOptionen_);
    tvwGruppen_ = new groups::GroupTree(fraOptionen_);
    lblName_ = app::makePlainLabel("lblName", fraOptionen_);
    txtName_ = app::makeNamed<QLineEdit>("txtName", fraOptionen_);
    lblDateityp_ = app::makePlainLabel("lblDateityp", fraOptionen_);
    lblTyp_ = app::makePlainLabel("lblTyp", fraOptionen_);
    fraVorschau_ = app::makeNamed<QGroupBox>("fraVorschau", this);
    picVorschau_ = app::makeNamed<PicturePane>("picVorschau", fraVorschau_);
    cmdSave_ = app::makeNamed<QPushButton>("cmdSave", this);
    cmdEnde_ = app::makeNamed<QPushButton>("cmdEnde", this);
    cmdHelp_ = app::makeNamed<QPushButton>("cmdHelp", this);
    lblGruppe_->setBuddy(tvwGruppen_);
    lblName_->setBuddy(txtName_);
    tvwGruppen_->setMinimumSize(kTreeSize);
    picVorschau_->setFixedSize(kPreviewSize);
    cmdSave_->setDefault(true);
}

void frmSave::setCaptions() {
    setWindowTitle(app::text(kTextTitle));
    fraOptionen_->setTitle(app::text(kTextOptions));
    lblGruppe_->setText(app::text(kTextGroup));
    lblName_->setText(app::text(kTextName));
    lblDateityp_->setText(app::text(kTextKind));
    fraVorschau_->setTitle(app::text(kTextPreview));
    cmdSave_->setText(app::text(kTextSave));
    cmdEnde_->setText(app::text(kTextAbort));
    cmdHelp_->setText(app::text(kTextHelp));
    tvwGruppen_->setAccessibleName(app::text(kTextGroup));
    txtName_->setAccessibleName(app::text(kTextName));
    picVorschau_->setAccessibleName(app::text(kTextPreview));
}

void frmSave::arrange() {
    auto* options = new QGridLayout(fraOptionen_);
    options->setHorizontalSpacing(12);
    options->setVerticalSpacing(8);
    options->addWidget(lblGruppe_, 0, 0, 1, 2);
    options->addWidget(tvwGruppen_, 1, 0, 1, 2);
    options->addWidget(lblName_, 2, 0);
    options->addWidget(txtName_, 2, 1);
    options->addWidget(lblDateityp_, 3, 0);
    options->addWidget(lblTyp_, 3, 1);
    options->setRowStretch(1, 1);
    options->setColumnStretch(1, 1);
    auto* preview = new QVBoxLayout(fraVorschau_);
    preview->addWidget(picVorschau_);
    preview->addStretch();

    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(8);
    buttons->addStretch();
    for (QPushButton* button : {cmdSave_, cmdEnde_, cmdHelp_}) {
        buttons->addWidget(button);
    }

    auto* all = new QGridLayout(this);
    all->setContentsMargins(16, 12, 16, 14);
    all->setHorizontalSpacing(12);
    all->setVerticalSpacing(14);
    all->addWidget(fraOptionen_, 0, 0);
    all->addWidget(fraVorschau_, 0, 1);
    all->addLayout(buttons, 1, 0, 1, 2);
    all->setColumnStretch(0, 1);
    all->setRowStretch(0, 1);
}

frmSave::Outcome frmSave::openFor(const store::Library& library, const Request& request) {
    library_.emplace(library);
    request_ = request;
    outcome_ = Outcome::ShownGroupUnchanged;
    txtName_->setText(request.name);
    txtName_->selectAll();
    txtName_->setFocus();
    lblTyp_->setText(request.kind);
    picVorschau_->setPicture(request.preview);
    request_.preview = {};
    try {
        fillTree(request.shownGroup);
        app::execModally(*this);
    } catch (const std::exception& failure) {
        app::msgBox(app::errorText(failure), app::Buttons::Ok, app::text(kBoxTitle),
                    parentWidget());
    }
    picVorschau_->setPicture({});
    return outcome_;
}

void frmSave::fillTree(const store::GroupAddress& selected) {
    const auto files = app::resultOfLong<std::vector<groups::GroupFile>>(
        {app::text(kReading)}, parentWidget(), [this](store::Progress&) {
            return groups::readSoundFiles(*library_, store::LockBudget(kPatience));
        });
    tvwGruppen_->rebuild(files);
    tvwGruppen_->select(selected);
}

// Only a shown tree knows where its nodes are.
void frmSave::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    tvwGruppen_->scrollToItem(tvwGruppen_->currentItem(), QAbstractItemView::PositionAtCenter);
}

std::optional<frmSave::Target> frmSave::target() const {
    const auto selected = tvwGruppen_->selected();
    return selected ? std::optional(Target{selected->address, selected->path}) : std::nullopt;
}

void frmSave::save() {
    const QString name = txtName_->text();
    if (name.isEmpty()) {
        return;
    }
    if (name == app::text(app::kTextNoPicture) || store::isGroupText(name.toStdU16String())) {
        tell(kTextInvalidName);
        return;
    }
    const auto group = target();
    if (!group) {
        tell(kTextNoGroup);
        return;
    }
    try {
        addToGroup(*group);
    } catch (const std::exception& failure) {
        const auto* error = dynamic_cast<const compound::Error*>(&failure);
        if (error != nullptr && error->code() == compound::ErrorCode::OutcomeUnknown &&
            group->address == request_.shownGroup) {
            outcome_ = Outcome::ShownGroupChanged;
        }
        app::msgBox(app::groupFailureText(group->path, failure), app::Buttons::Ok,
                    app::text(kBoxTitle), this);
    }
}

frmSave::NameState frmSave::stateOfName(const Target& target, const store::PictureName& name) {
    return app::resultOfLong<NameState>({app::text(kChecking)}, this, [&](store::Progress&) {
        if (store::pictureExists(*library_, target.address, name)) {
            return NameState::Taken;
        }
        return store::testPictureName(*library_, target.address, name) ? NameState::Free
                                                                       : NameState::Invalid;
    });
}

void frmSave::addToGroup(const Target& target) {
    const store::PictureName name{txtName_->text().toStdU16String()};
    auto ifExists = store::IfPictureExists::Refuse;
    switch (stateOfName(target, name)) {
    case NameState::Invalid:
        tell(kTextInvalidName);
        return;
    case NameState::Taken:
        if (app::msgBox(app::text(kTextOverwrite), app::Buttons::YesNo, app::text(kBoxTitle),
                        this) != app::kAnswerYes) {
            return;
        }
        ifExists = store::IfPictureExists::Replace;
        break;
    case NameState::Free:
        break;
    }
    app::runLong({app::text(kSaving)}, this, [&](store::Progress&) {
        store::addPicture(*library_, target.address, name, request_.file, ifExists);
    });
    if (target.address == request_.shownGroup) {
        outcome_ = Outcome::ShownGroupChanged;
    }
    accept();
}

void frmSave::tell(int textId) {
    app::msgBox(app::text(textId), app::Buttons::Ok, app::text(kBoxTitle), this);
}

} // namespace editing
