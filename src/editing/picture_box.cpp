#include "editing/picture_box.h"

#include "app/colours.h"

#include <QPainter>

namespace editing {

PictureBox::PictureBox(QWidget* parent) : QWidget(parent) {}

void PictureBox::setPicture(const picture::Picture& picture) {
    const QSize device = size() * devicePixelRatioF();
    if (picture.image().isNull()) {
        // A metafile is drawn in the box's own proportions: stretching it afterwards would blur it.
        scaled_ = QImage(device, QImage::Format_ARGB32_Premultiplied);
        scaled_.fill(Qt::transparent);
        QPainter painter(&scaled_);
        picture.paint(painter, scaled_.rect());
    } else {
        scaled_ = picture.scaledTo(device);
    }
    update();
}

void PictureBox::clear() {
    scaled_ = {};
    update();
}

void PictureBox::paintEvent(QPaintEvent*) {
    if (scaled_.isNull())
        return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    if (scaled_.hasAlphaChannel())
        painter.fillRect(rect(), app::paperColor(palette()));
    painter.drawImage(rect(), scaled_);
}

} // namespace editing
