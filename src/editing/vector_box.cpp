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

// Null without the memory for it, and for what cannot be drawn at all.
QImage drawnOn(const QSize& device, double screenRatio, const picture::Picture& picture) try {
    QImage sheet(device, QImage::Format_ARGB32_Premultiplied);
    if (sheet.isNull()) {
        return sheet;
    }
    sheet.fill(Qt::transparent);
    QPainter painter(&sheet);
    picture.paint(painter, fittedInto(sheet.size(), picture.facts().twips));
    painter.end();
    sheet.setDevicePixelRatio(screenRatio);
    return sheet;
} catch (const std::exception&) {
    return {};
}

} // namespace

VectorBox::VectorBox(QWidget* parent) : QWidget(parent) {
    settling_.setSingleShot(true);
    settling_.setInterval(kSettled);
    connect(&settling_, &QTimer::timeout, this, [this] { update(); });
    connect(&drawing_, &app::Job::done, this, [this] {
        drawn_ = drawing_.result();
        update();
    });
}

void VectorBox::setPicture(picture::Picture picture) {
    clear();
    picture_ = std::move(picture);
}

void VectorBox::clear() {
    picture_.reset();
    drawing_.drop();
    drawn_ = {};
    drawnFor_ = {};
    settling_.stop();
    update();
}

QSize VectorBox::deviceSize() const {
    return (QSizeF(size()) * devicePixelRatioF()).toSize();
}

void VectorBox::draw() {
    drawnFor_ = deviceSize();
    drawing_.start([picture = *picture_, device = drawnFor_, ratio = devicePixelRatioF()] {
        return drawnOn(device, ratio, picture);
    });
}

void VectorBox::paintEvent(QPaintEvent*) {
    if (!picture_) {
        return;
    }
    if (drawnFor_ != deviceSize() && !isBusy()) {
        draw();
    }
    QPainter painter(this);
    if (drawn_.size() == deviceSize()) {
        painter.drawImage(QPointF(0, 0), drawn_);
    } else if (!drawn_.isNull()) {
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawImage(rect(), drawn_);
    }
}

void VectorBox::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    if (!drawn_.isNull()) {
        settling_.start();
    }
}

} // namespace editing
