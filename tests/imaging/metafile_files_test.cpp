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

// A polygon or polyline whose edges all cross each other and the whole 200 x 200 device.
std::vector<std::int32_t> crossing(int points) {
    std::mt19937 random(7);
    std::vector<std::int32_t> words{0, 0, 199, 199, points};
    for (int i = 0; i < 2 * points; ++i)
        words.push_back(static_cast<std::int32_t>(random() % 200));
    return words;
}

TEST(HostileMetafiles, OneRecordThatWouldTakeMinutesEndsThePicture) {
    EmfFile fill(200, 200);
    fill.stock(8).brush(1, colour(255, 0, 0)).add(3, crossing(30000));
    EXPECT_EQ(completeness(fill.bytes()), Completeness::Part);
    EmfFile stroke(200, 200);
    stroke.add(95, {1, 0, 0, 0, 0, 0x10000, 60, 0, 255, 0, 0}).add(37, {1}).add(4, crossing(30000));
    EXPECT_EQ(completeness(stroke.bytes()), Completeness::Part);
    EmfFile clip(200, 200);
    clip.add(59).add(3, crossing(30000)).add(60).add(67, {5}).add(42, {0, 0, 200, 200});
    EXPECT_EQ(completeness(clip.bytes()), Completeness::Part);
    // The same shapes with a sensible number of edges are whole.
    EmfFile honest(200, 200);
    honest.brush(1, colour(255, 0, 0)).add(3, crossing(300));
    EXPECT_EQ(completeness(honest.bytes()), Completeness::Whole);
}

// Region data: its header, then rectangles.
Bytes regionData(const std::vector<QRect>& rectangles) {
    Bytes bytes;
    for (const std::size_t word : {std::size_t{32}, std::size_t{1}, rectangles.size(),
                                   16 * rectangles.size(), std::size_t{0}, std::size_t{0}})
        put32(bytes, static_cast<std::uint32_t>(word));
    put32(bytes, 2000);
    put32(bytes, 2000);
    for (const QRect& rectangle : rectangles) {
        for (const int edge :
             {rectangle.left(), rectangle.top(), rectangle.left() + rectangle.width(),
              rectangle.top() + rectangle.height()})
            put32(bytes, static_cast<std::uint32_t>(edge));
    }
    return bytes;
}

Bytes headed(std::initializer_list<std::size_t> words, const Bytes& data) {
    Bytes bytes;
    for (const std::size_t word : words)
        put32(bytes, static_cast<std::uint32_t>(word));
    return joined(bytes, data);
}

TEST(HostileMetafiles, StripesThatCrossIntoMillionsOfRectanglesEndThePicture) {
    std::vector<QRect> stripes;
    for (int i = 0; i < 1000; ++i) {
        stripes.emplace_back(0, 2 * i, 2000, 1);
        stripes.emplace_back(2 * i, 0, 1, 2000);
    }
    const Bytes region = regionData(stripes);
    EmfFile file(2000, 2000); // a frame around each hole
    file.addBytes(72, headed({0, 0, 2000, 2000, region.size(), 0x80000004, 1, 1}, region));
    EXPECT_EQ(metafile::draw(file.bytes(), {2000, 2000}).completeness, Completeness::Part);
    // A thousand states that each keep such a clip would take gigabytes.
    EmfFile states(2000, 2000);
    for (int i = 0; i < 12; ++i)
        states.addBytes(75, headed({region.size(), 5}, region)).add(33);
    EXPECT_EQ(metafile::draw(states.bytes(), {2000, 2000}).completeness, Completeness::Part);
}

