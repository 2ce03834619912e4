// Windows metafiles, and files of both kinds that lie, are cut short or ask for too much.
#include "imaging/metafile/metafile.h"
#include "imaging/metafile_bytes.h"
#include "imaging/picture.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>

namespace imaging::testing {
namespace {

using metafile::Completeness;

constexpr QRgb kWhite = qRgb(255, 255, 255);
constexpr QRgb kBlack = qRgb(0, 0, 0);
constexpr QRgb kRed = qRgb(255, 0, 0);
constexpr QRgb kBlue = qRgb(0, 0, 255);

Bytes words(std::initializer_list<int> values) {
    Bytes bytes;
    for (const int value : values)
        put16(bytes, static_cast<unsigned>(value) & 0xFFFFU);
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
    const PictureFacts placeable = measure(file.placeable(0, 0, 2880, 1440, 1440));
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
        for (const std::size_t value : {std::size_t{2}, end - begin, emf.size() - end, emf.size()})
            put32(body, static_cast<std::uint32_t>(value));
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

// ---- Files that lie

Completeness completeness(const Bytes& bytes) {
    return metafile::draw(bytes, {200, 200}).completeness;
}

TEST(HostileMetafiles, WhatIsCutShortOrUnreadableIsDrawnAsFarAsItGoes) {
    EmfFile file(40, 40);
    file.stock(8).brush(1, colour(255, 0, 0)).rectangle(0, 0, 40, 40);
    const Bytes sound = file.bytes();
    EXPECT_EQ(completeness(sound), Completeness::Whole);
    Bytes cut(sound.begin(), sound.end() - 20);
    EXPECT_EQ(completeness(cut), Completeness::Part);
    EXPECT_EQ(drawnMetafile(cut, {40, 40}).pixel(20, 20), kRed);
    // Counts beyond the record's end, a bitmap that is not there, an unknown type.
    file.add(3, {0, 0, -1, -1, 0x7FFFFFFF, 1, 1}).add(81, {0, 0, 0, 0, 0, 0, 0, 0, 1, 1, 9999, 40});
    file.add(4711, {1, 2, 3}).rectangle(0, 0, 40, 40);
    EXPECT_EQ(drawnMetafile(file.bytes(), {40, 40}).pixel(20, 20), kRed);
    EXPECT_THROW(metafile::draw(Bytes(sound.begin(), sound.begin() + 60), {40, 40}), DecodeError);
    EXPECT_THROW(metafile::draw(sound, {100000, 100000}), DecodeError);
}

TEST(HostileMetafiles, EndlessWorkEnds) {
    EmfFile fills(40, 40);
    fills.stock(8).brush(1, colour(255, 0, 0)).add(20, {7});
    for (int i = 0; i < 200000; ++i)
        fills.add(42, {0, 0, 40, 40});
    EXPECT_EQ(completeness(fills.bytes()), Completeness::Part);
    EmfFile blits(40, 40);
    for (int i = 0; i < 20000; ++i)
        blits.add(
            76, {0, 0, -1, -1, 0, 0, 40, 40, 0x005A0049, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
    EXPECT_EQ(completeness(blits.bytes()), Completeness::Part);
    EmfFile dashes(40, 40); // dashes of a thousandth of the sheet on a line around the world
    dashes.add(95, {1, 0, 0, 0, 0, 0x10007, 1, 0, 0, 0, 2, 1, 1}).add(37, {1});
    for (int i = 0; i < 3000; ++i)
        dashes.add(27, {-2000000000, i}).add(54, {2000000000, i});
    EXPECT_NO_THROW(completeness(dashes.bytes()));
}

TEST(HostileMetafiles, StatesObjectsAndNumbersAreBounded) {
    EmfFile file(40, 40);
    for (int i = 0; i < 50000; ++i)
        file.add(33);
    file.add(34, {-100}).add(34, {2000000000}).add(39, {-5, 0, 255, 0}).add(37, {-7});
    Bytes wild;
    for (const std::uint32_t word : {0x7F800000U, 0U, 0U, 0x7FC00000U, 0xFF800000U, 0U})
        put32(wild, word);
    file.addBytes(35, wild).add(9, {1, 1}).add(11, {2147483647, -2147483647}).add(17, {8});
    file.rectangle(-2147483647, -2147483647, 2147483647, 2147483647);
    for (int i = 0; i < 64; ++i)
        file.add(31, {2000000000, 1, 2000000000, 1});
    file.add(2, {0, 0, -1, -1, 4, 0, 0, 2147483647, 5, -2147483647, 7, 9, 9});
    EXPECT_EQ(completeness(file.bytes()), Completeness::Whole);
}

TEST(HostileMetafiles, FlippedBitsNeverCrash) {
    EmfFile emf(40, 40);
    emf.pen(1, 2, 3, 255)
        .brush(2, 255)
        .font(3, -12, 450, u"Symbol", 2)
        .text(1, 1, u"Text", {5, 5, 5, 5});
    emf.add(59)
        .add(42, {0, 0, 40, 40})
        .add(61)
        .add(60)
        .add(67, {1})
        .add(118, {0, 0, -1, -1, 2, 1, 0, 0, 0, 0, 0, 9, 9, 0, 0, 0, 1});
    emf.add(75, {48, 2, 32, 1, 1, 16, 0, 0, 9, 9, 0, 0, 9, 9}).rectangle(0, 0, 9, 9);
    emf.add(56, {0, 0, -1, -1, 3, 1, 1, 2, 2, 3, 3, 0x00020206}).add(45, {0, 0, 9, 9, 0, 0, 9, 0});
    WmfFile wmf = filled(255, 0);
    wmf.add(0x0538, {2, 3, 3, 30, 0, 40, 0, 40, 10, 30, 30, 40, 30, 40, 40});
    wmf.add(0x0A32, {1, 1, 2, 2, 0, 0, 9, 9, 0x4142, 5, 5}).add(0x0419, {0, 0, 20, 20});
    wmf.add(0x06FF, {0, 6, 0, 0, 0, 1, 2, 5, 5, 25, 15, 2, 5, 15, 5, 25, 2}).add(0x0228, {2, 1});
    std::mt19937 random(20);
    for (const Bytes& sound : {emf.bytes(), wmf.plain(), wmf.placeable(0, 0, 40, 40, 96)}) {
        for (int round = 0; round < 1500; ++round) {
            Bytes bytes = sound;
            for (int flips = 0; flips < 4; ++flips)
                bytes[random() % bytes.size()] = static_cast<std::byte>(random());
            try {
                metafile::draw(bytes, {32, 32});
            } catch (const DecodeError& error) {
                EXPECT_STRNE(error.what(), "");
            }
        }
    }
}

} // namespace
} // namespace imaging::testing
