#include "imaging/decoders.h"
#include "imaging/picture_bytes.h"

#include <QColor>
#include <QPainter>

#include <gtest/gtest.h>

namespace imaging::testing {
namespace {

constexpr QRgb kBlack = 0xFF000000;
constexpr QRgb kRed = 0xFFFF0000;
constexpr QRgb kGreen = 0xFF00FF00;
constexpr QRgb kBlue = 0xFF0000FF;
constexpr QRgb kWhite = 0xFFFFFFFF;

// The pixels row by row from the top, transparent ones as 0.
std::vector<QRgb> pixelsOf(const Bytes& bytes) {
    const QImage image = decode(bytes).image.convertToFormat(QImage::Format_ARGB32);
    std::vector<QRgb> pixels;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            pixels.push_back(qAlpha(image.pixel(x, y)) == 0 ? 0 : image.pixel(x, y));
        }
    }
    return pixels;
}

using Pixels = std::vector<QRgb>;

TEST(BmpDecoder, RowsComeFromTheBottomUnlessTheHeightIsNegative) {
    Bytes rows;
    putBytes(rows, {255, 0, 0, 0, 255, 0, 0, 0});     // blue, green
    putBytes(rows, {0, 0, 255, 255, 255, 255, 0, 0}); // red, white
    EXPECT_EQ(pixelsOf(bmpFile(infoHeader({2, 2, 24, 0, 0}), rows)),
              (Pixels{kRed, kWhite, kBlue, kGreen}));
    EXPECT_EQ(pixelsOf(bmpFile(infoHeader({2, -2, 24, 0, 0}), rows)),
              (Pixels{kBlue, kGreen, kRed, kWhite}));
}

TEST(BmpDecoder, IndexedPixelsOfEveryDepth) {
    Bytes palette;
    for (const std::uint32_t colour : {0xFF0000U, 0x00FF00U, 0x0000FFU, 0xFFFFFFU}) {
        put32(palette, colour);
    }
    const auto file = [&](int bits, const Bytes& row) {
        return bmpFile(joined(infoHeader({4, 1, bits, 0, 4}), palette), row);
    };
    const Pixels four{kRed, kGreen, kBlue, kWhite};
    Bytes row2;
    putBytes(row2, {0x1B, 0, 0, 0});
    EXPECT_EQ(pixelsOf(file(2, row2)), four);
    Bytes row4;
    putBytes(row4, {0x01, 0x23, 0, 0});
    EXPECT_EQ(pixelsOf(file(4, row4)), four);
    Bytes row8;
    putBytes(row8, {0, 1, 2, 3});
    EXPECT_EQ(pixelsOf(file(8, row8)), four);
    Bytes row1;
    putBytes(row1, {0x50, 0, 0, 0});
    EXPECT_EQ(pixelsOf(file(1, row1)), (Pixels{kRed, kGreen, kRed, kGreen}));
    Bytes outside;
    putBytes(outside, {0, 200, 2, 3}); // an index without a colour
    EXPECT_EQ(pixelsOf(file(8, outside)), (Pixels{kRed, kBlack, kBlue, kWhite}));
}

TEST(BmpDecoder, APaletteEndsWhereThePixelsBegin) {
    Bytes palette;
    for (const std::uint32_t colour : {0xFF0000U, 0x00FF00U}) {
        put32(palette, colour);
    }
    Bytes row;
    putBytes(row, {0, 1, 2, 3}); // two of them colours only if the pixels were some
    for (const std::uint32_t stated : {0U, 4U, 256U, 0xFFFFFFFFU}) {
        EXPECT_EQ(pixelsOf(bmpFile(joined(infoHeader({4, 1, 8, 0, stated}), palette), row)),
                  (Pixels{kRed, kGreen, kBlack, kBlack}))
            << stated;
    }
    Bytes runs;
    putBytes(runs, {2, 1, 2, 200, 0, 1});
    EXPECT_EQ(pixelsOf(bmpFile(joined(infoHeader({4, 1, 8, 1, 2}), palette), runs)),
              (Pixels{kGreen, kGreen, kBlack, kBlack}));
}