TEST(HostileMetafiles, ShapesAsLargeAsTheWorldLookRightOnTheSheet) {
    EmfFile fill(40, 40); // below the diagonal; its corners are far outside
    fill.stock(8).brush(1, colour(255, 0, 0));
    fill.add(3, {0, 0, -1, -1, 3, -50000, -50000, 50000, 50000, -50000, 50000});
    EXPECT_EQ(fill.drawn().pixel(10, 30), kRed);
    EXPECT_EQ(fill.drawn().pixel(30, 10), kWhite);
    EmfFile ring(40, 40); // a hole in it stays one
    ring.stock(8).brush(1, colour(255, 0, 0)).add(19, {1});
    ring.add(8, {0,     0,     -1,     -1,    2,  8,  4,  4,  -50000, -40000, 50000, -50000,
                 50000, 50000, -50000, 40000, 10, 10, 30, 10, 30,     30,     10,    30});
    EXPECT_EQ(ring.drawn().pixel(20, 20), kWhite);
    EXPECT_EQ(ring.drawn().pixel(5, 20), kRed);
    EXPECT_EQ(ring.drawn().pixel(35, 38), kRed);
    EmfFile line(40, 40); // along the diagonal, there and back by a far corner
    line.add(95, {1, 0, 0, 0, 0, 0x10000, 8, 0, 255, 0, 0}).add(37, {1});
    line.add(4, {0, 0, -1, -1, 3, -50000, -50000, 50000, 50000, 50000, -50000});
    EXPECT_EQ(line.drawn().pixel(20, 20), kRed);
    EXPECT_EQ(line.drawn().pixel(39, 38), kRed);
    EXPECT_EQ(line.drawn().pixel(35, 10), kWhite);
    EmfFile closed(40, 40); // a figure that is left whole beside one that is cut keeps all sides
    closed.stock(5).add(95, {1, 0, 0, 0, 0, 0x10000, 4, 0, 255, 0, 0}).add(37, {1});
    closed.add(8, {0, 0, -1, -1, 2, 6, 3, 3, 5, 5, 35, 5, 5, 35, 100, 100, 50000, 100, 100, 50000});
    EXPECT_EQ(closed.drawn().pixel(20, 5), kRed);
    EXPECT_EQ(closed.drawn().pixel(5, 20), kRed);
    EXPECT_EQ(closed.drawn().pixel(20, 20), kRed);
    EXPECT_EQ(closed.drawn().pixel(30, 30), kWhite);
}

TEST(HostileMetafiles, ManyClipPathsLargerThanTheSheetLetItsInsideThrough) {
    // Their pixels were made for all of them, not for the sheet alone: gigabytes, or none.
    EmfFile file(40, 40);
    file.stock(8).brush(1, colour(255, 0, 0));
    for (int i = 0; i < 6; ++i)
        file.add(59).add(3, {0, 0, -1, -1, 3, -30000, -30000, 30000, 30000, -30000, 30000});
    file.add(60);
    for (int i = 0; i < 6; ++i) {
        file.add(59).add(3, {0, 0, -1, -1, 3, -30000, -30000, 30000 + i, 30000, -30000, 30000});
        file.add(60).add(67, {1});
    }
    const QImage image = file.rectangle(0, 0, 40, 40).drawn();
    EXPECT_EQ(image.pixel(10, 30), kRed);
    EXPECT_EQ(image.pixel(30, 10), kWhite);
}

// A picture of 6000 x 2500 pixels whose first colour is this.
Bytes largeHeader(unsigned bits, unsigned compression, QRgb colour) {
    Bytes header;
    for (const std::uint32_t word : {40U, 6000U, 2500U})
        put32(header, word);
    put16(header, 1);
    put16(header, bits);
    for (const std::uint32_t word : {compression, 0U, 0U, 0U, 1U, 0U})
        put32(header, word);
    put32(header, colour & 0xFFFFFFU);
    return header;
}

