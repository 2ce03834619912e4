#include "editing/picture_pane.h"

#include "editing/checkerboard.h"
#include "imaging/image_scaling.h"
#include "imaging/operations/editable_image.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <exception>

namespace editing {
namespace {

// Null without the memory for it.
QImage shrunkInto(const QImage& picture, const QSize& device) try {
    const QSize fitted = picture.size().scaled(device, Qt::KeepAspectRatio).expandedTo({1, 1});
    const bool fits = fitted.width() >= picture.width() && fitted.height() >= picture.height();
    return imaging::operations::editable(fits ? picture : imaging::smoothlyScaled(picture, fitted));
} catch (const std::exception&) {
    return {};
}

} // namespace

PicturePane::PicturePane(QWidget* parent) : QFrame(parent) {
    setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
    connect(&shrinking_, &app::Job::done, this, [this] {
        setImage(shrinking_.result());
        emit pictureShown();
    });
}

void PicturePane::setPicture(const QImage& picture) {
    if (picture.isNull()) {
        shrinking_.drop();
        setImage({});
        return;
    }
    const QSize device = (QSizeF(contentsRect().size()) * devicePixelRatioF()).toSize();
    shrinking_.start([picture, device] { return shrunkInto(picture, device); });
}

void PicturePane::setImage(const QImage& image) {
    image_ = image;
    update();
}

QRect PicturePane::placeOf(const QSize& image) const {
    const QRect area = contentsRect();
    const QSizeF device = QSizeF(area.size()) * devicePixelRatioF();
    const double fit = std::min(device.width() / image.width(), device.height() / image.height());
    const double factor = fit < 1 ? fit : std::floor(fit);
    const QSize size = (QSizeF(image) * factor / devicePixelRatioF()).toSize().expandedTo({1, 1});
    return {area.left() + (area.width() - size.width()) / 2,
            area.top() + (area.height() - size.height()) / 2, size.width(), size.height()};
}

void PicturePane::paintEvent(QPaintEvent* event) {
    QFrame::paintEvent(event);
    if (image_.isNull()) {
        return;
    }
    QPainter painter(this);
    const QRect place = placeOf(image_.size());
    if (image_.hasAlphaChannel()) {
        fillWithCheckerboard(painter, place, palette());
    }
    const double device = place.width() * devicePixelRatioF();
    painter.setRenderHint(QPainter::SmoothPixmapTransform, device < image_.width());
    painter.drawImage(place, image_);
}

} // namespace editing
