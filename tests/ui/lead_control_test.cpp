#include "app/patience.h"
#include "editing/bitmap_editor/lead_control.h"

#include <QApplication>
#include <QScrollBar>
#include <QTest>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

namespace {

using editing::DisplayLevels;
using editing::LeadControl;

// Every pixel tells its place; one at random would not show an exchange.
QImage numbered(QSize size, QImage::Format format = QImage::Format_RGB32) {
    QImage image(size, format);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            image.setPixel(x, y, qRgb(x * 7 % 256, y * 11 % 256, (x + y) % 256));
        }
    }
    return image;
}

class LeadControlTest : public testing::Test {
  protected:
    void show(const QImage& picture) {
        control_.setFrameShape(QFrame::NoFrame);
        control_.resize(400, 300);
        control_.setPicture(DisplayLevels(picture));
        control_.show();
        control_.showWhole();
    }

    QPointF pictureAt(const QPointF& pointer) const {
        return (pointer - control_.placeOfPicture().topLeft()) / control_.zoomFactor();
    }

    QWidget* viewport() { return control_.viewport(); }

    void turnWheel(const QPoint& pointer, int eighths, Qt::KeyboardModifiers modifiers) {
        QWheelEvent event(pointer, viewport()->mapToGlobal(pointer), {}, {0, eighths}, {},
                          modifiers, Qt::NoScrollPhase, false);
        QApplication::sendEvent(viewport(), &event);
    }

    LeadControl control_{nullptr};
};

TEST_F(LeadControlTest, ZoomsByOneAndAHalfEitherWay) {
    show(numbered({30, 20}));
    QList<double> told;
    QObject::connect(&control_, &LeadControl::zoomed, [&](double zoom) { told.append(zoom); });
    control_.zoomIn();
    control_.zoomIn();
    EXPECT_EQ(control_.zoomFactor(), 2.25);
    control_.zoomOut();
    EXPECT_EQ(control_.zoomFactor(), 1.5);
    EXPECT_EQ(told, (QList<double>{1.5, 2.25, 1.5}));
    QTest::mouseClick(viewport(), Qt::LeftButton);
    EXPECT_EQ(control_.zoomFactor(), 2.25);
    QTest::mouseClick(viewport(), Qt::RightButton);
    EXPECT_EQ(control_.zoomFactor(), 1.5);
    QTest::mouseClick(viewport(), Qt::MiddleButton);
    EXPECT_EQ(control_.zoomFactor(), 1);
    QTest::mouseClick(viewport(), Qt::LeftButton);
    QTest::mouseDClick(viewport(), Qt::LeftButton); // the second press of a double click
    QTest::mouseRelease(viewport(), Qt::LeftButton);
    EXPECT_EQ(control_.zoomFactor(), 2.25);
}

TEST_F(LeadControlTest, StopsAtSensibleEnds) {
    for (const QSize size : {QSize(1, 1), QSize(30, 20), QSize(40'000'000, 1)}) {
        QImage picture(size, QImage::Format_Mono);
        picture.fill(0);
        show(picture);
        for (int i = 0; i < 100; ++i) {
            control_.zoomIn();
        }
        EXPECT_GE(control_.zoomFactor(), size.width() > 1000 ? 16 : 40);
        EXPECT_LE(control_.placeOfPicture().width(), 1 << 30);
        viewport()->grab();
        for (int i = 0; i < 100; ++i) {
            control_.zoomOut();
        }
        EXPECT_GE(control_.placeOfPicture().width(), std::min(8.0, control_.zoomFactor()));
        viewport()->grab();
    }
}

TEST_F(LeadControlTest, ShowsALargePictureWholeAtFirst) {
    show(numbered({1600, 300}));
    EXPECT_EQ(control_.zoomFactor(), 0.25);
    EXPECT_TRUE(until([&] {
        return control_.placeOfPicture() == QRectF(0, 112, 400, 75) &&
               !control_.horizontalScrollBar()->isVisible();
    }));
}

// Every second row is black; reading only some of them would show stripes.
TEST_F(LeadControlTest, ShowsLongPicturesSmallWithoutLeavingOutPixels) {
    QImage striped(400, 8000, QImage::Format_RGB32);
    striped.fill(Qt::white);
    for (int y = 0; y < striped.height(); y += 2) {
        std::fill_n(reinterpret_cast<QRgb*>(striped.scanLine(y)), striped.width(), qRgb(0, 0, 0));
    }
    for (const QImage& picture : {striped, striped.transformed(QTransform().rotate(90))}) {
        show(picture);
        const QRect inside = control_.placeOfPicture().toRect().adjusted(2, 2, -2, -2);
        const QImage seen = viewport()->grab(inside).toImage();
        ASSERT_FALSE(seen.isNull());
        for (int y = 0; y < seen.height(); ++y) {
            for (int x = 0; x < seen.width(); ++x) {
                ASSERT_NEAR(qGray(seen.pixel(x, y)), 128, 8) << x << ", " << y;
            }
        }
    }
}

