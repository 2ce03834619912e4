#include "picture/picture.h"

#include "imaging/decoders.h"
#include "imaging/image_scaling.h"
#include "metafile/metafile.h"

#include <QPainter>

#include <new>
#include <utility>

namespace picture {

namespace {

bool isRaster(PictureKind kind) {
    return kind != PictureKind::Wmf && kind != PictureKind::Emf;
}

QByteArray copyOf(std::span<const std::byte> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), static_cast<qsizetype>(bytes.size())};
}

std::span<const std::byte> bytesOf(const QByteArray& file) {
    return std::as_bytes(std::span(file.constData(), static_cast<std::size_t>(file.size())));
}

} // namespace

std::optional<PictureKind> sniff(std::span<const std::byte> bytes) {
    const auto kind = metafile::sniff(bytes);
    return kind ? kind : imaging::sniff(bytes);
}

PictureFacts measure(std::span<const std::byte> bytes) {
    return metafile::sniff(bytes) ? metafile::measure(bytes) : imaging::measure(bytes);
}

Picture decode(std::span<const std::byte> bytes) {
    return decodeFor(bytes, {});
}

Picture decodeFor(std::span<const std::byte> bytes, QSize box) {
    try {
        if (metafile::sniff(bytes)) {
            return {metafile::measure(bytes), copyOf(bytes)};
        }
    } catch (const std::bad_alloc&) {
        throw DecodeError("there is no memory for the picture");
    }
    const imaging::RasterPicture raster = imaging::decode(bytes, box);
    return {raster.facts, raster.image};
}

Picture::Picture(PictureFacts facts, QImage image) : facts_(facts), image_(std::move(image)) {}

Picture::Picture(PictureFacts facts, QByteArray metafile)
    : facts_(facts), metafile_(std::move(metafile)) {}

QImage Picture::drawnAt(QSize size) const {
    if (drawn_.size() != size) {
        const metafile::Drawing drawing = metafile::draw(bytesOf(metafile_), size);
        drawn_ = drawing.image;
        drawnInPart_ = drawing.completeness == metafile::Completeness::Part;
    }
    return drawn_;
}

QImage Picture::scaledTo(QSize box) const {
    if (box.isEmpty()) {
        return {};
    }
    QSize size = facts_.pixels;
    const bool fits = size.width() <= box.width() && size.height() <= box.height();
    if (!fits || !isRaster(facts_.kind)) {
        size.scale(box, Qt::KeepAspectRatio);
    }
    size = size.expandedTo({1, 1});
    if (isRaster(facts_.kind)) {
        return size == image_.size() ? image_ : imaging::smoothlyScaled(image_, size);
    }
    return drawnAt(size);
}

void Picture::paint(QPainter& painter, const QRectF& target) const {
    // Scaled with averaging first: painting alone would drop pixels of a large picture.
    const QSizeF device = painter.deviceTransform().mapRect(target).size();
    const QSize needed = device.toSize().expandedTo({1, 1});
    const bool shrinks = needed.width() < image_.width() && needed.height() < image_.height();
    painter.save();
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    if (!isRaster(facts_.kind)) {
        painter.drawImage(target, drawnAt(needed));
    } else {
        painter.drawImage(target, shrinks ? imaging::smoothlyScaled(image_, needed) : image_);
    }
    painter.restore();
}

void Picture::print(QPainter& painter, const QRectF& target, QSize pixels) const {
    const QSize size = pixels.expandedTo({1, 1});
    painter.save();
    if (isRaster(facts_.kind)) {
        const bool shrinks = size.width() < image_.width() && size.height() < image_.height();
        // Photographs may be packed with a loss, as they were before.
        painter.setRenderHint(QPainter::LosslessImageRendering, facts_.kind != PictureKind::Jpg);
        painter.drawImage(target, shrinks ? imaging::smoothlyScaled(image_, size) : image_);
    } else if (auto recording = metafile::record(bytesOf(metafile_), size)) {
        painter.translate(target.topLeft());
        // Playing enlarges by the two devices' densities.
        painter.scale(target.width() / size.width() * recording->logicalDpiX() /
                          painter.device()->logicalDpiX(),
                      target.height() / size.height() * recording->logicalDpiY() /
                          painter.device()->logicalDpiY());
        recording->play(&painter);
    } else {
        painter.setRenderHint(QPainter::LosslessImageRendering);
        painter.drawImage(target, drawnAt(size));
    }
    painter.restore();
}

} // namespace picture
