#include "commands/frm_edit_symbol.h"

#include "app/help.h"
#include "app/long_operation.h"
#include "app/message_box.h"
#include "app/modal_dialog.h"
#include "app/texts.h"
#include "commands/dialog_layout.h"
#include "commands/failure_report.h"
#include "commands/library_view.h"
#include "commands/picture_renaming.h"
#include "commands/undo_steps.h"
#include "store/names.h"
#include "store/picture_operations.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace commands {
namespace {

constexpr int kCaption = 400;
constexpr int kPrompt = 403;
constexpr int kBack = 404;
constexpr int kHelp = 405;
constexpr int kNoPicture = 453;
constexpr int kReservedBefore = 454;
constexpr int kReservedAfter = 455;

// What the name alone forbids; empty when it forbids nothing.
QString refusalByName(const QString& name) {
    if (store::isGroupText(name.toStdU16String())) {
        return app::text(kReservedBefore) + u'"' + name + u'"' + app::text(kReservedAfter);
    }
    return refusalOf(name);
}

} // namespace

frmEditSymbol::frmEditSymbol(LibraryView& view, QWidget* owner)
    : QDialog(owner),
      view_(view),
      prompt_(new QLabel(app::text(kPrompt), this)),
      txtName_(new QLineEdit(this)),
      cmdOK_(new QPushButton(QStringLiteral("OK"), this)),
      cmdCancel_(new QPushButton(app::text(kBack), this)),
      cmdHilfe_(new QPushButton(app::text(kHelp), this)) {
    setObjectName(QStringLiteral("frmEditSymbol"));
    setWindowTitle(app::text(kCaption));
    prompt_->setTextFormat(Qt::PlainText);
    txtName_->setObjectName(QStringLiteral("txtName"));
    txtName_->setAccessibleName(app::text(kPrompt));
    cmdOK_->setObjectName(QStringLiteral("cmdOK"));
    cmdOK_->setDefault(true);
    cmdCancel_->setObjectName(QStringLiteral("cmdCancel"));
    cmdHilfe_->setObjectName(QStringLiteral("cmdHilfe"));
    layOutNameDialog(*this, prompt_, txtName_, {cmdOK_, cmdCancel_, cmdHilfe_});
    connectControls();
}

void frmEditSymbol::connectControls() {
    connect(cmdOK_, &QPushButton::clicked, this, &frmEditSymbol::rename);
    connect(cmdCancel_, &QPushButton::clicked, this, &QDialog::reject);
    app::offerHelp(*this, cmdHilfe_, app::HelpTopic::RenamePicture);
}

void frmEditSymbol::openFor(const SelectionContext& context) {
    context_ = context;
    txtName_->setText(context.picture.nameText());
    txtName_->selectAll();
    txtName_->setFocus();
    app::execModally(*this);
}

void frmEditSymbol::rename() {
    QString refusal;
    try {
        refusal = renameOrRefuse(txtName_->text());
    } catch (const std::exception& error) {
        reportFailure(view_, context_, error, app::text(kCaption), this);
        if (hasVanished(view_, context_)) {
            reject(); // the report has found the group vanished: nothing is left to be renamed
        } else {
            txtName_->setFocus();
        }
        return;
    }
    if (!refusal.isEmpty()) {
        app::msgBox(refusal, app::Buttons::Ok, app::text(kCaption), this);
        txtName_->setFocus();
        return;
    }
    accept();
}

// What the box says when the name is refused; empty when the picture was renamed.
QString frmEditSymbol::renameOrRefuse(const QString& name) {
    QString refusal = refusalByName(name);
    if (!refusal.isEmpty()) {
        return refusal;
    }
    const auto picture = context_.pictureInGroup();
    if (!picture) {
        return app::text(kNoPicture);
    }
    if (!app::resultOfReading(this, [&] {
            return store::pictureExists(view_.library(), picture->group, picture->name);
        })) {
        view_.Aktualisieren(); // it went behind the window's back: off the screen with it
        return app::text(kNoPicture);
    }
    refusal = commands::renameOrRefuse(view_.library(), picture->group, picture->name, name);
    if (refusal.isEmpty()) {
        view_.history().add(pictureRenamed(picture->group, picture->name, {name.toStdU16String()}));
        view_.PictureRenamed(picture->group, name);
    }
    return refusal;
}

} // namespace commands
