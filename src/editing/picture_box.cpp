#include "editing/picture_box.h"

#include "app/colours.h"

#include <QPainter>

#include <utility>

namespace editing {

namespace {

QImage stretched(const picture::Picture& picture, QSize device) {
    if (!picture.image().isNull()) {
        return picture.scaledTo(device);
    }
    // A metafile is drawn in the box's own proportions: stretching it afterwards would blur it.
    QImage image(device, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    picture.paint(painter, image.rect());
    return image;
}

} // namespace

PictureBox::PictureBox(QWidget* parent) : QWidget(parent) {
    connect(&job_, &app::Job::done, this, &PictureBox::takeScaled);
}

void PictureBox::load(std::function<base::Bytes()> read,
                      std::function<QSize(const picture::PictureFacts&)> sizeFor) {
    clear();
    job_.start([read = std::move(read), sizeFor = std::move(sizeFor), ratio = devicePixelRatioF()] {
        Scaled result;
        try {
            const base::Bytes bytes = read();
            const picture::PictureFacts facts = picture::measure(bytes);
            const QSize device = (sizeFor(facts) * ratio).expandedTo({1, 1});
            result.image = stretched(picture::decodeFor(bytes, device), device);
            result.facts = facts;
        } catch (const std::exception&) {
            result.facts.reset();
        }
        return result;
    });
}

void PictureBox::takeScaled() {
    Scaled result = std::exchange(job_.result(), {});
    if (!result.facts) {
        emit failed();
        return;
    }
    scaled_ = std::move(result.image);
    update();
    emit loaded(*result.facts);
}

void PictureBox::clear() {
    job_.drop();
    scaled_ = {};
    update();
}

void PictureBox::paintEvent(QPaintEvent*) {
    if (scaled_.isNull()) {
        return;
    }
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    if (scaled_.hasAlphaChannel()) {
        painter.fillRect(rect(), app::paperColor(palette()));
    }
    painter.drawImage(rect(), scaled_);
}

} // namespace editing
