#include "editing/bitmap_editor/parameter_dialog.h"

#include "app/help.h"
#include "app/named_control.h"
#include "app/texts.h"
#include "editing/bitmap_editor/change_preview.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

namespace editing {
namespace {

constexpr app::TextPair kOk{u"OK", u"OK"};

} // namespace

ParameterDialog::ParameterDialog(const QString& cancelCaption, QWidget* owner)
    : QDialog(owner),
      preview_(app::makeNamed<ChangePreview>("preview", this)),
      fields_(new QVBoxLayout),
      cmdOK_(app::makeNamed<QPushButton>("cmdOK", this)),
      cmdAbbruch_(app::makeNamed<QPushButton>("cmdAbbruch", this)) {
    setModal(true);
    app::offerHelp(*this, app::HelpTopic::BitmapEditor);
    cmdOK_->setText(app::text(kOk));
    cmdOK_->setDefault(true);
    cmdAbbruch_->setText(cancelCaption);
    connect(cmdOK_, &QPushButton::clicked, this, &QDialog::accept);
    connect(cmdAbbruch_, &QPushButton::clicked, this, &QDialog::reject);
    preview_->hide();

    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(8);
    buttons->addStretch();
    buttons->addWidget(cmdOK_);
    buttons->addWidget(cmdAbbruch_);

    auto* all = new QVBoxLayout(this);
    all->setContentsMargins(16, 16, 16, 14);
    all->setSpacing(16);
    all->addWidget(preview_);
    all->addLayout(fields_);
    all->addLayout(buttons);
    all->setSizeConstraint(QLayout::SetFixedSize);
    fields_->setSpacing(10);
}

void ParameterDialog::addField(QWidget* field) {
    fields_->addWidget(field);
    // Fields are made after the buttons and come before them.
    setTabOrder(field, cmdOK_);
    setTabOrder(cmdOK_, cmdAbbruch_);
}

void ParameterDialog::showPreview(const QImage& picture) {
    preview_->show();
    preview_->setPicture(picture);
    refreshPreview();
}

void ParameterDialog::refreshPreview() {
    preview_->setChange([this](const QImage& picture) { return changed(picture); });
}

} // namespace editing