TEST(BmpDecoder, OldHeadersHaveSmallColours) {
    Bytes core;
    put32(core, 12);
    for (const unsigned value : {2U, 1U, 1U, 1U}) {
        put16(core, value);
    }
    putBytes(core, {0, 0, 255, 255, 255, 255}); // red, white
    Bytes row;
    putBytes(row, {0x40, 0, 0, 0});
    EXPECT_EQ(pixelsOf(bmpFile(core, row)), (Pixels{kRed, kWhite}));
}

TEST(BmpDecoder, MasksOfAnyWidthAreScaledToEightBits) {
    Bytes dib = infoHeader({2, 1, 16, 3, 0});
    for (const std::uint32_t mask : {0xF800U, 0x07E0U, 0x001FU}) {
        put32(dib, mask);
    }
    Bytes row;
    put16(row, 0xF800);
    put16(row, 0x0410); // green 32 of 63, blue 16 of 31
    EXPECT_EQ(pixelsOf(bmpFile(dib, row)), (Pixels{kRed, qRgb(0, 130, 132)}));

    // Five bits each without masks; the highest bit means nothing.
    Bytes plain;
    put16(plain, 0x7FFF);
    put16(plain, 0x801F);
    EXPECT_EQ(pixelsOf(bmpFile(infoHeader({2, 1, 16, 0, 0}), plain)), (Pixels{kWhite, kBlue}));
}

TEST(BmpDecoder, AlphaCountsOnlyWhereTheHeaderHasAMask) {
    Bytes row;
    put32(row, 0x00FF0000);
    put32(row, 0x800000FF);
    EXPECT_EQ(pixelsOf(bmpFile(infoHeader({2, 1, 32, 0, 0}), row)), (Pixels{kRed, kBlue}));
    Bytes v4 = infoHeader({2, 1, 32, 3, 0});
    set32(v4, 0, 108);
    for (const std::uint32_t mask : {0xFF0000U, 0xFF00U, 0xFFU, 0xFF000000U}) {
        put32(v4, mask);
    }
    v4.resize(108);
    EXPECT_EQ(pixelsOf(bmpFile(v4, row)), (Pixels{0, 0x800000FF}));
    Bytes noAlpha;
    put32(noAlpha, 0x00FF0000);
    put32(noAlpha, 0x000000FF);
    EXPECT_EQ(pixelsOf(bmpFile(v4, noAlpha)), (Pixels{kRed, kBlue})) << "a mask left unused";
}

TEST(BmpDecoder, RunLengthsSkipAndEnd) {
    Bytes palette;
    for (const std::uint32_t colour : {0x000000U, 0xFF0000U, 0x00FF00U, 0x0000FFU}) {
        put32(palette, colour);
    }
    const auto file = [&](int bits, std::uint32_t compression, const Bytes& runs) {
        return bmpFile(joined(infoHeader({4, 2, bits, compression, 4}), palette), runs);
    };
    Bytes runs8; // two red, a literal green-blue-red, cut at the row's end; then a skip and a blue
    putBytes(runs8, {2, 1, 0, 3, 2, 3, 1, 0, 0, 0, 0, 2, 1, 0, 1, 3, 0, 1});
    EXPECT_EQ(pixelsOf(file(8, 1, runs8)), (Pixels{0, kBlue, 0, 0, kRed, kRed, kGreen, kBlue}));
    Bytes runs4;
    putBytes(runs4, {3, 0x12, 0, 0, 0, 4, 0x12, 0x31, 0, 1});
    EXPECT_EQ(pixelsOf(file(4, 2, runs4)),
              (Pixels{kRed, kGreen, kBlue, kRed, kRed, kGreen, kRed, 0}));
}

TEST(BmpDecoder, WhatIsMissingAtTheEndStaysEmpty) {
    Bytes rows;
    putBytes(rows, {255, 0, 0, 0});
    EXPECT_EQ(pixelsOf(bmpFile(infoHeader({1, 3, 24, 0, 0}), rows)), (Pixels{0, 0, kBlue}));
    EXPECT_THROW(decode(bmpFile(infoHeader({2, 2, 24, 0, 0}), rows)), DecodeError);
}

