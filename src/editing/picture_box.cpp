#include "editing/picture_box.h"

#include <QPainter>

namespace editing {

PictureBox::PictureBox(QWidget* parent) : QWidget(parent) {}

void PictureBox::setPicture(const imaging::Picture& picture) {
    scaled_ = picture.scaledTo(size() * devicePixelRatioF());
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
    painter.drawImage(rect(), scaled_);
}

} // namespace editing
