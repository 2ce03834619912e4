// Pictures for the tests of editing operations.
#pragma once

#include "imaging/operations/vector_code.h"

#include <QImage>

#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace imaging::testing {

// Any colour, and any alpha where the format has one.
inline QImage randomPicture(QSize size, QImage::Format format, unsigned seed = 1) {
    std::mt19937 random(seed);
    QImage picture(size, format);
    const QRgb opaque = format == QImage::Format_RGB32 ? 0xFF000000 : 0;
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            reinterpret_cast<QRgb*>(picture.scanLine(y))[x] = static_cast<QRgb>(random()) | opaque;
        }
    }
    return picture;
}

inline QImage pictureOf(std::vector<std::vector<QRgb>> rows) {
    QImage picture(static_cast<int>(rows[0].size()), static_cast<int>(rows.size()),
                   QImage::Format_ARGB32);
    for (std::size_t y = 0; y < rows.size(); ++y) {
        for (std::size_t x = 0; x < rows[y].size(); ++x) {
            reinterpret_cast<QRgb*>(picture.scanLine(static_cast<int>(y)))[x] = rows[y][x];
        }
    }
    return picture;
}

inline QRgb onePixel(const QImage& picture, int x = 0, int y = 0) {
    return reinterpret_cast<const QRgb*>(picture.constScanLine(y))[x];
}

// A picture amid the pixels of a larger one.
class PictureInside {
  public:
    explicit PictureInside(const QImage& picture)
        : inner_(QPoint(3, 2), picture.size()),
          around_(randomPicture(picture.size() + QSize(8, 5), picture.format(), 99)) {
        for (int y = 0; y < picture.height(); ++y) {
            std::copy_n(reinterpret_cast<const QRgb*>(picture.constScanLine(y)), picture.width(),
                        rowOf(around_, y));
        }
        before_ = around_.copy();
    }

    // The picture, whose rows are as far apart as those of the larger one. Writes to its pixels.
    QImage view() {
        return {reinterpret_cast<uchar*>(rowOf(around_, 0)), inner_.width(), inner_.height(),
                around_.bytesPerLine(), around_.format()};
    }

    bool isUntouchedAround() const {
        QImage now = around_.copy();
        for (int y = 0; y < inner_.height(); ++y) {
            std::copy_n(rowOf(const_cast<QImage&>(before_), y), inner_.width(), rowOf(now, y));
        }
        return now == before_;
    }

  private:
    QRgb* rowOf(QImage& image, int y) const {
        return reinterpret_cast<QRgb*>(image.scanLine(inner_.y() + y)) + inner_.x();
    }

    QRect inner_;
    QImage around_;
    QImage before_;
};

// Loops run in plain code while it lives.
class PlainCodeOnly {
  public:
    PlainCodeOnly() { operations::useVectorCode(operations::VectorCode::Plain); }
    ~PlainCodeOnly() { operations::useVectorCode(operations::VectorCode::Widest); }
    PlainCodeOnly(const PlainCodeOnly&) = delete;
    PlainCodeOnly& operator=(const PlainCodeOnly&) = delete;
};

} // namespace imaging::testing