TEST(IconDecoder, TheMaskAndTheAlphaTellWhatIsSeenThrough) {
    const std::uint32_t red = 0x00FF0000;
    const Bytes masked = iconFrame32(2, 2, {red, red, red, red}, {0x80, 0x40});
    EXPECT_EQ(pixelsOf(iconFile(1, {{masked, 0, 0}})), (Pixels{kRed, 0, 0, kRed}));
    const Bytes alpha = iconFrame32(2, 1, {0x80FF0000, 0x000000FF}, {0x00});
    EXPECT_EQ(pixelsOf(iconFile(1, {{alpha, 0, 0}})), (Pixels{0x80FF0000, 0}));
    const Bytes noMask = iconFrame32(2, 1, {red, red}, {});
    EXPECT_EQ(pixelsOf(iconFile(1, {{noMask, 0, 0}})), (Pixels{kRed, kRed}));
}

TEST(IconDecoder, TheBestFrameIsTheLargestThenTheDeepest) {
    Bytes small1 = infoHeader({2, 2, 1, 0, 2});
    for (const std::uint32_t value : {0U, 0xFFFFFFU, 0U, 0U}) {
        put32(small1, value);
    }
    const Bytes small32 = iconFrame32(2, 1, {0xFF0000FF, 0xFF0000FF}, {0});
    const PictureFacts facts = measure(iconFile(1, {{small1, 0, 0}, {small32, 0, 0}}));
    EXPECT_EQ(facts.bitsPerPixel, 32);
    QImage large(7, 5, QImage::Format_ARGB32);
    large.fill(QColor(0, 255, 0, 255));
    const Bytes png = encoded(large, "PNG");
    const Bytes file = iconFile(1, {{small32, 0, 0}, {png, 0, 0}});
    EXPECT_EQ(decode(file).image.size(), QSize(7, 5));
    EXPECT_EQ(decode(file).image.pixel(6, 4), kGreen);
    Bytes brokenPng = png;
    brokenPng.resize(40);
    EXPECT_EQ(pixelsOf(iconFile(1, {{small32, 0, 0}, {brokenPng, 0, 0}})), (Pixels{kBlue, kBlue}))
        << "a broken frame gives way to the next one";
}

TEST(IconDecoder, ACursorHasAHotSpotWithinItself) {
    const Bytes frame = iconFrame32(2, 2, {1, 2, 3, 4}, {0, 0});
    const PictureFacts facts = measure(iconFile(2, {{frame, 1, 0}}));
    EXPECT_EQ(facts.kind, PictureKind::Cur);
    EXPECT_EQ(facts.hotSpot, QPoint(1, 0));
    EXPECT_EQ(measure(iconFile(2, {{frame, 900, 900}})).hotSpot, QPoint(1, 1));
    EXPECT_EQ(measure(iconFile(1, {{frame, 1, 1}})).hotSpot, QPoint());
}

TEST(GifDecoder, ThePictureLiesOnItsScreenWithItsTransparency) {
    EXPECT_EQ(pixelsOf(gifFile({3, 2, 1, 1, 2, 1, false, 0, {1, 0}})),
              (Pixels{0, 0, 0, 0, kRed, 0}));
    EXPECT_EQ(pixelsOf(gifFile({2, 1, 0, 0, 2, 1, false, -1, {0, 3}})), (Pixels{kBlack, kBlue}));
    EXPECT_EQ(measure(gifFile({0, 0, 2, 3, 1, 1, false, -1, {1}})).pixels, QSize(3, 4));
}

TEST(GifDecoder, InterlacedRowsFindTheirPlaces) {
    // Rows arrive as 0 8 4 2 6 1 3 5 7; each is coloured by its real place modulo four.
    const std::vector<int> arrival{0, 0, 0, 2, 2, 1, 3, 1, 3};
    const Pixels pixels = pixelsOf(gifFile({1, 9, 0, 0, 1, 9, true, -1, arrival}));
    EXPECT_EQ(pixels, (Pixels{kBlack, kRed, kGreen, kBlue, kBlack, kRed, kGreen, kBlue, kBlack}));
}

