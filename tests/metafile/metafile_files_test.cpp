// Windows metafiles: sizes, objects, and which pixels get which colour.
#include "metafile/metafile.h"
#include "metafile/metafile_bytes.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace metafile::testing {
namespace {

constexpr QRgb kWhite = qRgb(255, 255, 255);
constexpr QRgb kBlack = qRgb(0, 0, 0);
constexpr QRgb kRed = qRgb(255, 0, 0);
constexpr QRgb kBlue = qRgb(0, 0, 255);

Bytes words(std::initializer_list<int> values) {
    Bytes bytes;
    for (const int value : values) {
        put16(bytes, static_cast<unsigned>(value) & 0xFFFFU);
    }
    return bytes;
}

// A null pen as object 0 and a solid brush as object 1, both selected.
WmfFile filled(int red, int blue) {
    WmfFile file;
    file.window(0, 0, 40, 40).add(0x02FA, {5, 0, 0, 0, 0}).add(0x012D, {0});
    return file.add(0x02FC, {0, red, blue, 0}).add(0x012D, {1});
}

QImage drawn(const WmfFile& file) {
    return drawnMetafile(file.plain(), {40, 40});
}

TEST(WindowsMetafiles, SizesComeFromTheBoxOrTheFirstWindow) {
    const WmfFile file = filled(255, 0);
    const imaging::PictureFacts placeable = measure(file.placeable(0, 0, 2880, 1440, 1440));
    EXPECT_EQ(placeable.twips.width, 2880);
    EXPECT_EQ(placeable.twips.height, 1440);
    EXPECT_EQ(measure(file.placeable(0, 100, 200, 0, 100)).pixels, QSize(192, 96));
    EXPECT_EQ(measure(file.plain()).pixels, QSize(40, 40));
    // Without a window what is drawn tells.
    WmfFile bare;
    bare.add(0x041B, {60, 90, 10, 20});
    EXPECT_EQ(measure(bare.plain()).pixels, QSize(71, 51));
    EXPECT_EQ(measure(WmfFile().plain()).pixels, QSize(32, 32));
}

TEST(WindowsMetafiles, NewObjectsTakeTheLowestFreeNumber) {
    WmfFile file = filled(255, 0);
    file.add(0x0142, {99, 99}).add(0x01F0, {1}); // an unreadable brush is object 2; 1 is free
    file.add(0x02FC, {0, 0, 255, 0}).add(0x012D, {2}).add(0x041B, {40, 20, 0, 0});
    file.add(0x012D, {1}).add(0x041B, {40, 40, 0, 20});
    EXPECT_EQ(drawn(file).pixel(10, 10), kRed); // selecting nothing changes nothing
    EXPECT_EQ(drawn(file).pixel(30, 10), kBlue);
}

TEST(WindowsMetafiles, ShapesAreDrawn) {
    WmfFile file = filled(255, 0);
    file.add(0x0324, {3, 0, 0, 20, 0, 0, 20});                                 // polygon
    file.add(0x0538, {2, 3, 3, 30, 0, 40, 0, 40, 10, 30, 30, 40, 30, 40, 40}); // two of them
    file.add(0x0418, {40, 20, 20, 0});                                         // ellipse
    const QImage image = drawn(file);
    EXPECT_EQ(image.pixel(3, 3), kRed);
    EXPECT_EQ(image.pixel(38, 2), kRed);
    EXPECT_EQ(image.pixel(38, 33), kRed);
    EXPECT_EQ(image.pixel(10, 30), kRed);
    EXPECT_EQ(image.pixel(1, 21), kWhite);

    WmfFile pie = filled(255, 0); // ends at the top, begins at the right
    pie.add(0x081A, {0, 20, 20, 40, 40, 40, 0, 0});
    EXPECT_EQ(drawn(pie).pixel(26, 14), kRed);
    EXPECT_EQ(drawn(pie).pixel(14, 14), kWhite);
}

TEST(WindowsMetafiles, FloodsRegionsAndPatternsFill) {
    WmfFile flood = filled(255, 0);
    flood.add(0x02FA, {0, 1, 0, 0, 0}).add(0x012D, {2}).add(0x02FC, {1, 0, 0, 0}).add(0x012D, {3});
    flood.add(0x041B, {30, 30, 10, 10}).add(0x012D, {1}).add(0x0419, {0, 0, 20, 20});
    EXPECT_EQ(drawn(flood).pixel(20, 20), kRed);
    EXPECT_EQ(drawn(flood).pixel(5, 5), kWhite);

    WmfFile region = filled(255, 0); // one scan from y 5 to 15, x 5 to 25
    region.add(0x06FF, {0, 6, 0, 0, 0, 1, 2, 5, 5, 25, 15, 2, 5, 15, 5, 25, 2});
    region.add(0x0228, {2, 1});
    EXPECT_EQ(inkOf(drawn(region)), QRect(5, 5, 20, 10));

    WmfFile pattern = filled(255, 0);
    pattern.add(0x061D, {0x0021, 0x00F0, 20, 40, 0, 0})
        .add(0x0940, {0x0009, 0x0055, 0, 0, 0, 20, 40, 20, 0});
    EXPECT_EQ(drawn(pattern).pixel(10, 10), kRed);
    EXPECT_EQ(drawn(pattern).pixel(10, 30), kBlack);
}

TEST(WindowsMetafiles, ColoursMayBeNumbersOfThePalette) {
    WmfFile file;
    file.window(0, 0, 40, 40).add(0x00F7, {0x300, 2, 0, 0, 255, 0}).add(0x0234, {0});
    file.add(0x02FA, {5, 0, 0, 0, 0}).add(0x012D, {1}).add(0x02FC, {0, 1, 0x0100, 0});
    file.add(0x012D, {2}).add(0x041B, {40, 40, 0, 0});
    EXPECT_EQ(drawn(file).pixel(20, 20), kRed);
}

TEST(WindowsMetafiles, BitmapsAreDrawn) {
    const Bytes bitmap = joined(bitmapHeader(2, 2), bitmapPixels(2, {kRed, kBlue, kBlack, kWhite}));
    WmfFile file = filled(0, 0);
    file.addBytes(0x0F43, joined(words({0x0020, 0x00CC, 0, 2, 2, 0, 0, 40, 40, 0, 0}), bitmap));
    EXPECT_EQ(drawn(file).pixel(5, 5), kRed);
    EXPECT_EQ(drawn(file).pixel(35, 5), kBlue);
    // A device's own bitmap of two colours: they are the text's and the ground's.
    WmfFile old = filled(0, 0);
    old.add(0x0209, {255, 0});
    old.addBytes(0x0922, joined(words({0x0020, 0x00CC, 0, 0, 1, 2, 0, 0, 0, 2, 1, 2, 0x0101}),
                                words({0x0040})));
    EXPECT_EQ(drawn(old).pixel(0, 0), kRed);
    EXPECT_EQ(drawn(old).pixel(1, 0), kWhite);
}

TEST(WindowsMetafiles, TextIsReadByItsCharacterSet) {
    const auto image = [](int set, int letter) {
        WmfFile file;
        file.window(0, 0, 100, 100).add(0x0102, {1});
        file.addBytes(0x02FB, joined(words({-60, 0, 0, 0, 400, 0, set << 8, 0, 0}), Bytes(8)));
        file.add(0x012D, {0}).add(0x0521, {1, letter, 10, 10});
        return drawnMetafile(file.plain(), {100, 100});
    };
    EXPECT_FALSE(inkOf(image(0, 0xC6)).isNull());
    EXPECT_NE(image(0, 0xC6), image(204, 0xC6)); // a ligature and a Cyrillic letter
}

TEST(WindowsMetafiles, TheMetafileThatAFileWasMadeOfIsDrawnInstead) {
    EmfFile original(40, 40);
    const Bytes emf = original.stock(8).brush(1, colour(0, 0, 255)).rectangle(0, 0, 40, 40).bytes();
    const auto part = [&](std::size_t begin, std::size_t end) {
        Bytes body =
            words({15, static_cast<int>(34 + end - begin), 0x4D57, 0x4346, 1, 0, 0, 1, 0, 0, 0});
        for (const std::size_t value :
             {std::size_t{2}, end - begin, emf.size() - end, emf.size()}) {
            put32(body, static_cast<std::uint32_t>(value));
        }
        return joined(body, Bytes(emf.begin() + static_cast<std::ptrdiff_t>(begin),
                                  emf.begin() + static_cast<std::ptrdiff_t>(end)));
    };
    WmfFile whole = filled(255, 0);
    whole.addBytes(0x0626, part(0, 80)).addBytes(0x0626, part(80, emf.size()));
    EXPECT_EQ(drawn(whole.add(0x041B, {40, 40, 0, 0})).pixel(20, 20), kBlue);
    WmfFile half = filled(255, 0);
    half.addBytes(0x0626, part(0, 80));
    EXPECT_EQ(drawn(half.add(0x041B, {40, 40, 0, 0})).pixel(20, 20), kRed);
}

TEST(MetafileFiles, AreMeasuredFromTheirHeaders) {
    const std::vector<Bytes> all = imaging::testing::oneOfEachKind();
    const imaging::PictureFacts wmf = measure(all[7]);
    EXPECT_EQ(wmf.kind, imaging::PictureKind::Wmf);
    EXPECT_DOUBLE_EQ(wmf.twips.width, 100 * 1440.0 / 96);
    EXPECT_DOUBLE_EQ(wmf.twips.height, 50 * 1440.0 / 96);
    const imaging::PictureFacts emf = measure(all[8]);
    EXPECT_EQ(emf.kind, imaging::PictureKind::Emf);
    EXPECT_DOUBLE_EQ(emf.twips.width, 1440);
    EXPECT_DOUBLE_EQ(emf.twips.height, 720);

    Bytes plain;
    for (const unsigned value : {1U, 9U, 0x300U, 17U, 0U, 0U, 5U, 0U, 0U}) {
        put16(plain, value);
    }
    for (const unsigned value : {5U, 0U, 0x020CU, 40U, 60U, 3U, 0U, 0U}) {
        put16(plain, value);
    }
    EXPECT_DOUBLE_EQ(measure(plain).twips.width, 60 * 15);
    EXPECT_DOUBLE_EQ(measure(plain).twips.height, 40 * 15);
    Bytes noExtent(plain.begin(), plain.begin() + 18);
    EXPECT_GT(measure(noExtent).twips.width, 0);
    Bytes emptyFrame = all[8];
    set32(emptyFrame, 32, 0);
    EXPECT_GT(measure(emptyFrame).twips.width, 0);
}

} // namespace
} // namespace metafile::testing