// The factor is a fraction that no number gives exactly.
TEST_F(LeadControlTest, FitsPicturesOfAnyLengthWithoutBars) {
    for (int height = 1000; height < 1100; ++height) {
        show(QImage(10, height, QImage::Format_RGB32));
        EXPECT_EQ(control_.verticalScrollBar()->maximum(), 0) << height;
        show(QImage(height, 10, QImage::Format_RGB32));
        EXPECT_EQ(control_.horizontalScrollBar()->maximum(), 0) << height;
    }
}

TEST_F(LeadControlTest, KeepsTheSpotUnderThePointer) {
    show(numbered({900, 700}));
    for (int i = 0; i < 4; ++i) {
        control_.zoomIn();
    }
    const QPoint pointer(310, 90);
    const QPointF spot = pictureAt(pointer);
    turnWheel(pointer, 60, Qt::ControlModifier);
    turnWheel(pointer, 60, Qt::ControlModifier); // half a notch each
    turnWheel(pointer, 120, Qt::ControlModifier);
    EXPECT_LE((pictureAt(pointer) - spot).manhattanLength(), 1);
    const double zoom = control_.zoomFactor();
    turnWheel(pointer, -120, Qt::ControlModifier);
    EXPECT_DOUBLE_EQ(control_.zoomFactor(), zoom / 1.5);
    QTest::mouseClick(viewport(), Qt::LeftButton, {}, pointer);
    EXPECT_LE((pictureAt(pointer) - spot).manhattanLength(), 1);

    const int before = control_.verticalScrollBar()->value();
    turnWheel(pointer, -120, Qt::NoModifier);
    EXPECT_GT(control_.verticalScrollBar()->value(), before) << "without Ctrl it scrolls";
    EXPECT_DOUBLE_EQ(control_.zoomFactor(), zoom);
}

TEST_F(LeadControlTest, ADragMovesThePictureAndIsNoClick) {
    show(numbered({900, 700}));
    for (int i = 0; i < 4; ++i) {
        control_.zoomIn();
    }
    const double zoom = control_.zoomFactor();
    const QPointF before = control_.placeOfPicture().topLeft();
    QTest::mousePress(viewport(), Qt::LeftButton, {}, {200, 150});
    QTest::mouseMove(viewport(), {170, 110});
    QTest::mouseMove(viewport(), {150, 100});
    QTest::mouseRelease(viewport(), Qt::LeftButton, {}, {200, 150}); // back where it began
    EXPECT_EQ(control_.placeOfPicture().topLeft(), before - QPointF(50, 50));
    EXPECT_EQ(control_.zoomFactor(), zoom);
    QTest::keyClick(&control_, Qt::Key_Down);
    EXPECT_LT(control_.placeOfPicture().top(), before.y() - 50);
}

// Against the whole picture scaled by hand: what is painted in pieces, as after a box has gone,
// must fit together.
TEST_F(LeadControlTest, PaintsEveryPixelInItsPlaceAlsoInPieces) {
    const QImage picture = numbered({90, 70});
    show(picture);
    EXPECT_EQ(viewport()
                  ->grab(control_.placeOfPicture().toRect())
                  .toImage()
                  .convertToFormat(picture.format()),
              picture);
    for (int i = 0; i < 6; ++i) {
        control_.zoomIn();
    }
    const QImage whole = viewport()->grab().toImage();
    for (const QPoint at : {QPoint(0, 0), QPoint(200, 100), QPoint(383, 283)}) {
        const QPointF spot = pictureAt(at + QPointF(0.5, 0.5));
        EXPECT_EQ(whole.pixel(at),
                  picture.pixel(static_cast<int>(spot.x()), static_cast<int>(spot.y())));
    }
    const QRect piece(101, 57, 83, 31);
    EXPECT_EQ(viewport()->grab(piece).toImage(), whole.copy(piece));
}

TEST_F(LeadControlTest, ShowsPaperWhereThePictureIsSeeThrough) {
    QImage picture(64, 64, QImage::Format_ARGB32);
    picture.fill(Qt::transparent);
    show(picture);
    const QImage shown = viewport()->grab(control_.placeOfPicture().toRect()).toImage();
    EXPECT_NE(shown.pixel(2, 2), shown.pixel(10, 2)) << "two colours of the board";
    EXPECT_EQ(shown.pixel(2, 2), shown.pixel(10, 10));
}

// A pixel that stands alone must be seen at a tenth of the size, too: none may be left out.
TEST_F(LeadControlTest, LeavesNothingOutOfALargePicture) {
    QImage picture(4000, 3000, QImage::Format_RGB32);
    picture.fill(Qt::white);
    for (int y = 0; y < 3000; ++y) {
        picture.setPixel(1233, y, qRgb(0, 0, 0));
        picture.setPixel(1234, y, qRgb(0, 0, 0));
    }
    show(picture);
    const QImage shown = viewport()->grab().toImage();
    int darkest = 255;
    for (int x = 110; x < 140; ++x) {
        darkest = std::min(darkest, qGray(shown.pixel(x, 150)));
    }
    EXPECT_LT(darkest, 235);
}

} // namespace