TEST(GifDecoder, ACutPictureShowsTheRowsThatAreThere) {
    Bytes file = gifFile({10, 400, 0, 0, 10, 400, false, -1, std::vector<int>(4000, 1)});
    file.resize(file.size() / 2);
    const Pixels pixels = pixelsOf(file);
    EXPECT_EQ(pixels.front(), kRed);
    EXPECT_EQ(pixels.back(), 0U);
}

TEST(GifDecoder, ARowThatIsCutShowsThePixelsThatAreThere) {
    Bytes file = gifFile({4000, 2, 0, 0, 4000, 2, false, -1, std::vector<int>(8000, 1)});
    const Bytes header(file.begin(), file.begin() + 40);
    file.resize(file.size() / 4 * 3); // in the second row
    const Pixels pixels = pixelsOf(file);
    EXPECT_EQ(pixels.front(), kRed);
    EXPECT_EQ(pixels.at(4000), kRed);
    EXPECT_EQ(pixels.at(5000), kRed);
    EXPECT_EQ(pixels.back(), 0U);
    EXPECT_EQ(pixelsOf(header), Pixels(8000)) << "nothing there but the frame";
}

TEST(JpgDecoder, OrientationTurnsPictureAndMeasure) {
    QImage image(16, 8, QImage::Format_RGB32);
    image.fill(Qt::white);
    image.fill(QColor(200, 30, 30));
    const Bytes plain = encoded(image, "JPG");
    const Bytes turned = turnedJpg(image);
    EXPECT_EQ(measure(plain).pixels, QSize(16, 8));
    EXPECT_EQ(measure(turned).pixels, QSize(8, 16));
    EXPECT_EQ(decode(turned).image.size(), QSize(8, 16));
    EXPECT_NEAR(qRed(decode(plain).image.pixel(8, 4)), 200, 4);
}

// Red at the left, blue at the right.
QImage twoHalves(QSize size) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(QColor(200, 30, 30));
    QPainter(&image).fillRect(size.width() / 2, 0, size.width(), size.height(),
                              QColor(30, 30, 200));
    return image;
}

TEST(JpgDecoder, ForASmallBoxFewerPixelsAreDecoded) {
    const Bytes plain = encoded(twoHalves({1203, 801}), "JPG");
    EXPECT_EQ(decode(plain, {100, 100}).image.size(), QSize(150, 100));
    EXPECT_EQ(decode(plain, {151, 151}).image.size(), QSize(300, 200));
    EXPECT_EQ(decode(plain, {601, 2000}).image.size(), QSize(601, 400));
    EXPECT_EQ(decode(plain, {602, 2000}).image.size(), QSize(1203, 801));
    EXPECT_EQ(decode(plain, {5000, 5000}).image.size(), QSize(1203, 801));
    const RasterPicture small = decode(plain, {100, 100});
    EXPECT_EQ(small.facts.pixels, QSize(1203, 801));
    EXPECT_NEAR(qRed(small.image.pixel(60, 50)), 200, 4);
    EXPECT_NEAR(qBlue(small.image.pixel(90, 50)), 200, 4);
}

TEST(JpgDecoder, ATurnedPictureIsUprightInASmallBoxToo) {
    const Bytes turned = turnedJpg(twoHalves({1200, 400}));
    const RasterPicture small = decode(turned, {200, 200}); // 67 x 200 are shown
    EXPECT_EQ(small.image.size(), QSize(100, 300));
    EXPECT_EQ(small.facts.pixels, QSize(400, 1200));
    EXPECT_NEAR(qRed(small.image.pixel(50, 100)), 200, 4);
    EXPECT_NEAR(qBlue(small.image.pixel(50, 200)), 200, 4);
}

} // namespace
} // namespace imaging::testing
