#include "imaging/operation_pictures.h"
#include "imaging/operations/colour_operations.h"

#include <gtest/gtest.h>

namespace {

using namespace imaging::operations;
using namespace imaging::testing;

const std::vector<ColourChange> kChanges = {
    {ColourProperty::Saturation, -1000}, {ColourProperty::Saturation, 370},
    {ColourProperty::Saturation, 1000},  {ColourProperty::Contrast, -333},
    {ColourProperty::Contrast, 999},     {ColourProperty::Intensity, 501},
    {ColourProperty::Intensity, -77},    {ColourProperty::Hue, 150},
    {ColourProperty::Hue, -12'345},      {ColourProperty::Hue, 18'000},
};

QRgb changed(QRgb pixel, ColourProperty property, int amount) {
    QImage picture = pictureOf({{pixel}});
    apply({property, amount}, picture);
    return onePixel(picture);
}

TEST(Contrast, SpreadsLevelsAboutTheMiddle) {
    const auto contrast = [](QRgb pixel, int amount) {
        return changed(pixel, ColourProperty::Contrast, amount);
    };
    EXPECT_EQ(contrast(qRgba(64, 100, 200, 7), 1000), qRgba(1, 73, 255, 7));
    EXPECT_EQ(contrast(qRgba(63, 127, 128, 0), 1000), qRgba(0, 127, 129, 0));
    EXPECT_EQ(contrast(qRgba(0, 255, 100, 128), -500), qRgba(64, 191, 114, 128));
    EXPECT_EQ(contrast(qRgba(0, 255, 77, 255), -1000), qRgba(128, 128, 128, 255));
    EXPECT_EQ(contrast(qRgba(10, 20, 30, 40), 4000), contrast(qRgba(10, 20, 30, 40), 1000));
}

TEST(Intensity, MovesAllLevelsAlike) {
    const auto intensity = [](QRgb pixel, int amount) {
        return changed(pixel, ColourProperty::Intensity, amount);
    };
    EXPECT_EQ(intensity(qRgba(0, 100, 230, 9), 200), qRgba(51, 151, 255, 9));
    EXPECT_EQ(intensity(qRgba(30, 51, 255, 0), -200), qRgba(0, 0, 204, 0));
    EXPECT_EQ(intensity(qRgba(0, 77, 255, 128), 1000), qRgba(255, 255, 255, 128));
    EXPECT_EQ(intensity(qRgba(0, 77, 255, 128), -30'000), qRgba(0, 0, 0, 128));
    EXPECT_EQ(intensity(qRgba(5, 77, 250, 255), 1), qRgba(5, 77, 250, 255)) << "a quarter level";
}

TEST(Saturation, ScalesAboutTheLightness) {
    const auto saturation = [](QRgb pixel, int amount) {
        return changed(pixel, ColourProperty::Saturation, amount);
    };
    const QRgb brown = qRgba(200, 100, 50, 60); // lightness 125, saturation 0.6
    EXPECT_EQ(saturation(brown, -1000), qRgba(125, 125, 125, 60));
    EXPECT_EQ(saturation(brown, -500), qRgba(163, 113, 88, 60));
    EXPECT_EQ(saturation(brown, 500), qRgba(238, 88, 13, 60));
    EXPECT_EQ(saturation(brown, 1000), qRgba(250, 83, 0, 60)) << "no more than saturated";
    EXPECT_EQ(saturation(qRgba(255, 0, 0, 255), 700), qRgba(255, 0, 0, 255));
    EXPECT_EQ(saturation(qRgba(255, 240, 250, 255), 1000), qRgba(255, 240, 250, 255));
}

TEST(Hue, TurnsTheColourCircle) {
    const auto hue = [](QRgb pixel, int angle) {
        return changed(pixel, ColourProperty::Hue, angle);
    };
    const QRgb brown = qRgba(200, 100, 50, 60); // at 20 degrees
    EXPECT_EQ(hue(brown, 12'000), qRgba(50, 200, 100, 60));
    EXPECT_EQ(hue(brown, -12'000), qRgba(100, 50, 200, 60));
    EXPECT_EQ(hue(brown, 6'000), qRgba(150, 200, 50, 60));
    EXPECT_EQ(hue(brown, -2'000), qRgba(200, 50, 50, 60));
    EXPECT_EQ(hue(brown, 18'000), qRgba(50, 150, 200, 60));
    EXPECT_EQ(hue(brown, -18'000), hue(brown, 18'000));
    EXPECT_EQ(hue(brown, 36'000 * 3 + 6'000), hue(brown, 6'000));
    EXPECT_EQ(hue(qRgba(255, 0, 255, 0), 6'000), qRgba(255, 0, 0, 0)) << "past the circle's start";
}

TEST(Hue, KeepsLargestAndSmallestAndTurnsBackToWithinALevel) {
    const QImage before = randomPicture({257, 101}, QImage::Format_ARGB32, 5);
    for (const int angle : {1, 37, 1'500, 5'999, 6'001, 9'000, 11'111, 17'999, 18'000, -4'321}) {
        QImage picture = before;
        changeHue(picture, angle);
        QImage back = picture;
        changeHue(back, -angle);
        for (int i = 0; i < before.width() * before.height(); ++i) {
            const QRgb old = reinterpret_cast<const QRgb*>(before.constBits())[i];
            const QRgb turned = reinterpret_cast<const QRgb*>(picture.constBits())[i];
            const QRgb again = reinterpret_cast<const QRgb*>(back.constBits())[i];
            const auto [oldLeast, oldMost] = std::minmax({qRed(old), qGreen(old), qBlue(old)});
            const auto [least, most] = std::minmax({qRed(turned), qGreen(turned), qBlue(turned)});
            ASSERT_TRUE(least == oldLeast && most == oldMost && qAlpha(turned) == qAlpha(old))
                << std::hex << old << " became " << turned;
            ASSERT_TRUE(std::abs(qRed(again) - qRed(old)) <= 1 &&
                        std::abs(qGreen(again) - qGreen(old)) <= 1 &&
                        std::abs(qBlue(again) - qBlue(old)) <= 1)
                << std::hex << old << " came back as " << again << " from " << std::dec << angle;
        }
    }
}

TEST(ColourChanges, LeaveGreyAsItIs) {
    QImage greys(256, 1, QImage::Format_RGB32);
    for (int level = 0; level < 256; ++level) {
        greys.setPixel(level, 0, qRgb(level, level, level));
    }
    for (const ColourChange& change : kChanges) {
        if (change.property != ColourProperty::Hue &&
            change.property != ColourProperty::Saturation) {
            continue;
        }
        QImage picture = greys;
        apply(change, picture);
        EXPECT_EQ(picture, greys) << change.amount;
    }
}

TEST(Inversion, TwiceGivesThePictureBack) {
    EXPECT_EQ(
        [] {
            QImage picture = pictureOf({{qRgba(0x10, 0x20, 0x30, 0x80)}});
            invert(picture);
            return onePixel(picture);
        }(),
        qRgba(0xEF, 0xDF, 0xCF, 0x80));
    for (const QImage::Format format : {QImage::Format_RGB32, QImage::Format_ARGB32}) {
        const QImage before = randomPicture({133, 77}, format);
        QImage picture = before;
        invert(picture);
        EXPECT_NE(picture, before);
        invert(picture);
        EXPECT_EQ(picture, before);
        EXPECT_EQ(picture.format(), format);
    }
}

TEST(ColourChanges, OfNothingTouchNothing) {
    for (const ColourChange& change :
         {ColourChange{ColourProperty::Saturation, 0}, ColourChange{ColourProperty::Contrast, 0},
          ColourChange{ColourProperty::Intensity, 0}, ColourChange{ColourProperty::Hue, 0},
          ColourChange{ColourProperty::Hue, 72'000}, ColourChange{ColourProperty::Hue, -36'000}}) {
        for (const QImage::Format format :
             {QImage::Format_ARGB32, QImage::Format_ARGB32_Premultiplied, QImage::Format_Mono}) {
            QImage picture(5, 5, format);
            picture.fill(0);
            const qint64 key = picture.cacheKey();
            apply(change, picture);
            EXPECT_EQ(picture.cacheKey(), key);
            EXPECT_EQ(picture.format(), format);
        }
    }
    QImage none;
    changeHue(none, 100);
    invert(none);
    EXPECT_TRUE(none.isNull());
}

// Widths around and beside the numbers of pixels that vectors hold.
TEST(ColourChanges, AreTheSameInAnyCodeAndForAnyRows) {
    for (int width = 1; width < 40; ++width) {
        const QImage before = randomPicture({width, 3}, QImage::Format_ARGB32, 7);
        for (const ColourChange& change : kChanges) {
            QImage wide = before;
            apply(change, wide);
            QImage plain = before;
            {
                const PlainCodeOnly plainOnly;
                apply(change, plain);
            }
            EXPECT_EQ(plain, wide) << width;

            PictureInside inside(before);
            QImage view = inside.view();
            apply(change, view);
            EXPECT_EQ(inside.view(), wide) << width;
            EXPECT_TRUE(inside.isUntouchedAround()) << width;
        }
    }
}

TEST(ColourChanges, OfOneCopyLeaveTheOtherAlone) {
    const QImage before = randomPicture({65, 9}, QImage::Format_RGB32);
    for (const ColourChange& change : kChanges) {
        QImage kept = before.copy();
        QImage picture = kept;
        apply(change, picture);
        EXPECT_EQ(kept, before);
        EXPECT_NE(picture, before);
    }
}

TEST(ColourChanges, IntoAnotherImageUseItsMemoryAgain) {
    QImage source = randomPicture({300, 250}, QImage::Format_ARGB32);
    source.setDotsPerMeterX(1234);
    source.setText("Author", "me");
    const QImage before = source.copy();
    QImage target;
    for (const ColourChange& change : kChanges) {
        const uchar* memory = target.isNull() ? nullptr : target.constBits();
        apply(change, source, target);
        EXPECT_TRUE(memory == nullptr || memory == target.constBits());
        QImage inPlace = source.copy();
        apply(change, inPlace);
        EXPECT_EQ(target, inPlace);
        EXPECT_EQ(source, before);
    }
    EXPECT_EQ(target.dotsPerMeterX(), 1234);
    EXPECT_EQ(target.text("Author"), "me");

    const QImage shown = target; // someone still holds what was made before
    const QImage asShown = shown.copy();
    apply(kChanges[0], source, target);
    EXPECT_EQ(shown, asShown);

    apply({ColourProperty::Hue, 0}, source, target);
    EXPECT_EQ(target, source);
    apply(kChanges[1], source, target);
    EXPECT_EQ(source, before);
}

TEST(ColourChanges, TakeOtherFormatsForWhatTheyShow) {
    QImage veiled = pictureOf({{qRgba(200, 100, 50, 102)}})
                        .convertToFormat(QImage::Format_ARGB32_Premultiplied);
    invert(veiled);
    EXPECT_EQ(veiled.format(), QImage::Format_ARGB32);
    EXPECT_EQ(onePixel(veiled), qRgba(55, 155, 205, 102));

    QImage indexed(1, 1, QImage::Format_Indexed8);
    indexed.setColorTable({qRgb(200, 100, 50)});
    indexed.fill(0);
    changeHue(indexed, 12'000);
    EXPECT_EQ(indexed.format(), QImage::Format_RGB32);
    EXPECT_EQ(onePixel(indexed), qRgb(50, 200, 100));
}

} // namespace
