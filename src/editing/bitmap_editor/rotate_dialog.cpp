#include "editing/bitmap_editor/rotate_dialog.h"

#include "app/named_control.h"
#include "editing/bitmap_editor/amount_field.h"
#include "imaging/operations/rotation.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QHBoxLayout>
#include <QPainter>
#include <QPushButton>

namespace editing {
namespace {

using imaging::operations::Canvas;

constexpr QSize kSwatch{28, 16};

QIcon swatch(const QColor& colour, const QPalette& palette, double screenRatio) {
    QPixmap sheet(kSwatch * screenRatio);
    sheet.setDevicePixelRatio(screenRatio);
    sheet.fill(colour);
    QPainter painter(&sheet);
    painter.setPen(palette.color(QPalette::ButtonText));
    painter.drawRect(QRectF(QPointF(0.5, 0.5), QSizeF(kSwatch) - QSizeF(1, 1)));
    return QIcon(sheet);
}

} // namespace

RotateDialog::RotateDialog(const Texts& texts, QWidget* owner)
    : ParameterDialog(texts.cancel, owner) {
    setObjectName(QStringLiteral("dlgDrehen"));
    setWindowTitle(texts.title);
    angle_ = new AmountField(AmountField::kDegrees, texts.angle, this);
    auto* second = new QWidget(this);
    chkResize_ = app::makeNamed<QCheckBox>("chkResize", second);
    chkResize_->setText(texts.resize);
    cmdFarbe_ = app::makeNamed<QPushButton>("cmdFarbe", second);
    cmdFarbe_->setText(texts.fillColour);
    cmdFarbe_->setIconSize(kSwatch);
    cmdFarbe_->setAutoDefault(false); // Enter confirms the dialog
    auto* row = new QHBoxLayout(second);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(chkResize_);
    row->addStretch();
    row->addWidget(cmdFarbe_);
    addField(angle_);
    addField(second);
    connect(angle_, &AmountField::valueChanged, this, &RotateDialog::refreshPreview);
    connect(chkResize_, &QCheckBox::toggled, this, &RotateDialog::refreshPreview);
    connect(cmdFarbe_, &QPushButton::clicked, this, &RotateDialog::askForFillColour);
}

void RotateDialog::offer(bool resize, bool fillColour) {
    chkResize_->setVisible(resize);
    cmdFarbe_->setVisible(fillColour);
}

void RotateDialog::setAnswer(const Answer& answer) {
    angle_->setValue(answer.angle);
    chkResize_->setChecked(answer.isResizing);
    setFillColour(answer.fillColour);
    angle_->startTyping();
}

RotateDialog::Answer RotateDialog::answer() const {
    return {angle_->value(), chkResize_->isChecked(), fillColour_};
}

void RotateDialog::askForFillColour() {
    const QColor chosen = QColorDialog::getColor(fillColour_, this, cmdFarbe_->text());
    if (chosen.isValid()) {
        setFillColour(chosen);
    }
}

void RotateDialog::setFillColour(const QColor& colour) {
    fillColour_ = colour;
    cmdFarbe_->setIcon(swatch(colour, palette(), devicePixelRatioF()));
    cmdFarbe_->setAccessibleDescription(colour.name());
    refreshPreview();
}

QImage RotateDialog::changed(const QImage& picture) const {
    const Answer now = answer();
    return imaging::operations::rotated(
        picture, {now.angle, now.isResizing ? Canvas::Grow : Canvas::Keep, now.fillColour.rgba()});
}

} // namespace editing
