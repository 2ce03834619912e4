#include "imaging/image_scaling.h"

#include <QColor>

#include <gtest/gtest.h>

namespace imaging {
namespace {

constexpr QRgb kRed = qRgb(255, 0, 0);

// Four quarters: red, half transparent red, green that cannot be seen at all, and red again.
TEST(ImageScaling, WhatIsSeenThroughLendsItsColourToNothing) {
    QImage image(64, 64, QImage::Format_ARGB32);
    for (int y = 0; y < 64; ++y) {
        for (int x = 0; x < 64; ++x) {
            const QRgb above = x < 32 ? kRed : qRgba(255, 0, 0, 128);
            const QRgb below = x < 32 ? qRgba(0, 255, 0, 0) : kRed;
            image.setPixel(x, y, y < 32 ? above : below);
        }
    }
    const QImage small = smoothlyScaled(image, {4, 4}).convertToFormat(QImage::Format_ARGB32);
    ASSERT_EQ(small.size(), QSize(4, 4));
    EXPECT_EQ(small.pixel(0, 0), kRed);
    EXPECT_EQ(small.pixel(3, 0), qRgba(255, 0, 0, 128));
    EXPECT_EQ(qAlpha(small.pixel(0, 3)), 0);
    EXPECT_EQ(small.pixel(3, 3), kRed);
    // Blocks that lie on both: transparent green is worth nothing.
    const QImage uneven = smoothlyScaled(image, {3, 3}).convertToFormat(QImage::Format_ARGB32);
    for (const QPoint at : {QPoint(0, 1), QPoint(1, 1), QPoint(1, 2)}) {
        EXPECT_EQ(qGreen(uneven.pixel(at)), 0) << at.x();
    }
}

TEST(ImageScaling, APictureWithoutAlphaStaysOpaque) {
    QImage image(64, 64, QImage::Format_RGB32);
    image.fill(0x00FF0000); // the unused byte means nothing
    const QImage small = smoothlyScaled(image, {4, 4}).convertToFormat(QImage::Format_ARGB32);
    EXPECT_EQ(small.pixel(2, 2), kRed);
}

} // namespace
} // namespace imaging