TEST(HostileMetafiles, PatternsTogetherAreBounded) {
    const auto pattern = [](EmfFile& file, std::size_t handle, QRgb colour) {
        const Bytes header = largeHeader(1, 0, colour);
        const Bytes pixels(std::size_t{752} * 2500);
        file.addBytes(94, headed({handle, 0, 32, header.size(), 32 + header.size(), pixels.size()},
                                 joined(header, pixels)));
        file.add(37, {static_cast<std::int32_t>(handle)});
    };
    EmfFile file(40, 40);
    file.stock(8);
    pattern(file, 1, kRed);
    file.rectangle(0, 0, 10, 40);
    pattern(file, 2, kBlue); // two are too many pixels
    file.rectangle(10, 0, 20, 40);
    // With the first one deleted, and no more in the painter's hand, there is room again.
    file.add(39, {9, 2, 0, 0}).add(37, {9}).rectangle(30, 0, 40, 40).add(40, {1});
    pattern(file, 3, kBlue);
    file.rectangle(20, 0, 30, 40);
    const QImage image = file.drawn();
    EXPECT_EQ(image.pixel(5, 20), kRed);
    EXPECT_EQ(image.pixel(15, 20), kWhite);
    EXPECT_EQ(image.pixel(25, 20), kBlue);
}

TEST(HostileMetafiles, PicturesOutsideTheSheetAreWorkToo) {
    // A hundred bytes each: run lengths that end at once.
    const Bytes header = largeHeader(8, 1, kRed);
    const Bytes picture = joined(header, {std::byte{0}, std::byte{1}, std::byte{0}, std::byte{0}});
    EmfFile file(40, 40);
    for (int i = 0; i < 150; ++i) {
        const std::size_t size = header.size();
        file.addBytes(81, headed({0, 0, 40, 40, 500, 500, 0, 0, 6000, 2500, 80, size, 80 + size, 2,
                                  0, 0x00CC0020, 10, 10},
                                 picture));
    }
    EXPECT_EQ(completeness(file.bytes()), Completeness::Part);
}

TEST(HostileMetafiles, AFloodFindsItsWayAroundWalls) {
    EmfFile file(40, 40); // walls from the top and from the bottom in turn, and a closed chamber
    file.stock(8).brush(1, colour(0, 0, 0));
    for (int x = 5; x < 35; x += 10)
        file.rectangle(x, 0, x + 2, 35).rectangle(x + 5, 5, x + 7, 40);
    file.rectangle(36, 10, 40, 11).rectangle(36, 20, 40, 21).rectangle(36, 10, 37, 21);
    file.brush(2, colour(255, 0, 0)).add(53, {0, 0, 0xFFFFFF, 1});
    const QImage image = file.drawn();
    for (const int x : {1, 8, 13, 18, 23, 28, 33, 38})
        EXPECT_EQ(image.pixel(x, 38 - (x % 10 > 5 ? 0 : 36)), kRed) << x;
    EXPECT_EQ(image.pixel(38, 30), kRed);
    EXPECT_EQ(image.pixel(38, 15), kWhite);
    EXPECT_EQ(image.pixel(5, 10), kBlack);
}

TEST(HostileMetafiles, UnreadableMetafilesInsideDoNotEndThePicture) {
    // An image object of ten bytes of a metafile, drawn five times, then a red sheet.
    Bytes plus;
    const auto record = [&](std::size_t typeAndFlags, const Bytes& data) {
        plus = joined(plus, headed({typeAndFlags, 12 + data.size(), data.size()}, data));
    };
    record(0x00004001, headed({0xDBC01002, 0, 96, 96}, {}));
    record(0x05004008, headed({0xDBC01002, 2, 3, 12, 1, 1, 1}, {}));
    for (int i = 0; i < 5; ++i)
        record(0x0000401A,
               headed({0, 2, 0, 0, 0x41200000, 0x41200000, 0, 0, 0x41200000, 0x41200000}, {}));
    record(0x00004009, headed({0xFFFF0000}, {}));
    EmfFile file(40, 40);
    file.addBytes(70, headed({plus.size() + 4, 0x2B464D45}, plus));
    EXPECT_EQ(completeness(file.bytes()), Completeness::Whole);
    EXPECT_EQ(file.drawn().pixel(20, 20), kRed);
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
