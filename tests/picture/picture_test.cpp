// Pictures of every kind, shown at other sizes.
#include "imaging/picture_bytes.h"
#include "picture/picture.h"

#include <QPainter>

#include <array>
#include <gtest/gtest.h>
#include <thread>

namespace picture::testing {
namespace {

using imaging::testing::bmpFile;
using imaging::testing::Bytes;
using imaging::testing::encoded;
using imaging::testing::infoHeader;
using imaging::testing::oneOfEachKind;

constexpr QRgb kRed = qRgb(255, 0, 0);
constexpr QRgb kBlue = qRgb(0, 0, 255);

TEST(Picture, ShrinkingKeepsColoursWhereTheyAre) {
    QImage halves(800, 400, QImage::Format_RGB32); // left half red, right half blue
    halves.fill(QColor(255, 0, 0));
    QPainter(&halves).fillRect(400, 0, 400, 400, QColor(0, 0, 255));
    const auto* begin = reinterpret_cast<const std::byte*>(halves.constBits());
    const Bytes pixels(begin, begin + halves.sizeInBytes());
    const QImage small = decode(bmpFile(infoHeader({800, -400, 32, 0, 0}), pixels))
                             .scaledTo({20, 20})
                             .convertToFormat(QImage::Format_ARGB32);
    EXPECT_EQ(small.size(), QSize(20, 10));
    EXPECT_EQ(small.pixel(3, 5), kRed);
    EXPECT_EQ(small.pixel(16, 5), kBlue);
}

TEST(Picture, IsKnownByItsContentAndShownInABox) {
    const std::vector<Bytes> all = oneOfEachKind();
    const PictureKind kinds[] = {PictureKind::Bmp, PictureKind::Bmp, PictureKind::Bmp,
                                 PictureKind::Ico, PictureKind::Cur, PictureKind::Gif,
                                 PictureKind::Jpg, PictureKind::Wmf, PictureKind::Emf};
    for (std::size_t i = 0; i < all.size(); ++i) {
        const Picture picture = decode(all[i]);
        EXPECT_EQ(picture.facts().kind, kinds[i]);
        EXPECT_EQ(picture.facts().pixels, measure(all[i]).pixels);
        EXPECT_FALSE(picture.scaledTo({40, 30}).isNull());
    }
    const Picture emf = decode(all[8]);
    EXPECT_EQ(emf.scaledTo({60, 60}).size(), QSize(60, 30));
    const Picture raster = decode(encoded(QImage(200, 100, QImage::Format_RGB32), "JPG"));
    EXPECT_EQ(raster.scaledTo({60, 60}).size(), QSize(60, 30));
    EXPECT_EQ(raster.scaledTo({900, 900}).size(), QSize(200, 100)) << "never enlarged";
    EXPECT_FALSE(sniff(Bytes(100, std::byte{0x20})).has_value());
}

TEST(Picture, DecodedForABoxItLooksTheSameInIt) {
    QImage halves(1203, 801, QImage::Format_RGB32); // left half red, right half blue
    halves.fill(QColor(200, 30, 30));
    QPainter(&halves).fillRect(601, 0, 602, 801, QColor(30, 30, 200));
    const QImage shown = decodeFor(encoded(halves, "JPG"), {100, 100}).scaledTo({100, 100});
    EXPECT_EQ(shown.size(), QSize(100, 66));
    EXPECT_NEAR(qRed(shown.pixel(40, 30)), 200, 4);
    EXPECT_NEAR(qBlue(shown.pixel(60, 30)), 200, 4);
}

TEST(Picture, IsTheSameOnManyThreadsAtOnce) {
    const std::vector<Bytes> all = oneOfEachKind();
    const auto drawn = [&all] {
        std::vector<QImage> images;
        for (const Bytes& bytes : all) {
            images.push_back(decodeFor(bytes, {64, 64}).scaledTo({64, 64}));
        }
        return images;
    };
    const std::vector<QImage> expected = drawn();
    std::array<std::vector<QImage>, 4> found;
    std::vector<std::thread> threads;
    for (std::vector<QImage>& images : found) {
        threads.emplace_back([&images, &drawn] { images = drawn(); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (const std::vector<QImage>& images : found) {
        EXPECT_EQ(images, expected);
    }
}

} // namespace
} // namespace picture::testing
