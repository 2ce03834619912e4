#include "editing/vector_box.h"

#include <QPainter>

#include <chrono>
#include <utility>

namespace editing {

namespace {

constexpr std::chrono::milliseconds kSettled{80};

// The largest rectangle of the picture's proportions in the middle of `area`. On whole pixels, so
// that the player's thin lines fall onto the screen's.
QRect fittedInto(const QSize& area, const picture::TwipSize& picture) {
    QSizeF size(picture.width, picture.height);
    size.scale(area, Qt::KeepAspectRatio);
    const QSize whole = size.toSize().expandedTo({1, 1});
    return {QPoint((area.width() - whole.width()) / 2, (area.height() - whole.height()) / 2),
            whole};
}

} // namespace

VectorBox::VectorBox(QWidget* parent) : QWidget(parent) {
    settling_.setSingleShot(true);
    settling_.setInterval(kSettled);
    connect(&settling_, &QTimer::timeout, this, [this] { update(); });
}

void VectorBox::setPicture(picture::Picture picture) {
    picture_ = std::move(picture);
    drawn_ = {};
    settling_.stop();
    update();
}

void VectorBox::clear() {
    picture_.reset();
    drawn_ = {};
    settling_.stop();
    update();
}

QSize VectorBox::deviceSize() const {
    return (QSizeF(size()) * devicePixelRatioF()).toSize();
}

void VectorBox::draw(const picture::Picture& picture) {
    drawn_ = QImage(deviceSize(), QImage::Format_ARGB32_Premultiplied);
    if (drawn_.isNull())
        return;
    drawn_.fill(Qt::transparent);
    QPainter painter(&drawn_);
    picture.paint(painter, fittedInto(drawn_.size(), picture.facts().twips));
    painter.end();
    drawn_.setDevicePixelRatio(devicePixelRatioF());
}

void VectorBox::paintEvent(QPaintEvent*) {
    if (!picture_)
        return;
    if (drawn_.isNull() || (drawn_.size() != deviceSize() && !settling_.isActive()))
        draw(*picture_);
    QPainter painter(this);
    if (drawn_.size() == deviceSize()) {
        painter.drawImage(QPointF(0, 0), drawn_);
    } else {
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawImage(rect(), drawn_);
    }
}

void VectorBox::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    if (!drawn_.isNull())
        settling_.start();
}

} // namespace editing
