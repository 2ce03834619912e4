#include "editing/bitmap_editor/amount_dialog.h"

#include "editing/bitmap_editor/amount_field.h"

#include <QGroupBox>
#include <QVBoxLayout>

namespace editing {

using imaging::operations::ColourProperty;

static_assert(AmountField::kPercent.most == imaging::operations::kMostAmount);
static_assert(AmountField::kDegrees.most == imaging::operations::kMostHueAmount);

AmountDialog::AmountDialog(ColourProperty property, const Texts& texts, QWidget* owner)
    : ParameterDialog(texts.cancel, owner), property_(property) {
    setObjectName(QStringLiteral("dlgFarbe"));
    setWindowTitle(texts.title);
    auto* frame = new QGroupBox(texts.property, this);
    const auto& scale =
        property == ColourProperty::Hue ? AmountField::kDegrees : AmountField::kPercent;
    amount_ = new AmountField(scale, texts.unit, frame);
    auto* inside = new QVBoxLayout(frame);
    inside->addWidget(amount_);
    addField(frame);
    connect(amount_, &AmountField::valueChanged, this, &AmountDialog::refreshPreview);
    amount_->startTyping();
}

void AmountDialog::setAmount(int amount) {
    amount_->setValue(amount);
    amount_->startTyping();
}

int AmountDialog::amount() const {
    return amount_->value();
}

QImage AmountDialog::changed(const QImage& picture) const {
    QImage result;
    imaging::operations::apply({property_, amount_->value()}, picture, result);
    return result;
}

} // namespace editing
