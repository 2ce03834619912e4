#include "editing/bitmap_editor/amount_field.h"

#include "app/named_control.h"
#include "app/number_text.h"

#include <QDoubleSpinBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QSignalBlocker>
#include <QSlider>

#include <algorithm>
#include <cmath>

namespace editing {
namespace {

constexpr int kSliderWidth = 300;

// Numbers are written with the program's decimal separator, without grouping.
QLocale numberLocale() {
    QLocale locale = app::decimalSeparator() == u',' ? QLocale(QLocale::German, QLocale::Germany)
                                                     : QLocale(QLocale::C);
    locale.setNumberOptions(QLocale::OmitGroupSeparator | QLocale::RejectGroupSeparator);
    return locale;
}

} // namespace

AmountField::AmountField(const Scale& scale, const QString& caption, QWidget* parent)
    : QWidget(parent),
      scale_(scale),
      caption_(app::makePlainLabel("lblBetrag", this)),
      slider_(app::makeNamed<QSlider>("sldBetrag", Qt::Horizontal, this)),
      number_(app::makeNamed<QDoubleSpinBox>("numBetrag", this)) {
    caption_->setText(caption);
    caption_->setBuddy(number_);
    slider_->setRange(-scale.most, scale.most);
    slider_->setSingleStep(scale.step);
    slider_->setPageStep(10 * scale.step);
    slider_->setTickPosition(QSlider::TicksBelow);
    slider_->setTickInterval(scale.most / 2);
    slider_->setMinimumWidth(kSliderWidth);
    slider_->setAccessibleName(caption);
    number_->setLocale(numberLocale());
    number_->setDecimals(static_cast<int>(std::lround(std::log10(scale.perUnit))));
    number_->setRange(-double{1} * scale.most / scale.perUnit,
                      double{1} * scale.most / scale.perUnit);
    number_->setSingleStep(double{1} * scale.step / scale.perUnit);
    number_->setAccessibleName(caption);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(12);
    row->addWidget(caption_);
    row->addWidget(slider_, 1);
    row->addWidget(number_);
    connect(slider_, &QSlider::valueChanged, this, &AmountField::setValue);
    connect(number_, &QDoubleSpinBox::valueChanged, this, &AmountField::takeTyped);
}

void AmountField::setValue(int value) {
    const int nearest = std::clamp(value, -scale_.most, scale_.most);
    const QSignalBlocker sliderIsQuiet(slider_);
    const QSignalBlocker numberIsQuiet(number_);
    slider_->setValue(nearest);
    number_->setValue(double{1} * nearest / scale_.perUnit);
    if (nearest != value_) {
        value_ = nearest;
        emit valueChanged(value_);
    }
}

// The number field is left alone: its text is being typed.
void AmountField::takeTyped(double number) {
    const int typed = static_cast<int>(std::lround(number * scale_.perUnit));
    const QSignalBlocker sliderIsQuiet(slider_);
    slider_->setValue(typed);
    if (typed != value_) {
        value_ = typed;
        emit valueChanged(value_);
    }
}

void AmountField::startTyping() {
    number_->setFocus();
    number_->selectAll();
}

} // namespace editing
