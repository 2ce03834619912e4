#include "imaging/encoding/encoders.h"

#include "imaging/encoding/formats.h"

#include <QPainter>

#include <algorithm>
#include <new>
#include <string>

namespace imaging {

namespace {

int mostPixelsASide(PictureKind kind) {
    switch (kind) {
    case PictureKind::Gif:
    case PictureKind::Ico:
    case PictureKind::Cur:
        return 65535; // 16 bits; of icons the hot spot's
    case PictureKind::Jpg:
        return 65500; // JPEG_MAX_DIMENSION
    case PictureKind::Emf:
        return 32767; // beyond it programs take a metafile's size for nonsense
    case PictureKind::Bmp:
    case PictureKind::Wmf:
        break;
    }
    return static_cast<int>(kMaximumPixels);
}

void requireEncodable(const QImage& image, PictureKind kind) {
    if (image.isNull()) {
        throw EncodeError("there is no picture to write");
    }
    if (qint64{image.width()} * image.height() > kMaximumPixels) {
        throw EncodeError("the picture has more than 40 million pixels");
    }
    const int most = mostPixelsASide(kind);
    if (std::max(image.width(), image.height()) > most) {
        throw EncodeError("a picture of the type " + typeCodeOf(kind).toStdString() +
                          " has at most " + std::to_string(most) + " pixels a side");
    }
}

QImage toArgb32(const QImage& image) {
    QImage converted = image.convertToFormat(QImage::Format_ARGB32);
    if (converted.isNull()) {
        throw std::bad_alloc();
    }
    return converted;
}

std::vector<std::byte> encodeChecked(const QImage& image, PictureKind kind, const Kept& kept) {
    switch (kind) {
    case PictureKind::Bmp:
        return encodeBmp(image);
    case PictureKind::Gif:
        return encodeGif(image);
    case PictureKind::Jpg:
        return encodeJpg(image);
    case PictureKind::Ico:
    case PictureKind::Cur:
        return encodeIcon(image, kind, kept);
    case PictureKind::Emf:
        return encodeEmf(image);
    case PictureKind::Wmf:
        break;
    }
    throw EncodeError("pictures of the type WMF cannot be written");
}

} // namespace

Transparency transparencyOf(const QImage& image) {
    bool isAnySeen = false;
    bool isAllOpaque = true;
    for (int y = 0; y < image.height(); ++y) {
        const auto* row = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            isAnySeen |= qAlpha(row[x]) != 0;
            isAllOpaque &= qAlpha(row[x]) == 255;
        }
        if (isAnySeen && !isAllOpaque) {
            return Transparency::Some;
        }
    }
    return isAllOpaque ? Transparency::None : Transparency::All;
}

QImage onWhite(const QImage& image) {
    QImage paper(image.size(), QImage::Format_RGB32);
    if (paper.isNull()) {
        throw std::bad_alloc();
    }
    paper.fill(Qt::white);
    QPainter(&paper).drawImage(0, 0, image);
    return paper;
}

std::vector<std::byte> encode(const QImage& image, PictureKind kind, const Kept& kept) {
    requireEncodable(image, kind);
    try {
        return encodeChecked(toArgb32(image), kind, kept);
    } catch (const std::bad_alloc&) {
        throw EncodeError("there is no memory for writing the picture");
    }
}

} // namespace imaging
