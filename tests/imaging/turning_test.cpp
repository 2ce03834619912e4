#include "imaging/operation_pictures.h"
#include "imaging/operations/mirroring.h"
#include "imaging/operations/rotation.h"
#include "imaging/operations/row_bands.h"

#include <QTransform>

#include <array>
#include <atomic>
#include <cmath>
#include <gtest/gtest.h>
#include <numbers>
#include <stdexcept>

namespace {

using namespace imaging::operations;
using namespace imaging::testing;

constexpr QRgb kA = 0xFF0A0A0A;
constexpr QRgb kB = 0x800B0B0B;
constexpr QRgb kC = 0x000C0C0C;
constexpr QRgb kD = 0xFF0D0D0D;
constexpr QRgb kE = 0xFF0E0E0E;
constexpr QRgb kF = 0xFF0F0F0F;
constexpr QRgb kFill = 0x40FF8000;

QImage letters() {
    return pictureOf({{kA, kB, kC}, {kD, kE, kF}});
}

QImage turned(const QImage& picture, int angle, Canvas canvas = Canvas::Grow,
              QRgb fill = 0xFF000000) {
    QImage copy = picture;
    rotate(copy, {angle, canvas, fill});
    EXPECT_EQ(copy, rotated(picture, {angle, canvas, fill}));
    return copy;
}

const std::vector<QSize> kSizes = {{1, 1},   {1, 7},     {7, 1},     {2, 2},    {31, 33},
                                   {64, 16}, {301, 203}, {400, 401}, {129, 700}};

TEST(Turning, OfLettersIsExact) {
    QImage picture = letters();
    flip(picture);
    EXPECT_EQ(picture, pictureOf({{kD, kE, kF}, {kA, kB, kC}}));
    picture = letters();
    reverse(picture);
    EXPECT_EQ(picture, pictureOf({{kC, kB, kA}, {kF, kE, kD}}));
    EXPECT_EQ(turned(letters(), 9'000), pictureOf({{kD, kA}, {kE, kB}, {kF, kC}}));
    EXPECT_EQ(turned(letters(), -9'000), pictureOf({{kC, kF}, {kB, kE}, {kA, kD}}));
    EXPECT_EQ(turned(letters(), 18'000), pictureOf({{kF, kE, kD}, {kC, kB, kA}}));
    EXPECT_EQ(turned(letters(), 27'000 - 72'000), turned(letters(), -9'000));
}

TEST(Turning, OnTheSameCanvasCutsAndFills) {
    EXPECT_EQ(turned(letters(), 9'000, Canvas::Keep, kFill),
              pictureOf({{kD, kA, kFill}, {kE, kB, kFill}}));
    EXPECT_EQ(turned(pictureOf({{kA, kB, kC, kD}, {kE, kF, kA, kB}}), 9'000, Canvas::Keep, kFill),
              pictureOf({{kFill, kF, kB, kFill}, {kFill, kA, kC, kFill}}));
    EXPECT_EQ(turned(letters(), 18'000, Canvas::Keep, kFill), turned(letters(), 18'000));
}

TEST(Turning, BackGivesThePictureBack) {
    for (const QSize size : kSizes) {
        const QImage before = randomPicture(size, QImage::Format_ARGB32);
        QImage picture = before;
        flip(picture);
        EXPECT_TRUE(picture != before || size.height() == 1);
        reverse(picture);
        EXPECT_EQ(picture, turned(before, 18'000));
        flip(picture);
        reverse(picture);
        EXPECT_EQ(picture, before);
        const QImage quarter = turned(before, 9'000);
        EXPECT_EQ(quarter.size(), size.transposed());
        EXPECT_EQ(turned(quarter, 9'000), turned(before, 18'000));
        EXPECT_EQ(turned(quarter, 27'000), before);
        EXPECT_EQ(turned(turned(turned(quarter, 9'000), 9'000), 9'000), before);
    }
}

TEST(Turning, ByWholeTurnsTouchesNothing) {
    for (const int angle : {0, 36'000, -72'000}) {
        QImage picture(5, 4, QImage::Format_Mono);
        picture.fill(1);
        const qint64 key = picture.cacheKey();
        rotate(picture, {angle, Canvas::Grow, kFill});
        EXPECT_EQ(picture.cacheKey(), key);
    }
    QImage none;
    flip(none);
    reverse(none);
    rotate(none, {1'234, Canvas::Grow, kFill});
    rotate(none, {18'000, Canvas::Grow, kFill});
    EXPECT_TRUE(none.isNull());
}

TEST(Turning, KeepsToItsOwnPixelsInAnyCode) {
    for (int width = 1; width < 40; ++width) {
        const QImage before = randomPicture({width, 5}, QImage::Format_ARGB32, 3);
        for (const auto operation :
             {+[](QImage& image) { flip(image); }, +[](QImage& image) { reverse(image); },
              +[](QImage& image) { rotate(image, {18'000}); }}) {
            QImage expected = before;
            {
                const PlainCodeOnly plainOnly;
                operation(expected);
            }
            PictureInside inside(before);
            QImage view = inside.view();
            operation(view);
            EXPECT_EQ(inside.view(), expected);
            EXPECT_TRUE(inside.isUntouchedAround());
        }
        PictureInside inside(before);
        EXPECT_EQ(turned(inside.view(), 9'000), turned(before, 9'000));
        EXPECT_EQ(turned(inside.view(), 777), turned(before, 777));
    }
}

TEST(Turning, KeepsWhatElseAnImageKnows) {
    QImage picture = randomPicture({40, 30}, QImage::Format_RGB32);
    picture.setDotsPerMeterY(777);
    picture.setText("Author", "me");
    for (const int angle : {9'000, 18'000, 4'500}) {
        const QImage result = turned(picture, angle);
        EXPECT_EQ(result.format(), QImage::Format_RGB32);
        EXPECT_EQ(result.dotsPerMeterY(), 777);
        EXPECT_EQ(result.text("Author"), "me");
    }
}

// Bilinear interpolation gives a plane back exactly, so levels tell places in the source.
TEST(FreeTurn, FindsThePlaceOfEachPixel) {
    QImage ramps(120, 100, QImage::Format_ARGB32);
    for (int y = 0; y < 100; ++y) {
        for (int x = 0; x < 120; ++x) {
            ramps.setPixel(x, y, qRgba(2 * x, 255 - 2 * y, x + y, 255));
        }
    }
    for (const int angle : {3'330, -3'330, 100, 8'999, 13'579, 35'999}) {
        for (const Canvas canvas : {Canvas::Keep, Canvas::Grow}) {
            const QImage result = turned(ramps, angle, canvas);
            QTransform back;
            back.translate(60, 50).rotate(-angle / 100.0);
            back.translate(-result.width() / 2.0, -result.height() / 2.0);
            int compared = 0;
            for (int y = 0; y < result.height(); ++y) {
                for (int x = 0; x < result.width(); ++x) {
                    const QPointF place = back.map(QPointF(x + 0.5, y + 0.5)) - QPointF(0.5, 0.5);
                    if (!QRectF(0, 0, 119, 99).contains(place)) {
                        continue;
                    }
                    const QRgb pixel = onePixel(result, x, y);
                    ASSERT_NEAR(qRed(pixel), 2 * place.x(), 0.6) << x << ' ' << y;
                    ASSERT_NEAR(qGreen(pixel), 255 - 2 * place.y(), 0.6) << x << ' ' << y;
                    ASSERT_NEAR(qBlue(pixel), place.x() + place.y(), 0.6) << x << ' ' << y;
                    ++compared;
                }
            }
            EXPECT_GT(compared, 7'000);
        }
    }
}

// How much of a white picture each pixel of the result covers, in pixels; its middle as well.
struct Cover {
    double area = 0;
    double x = 0;
    double y = 0;
};

Cover coverOf(const QImage& onBlack) {
    Cover cover;
    for (int y = 0; y < onBlack.height(); ++y) {
        for (int x = 0; x < onBlack.width(); ++x) {
            const double share = qRed(onePixel(onBlack, x, y)) / 255.0;
            cover.area += share;
            cover.x += share * (x + 0.5);
            cover.y += share * (y + 0.5);
        }
    }
    cover.x /= cover.area;
    cover.y /= cover.area;
    return cover;
}

TEST(FreeTurn, KeepsAreaAndMiddleWithSmoothEdges) {
    for (const QSize size :
         {QSize(1, 1), QSize(1, 50), QSize(50, 1), QSize(40, 33), QSize(700, 90)}) {
        QImage white(size, QImage::Format_RGB32);
        white.fill(Qt::white);
        for (const int angle : {1, 1'234, 4'500, -6'000, 17'990, 26'999}) {
            const QImage result = turned(white, angle);
            const Cover cover = coverOf(result);
            const int area = size.width() * size.height();
            const bool thin = size.width() == 1 || size.height() == 1; // than the middles' grid
            EXPECT_NEAR(cover.area, area, (thin ? 0.2 : 0.01) * area) << area << ' ' << angle;
            EXPECT_NEAR(cover.x, result.width() / 2.0, 0.1) << area << ' ' << angle;
            EXPECT_NEAR(cover.y, result.height() / 2.0, 0.1) << area << ' ' << angle;
        }
    }
}

TEST(FreeTurn, FillsCornersAndMixesEdges) {
    QImage picture(60, 40, QImage::Format_ARGB32);
    picture.fill(qRgba(10, 200, 30, 255));
    const QImage seeThrough = turned(picture, 3'000, Canvas::Grow, 0);
    EXPECT_EQ(onePixel(seeThrough), 0U);
    EXPECT_EQ(onePixel(seeThrough, seeThrough.width() / 2, seeThrough.height() / 2),
              qRgba(10, 200, 30, 255));
    int edges = 0;
    for (int y = 0; y < seeThrough.height(); ++y) {
        for (int x = 0; x < seeThrough.width(); ++x) {
            const QRgb pixel = onePixel(seeThrough, x, y);
            if (qAlpha(pixel) == 0) {
                continue;
            }
            EXPECT_EQ(pixel & 0xFFFFFF, qRgba(10, 200, 30, 0)) << "the fill shines through";
            edges += qAlpha(pixel) < 255;
        }
    }
    EXPECT_GT(edges, 150);

    const QImage opaque =
        turned(picture.convertToFormat(QImage::Format_RGB32), 3'000, Canvas::Keep, kFill);
    EXPECT_EQ(opaque.size(), picture.size());
    EXPECT_EQ(onePixel(opaque), kFill | 0xFF000000);
}

TEST(FreeTurn, LetsNoColourOfTransparentPixelsThrough) {
    QImage picture(50, 50, QImage::Format_ARGB32);
    picture.fill(qRgba(0, 255, 0, 0));
    for (int y = 20; y < 30; ++y) {
        for (int x = 0; x < 50; ++x) {
            picture.setPixel(x, y, qRgba(255, 0, 0, x * 5));
        }
    }
    const QImage result = turned(picture, 2'000, Canvas::Grow, 0);
    int seen = 0;
    for (int y = 0; y < result.height(); ++y) {
        for (int x = 0; x < result.width(); ++x) {
            const QRgb pixel = onePixel(result, x, y);
            seen += qAlpha(pixel) > 0;
            ASSERT_TRUE(qAlpha(pixel) == 0 || qGreen(pixel) == 0) << std::hex << pixel;
        }
    }
    EXPECT_GT(seen, 450);
}

TEST(FreeTurn, OfAPartOrInPlainCodeIsTheSame) {
    for (const QImage::Format format : {QImage::Format_RGB32, QImage::Format_ARGB32}) {
        const QImage picture = randomPicture({613, 207}, format);
        for (const int angle : {333, 9'000, 18'000, 27'000, -12'345}) {
            const Rotation rotation{angle, Canvas::Grow, 0xFF224466};
            const QImage whole = rotated(picture, rotation);
            {
                const PlainCodeOnly plainOnly;
                EXPECT_EQ(rotated(picture, rotation), whole) << angle;
            }
            for (const QRect part : {QRect(17, 5, 101, 77), QRect(130, 90, 1, 1), whole.rect()}) {
                EXPECT_EQ(rotatedPart(picture, rotation, part), whole.copy(part)) << angle;
            }
            const QImage beyond = rotatedPart(picture, rotation, QRect(-4, -3, 10, 10));
            EXPECT_EQ(beyond.copy(4, 3, 6, 7), whole.copy(0, 0, 6, 7)) << angle;
            EXPECT_EQ(onePixel(beyond), 0xFF224466) << angle;
        }
        EXPECT_EQ(rotated(picture, {333 + 72'000, Canvas::Keep, kFill}),
                  rotated(picture, {333 - 36'000, Canvas::Keep, kFill}));
    }
}

TEST(FreeTurn, RefusesAResultThatNobodyCouldLoad) {
    const QImage before = randomPicture({20'000, 2}, QImage::Format_RGB32);
    QImage picture = before;
    EXPECT_THROW(rotate(picture, {4'500, Canvas::Grow, kFill}), std::length_error);
    EXPECT_EQ(picture, before);
    const QSize size = rotatedSize(before.size(), {4'500, Canvas::Grow, kFill});
    EXPECT_EQ(size, QSize(14'144, 14'144));
    const QImage middle =
        rotatedPart(before, {4'500, Canvas::Grow, kFill}, QRect(7'062, 7'062, 20, 20));
    EXPECT_EQ(onePixel(middle, 0, 19), kFill | 0xFF000000);
    EXPECT_NE(onePixel(middle, 10, 10), kFill | 0xFF000000);
    rotate(picture, {4'500, Canvas::Keep, kFill});
    EXPECT_EQ(picture.size(), before.size());
}

TEST(TurnedPoint, IsWhereThePixelWent) {
    for (const QSize size : {QSize(9, 6), QSize(8, 8), QSize(5, 7)}) {
        for (const QPoint point : {QPoint(0, 0), QPoint(4, 5), QPoint(size.width() - 1, 2)}) {
            QImage picture(size, QImage::Format_RGB32);
            picture.fill(Qt::black);
            picture.setPixel(point, 0xFFFFFFFF);
            QImage flipped = picture;
            flip(flipped);
            EXPECT_EQ(
                onePixel(flipped, flippedPoint(point, size).x(), flippedPoint(point, size).y()),
                0xFFFFFFFF);
            QImage reversed = picture;
            reverse(reversed);
            EXPECT_EQ(
                onePixel(reversed, reversedPoint(point, size).x(), reversedPoint(point, size).y()),
                0xFFFFFFFF);
            for (const int angle : {0, 9'000, 18'000, 27'000, -9'000}) {
                const Rotation rotation{angle, Canvas::Grow, 0xFF000000};
                const QPoint there = rotatedPoint(point, size, rotation);
                EXPECT_EQ(onePixel(rotated(picture, rotation), there.x(), there.y()), 0xFFFFFFFF)
                    << angle;
            }
        }
    }
    EXPECT_EQ(rotatedPoint({31, 15}, {32, 32}, {4'500, Canvas::Grow, 0}), QPoint(34, 33));
    EXPECT_EQ(rotatedPoint({0, 0}, {32, 32}, {4'500, Canvas::Keep, 0}), QPoint(16, 0));
}

TEST(RowBands, GiveEachRowOnceEvenWithinEachOther) {
    constexpr int kRows = 57;
    std::array<std::array<std::atomic<int>, kRows>, kRows> visits{};
    forRowBands(kRows, 100'000, [&](int first, int last) {
        for (int outer = first; outer < last; ++outer) {
            forRowBands(kRows, 30'000, [&](int innerFirst, int innerLast) {
                for (int inner = innerFirst; inner < innerLast; ++inner) {
                    ++visits[static_cast<std::size_t>(outer)][static_cast<std::size_t>(inner)];
                }
            });
        }
    });
    for (const auto& row : visits) {
        for (const auto& count : row) {
            ASSERT_EQ(count, 1);
        }
    }
    forRowBands(0, 10, [](int, int) { ADD_FAILURE() << "there are no rows"; });
}

} // namespace
