// Metafiles that lie, are cut short or ask for too much.
#include "imaging/byte_reader.h"
#include "metafile/metafile.h"
#include "metafile/plus_bytes.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <random>

namespace metafile::testing {
namespace {

using metafile::Completeness;

constexpr QRgb kWhite = qRgb(255, 255, 255);
constexpr QRgb kBlack = qRgb(0, 0, 0);
constexpr QRgb kRed = qRgb(255, 0, 0);
constexpr QRgb kBlue = qRgb(0, 0, 255);

Completeness completeness(const Bytes& bytes) {
    return draw(bytes, {200, 200}, stoppedClock).completeness;
}

// The same for drawings that end in either way, counted or by the clock: which one is first must
// not matter.
Completeness endedSomehow(const Bytes& bytes) {
    return draw(bytes, {200, 200}).completeness;
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
    file.add(4711, {1, 2, 3}).brush(2, colour(0, 0, 255)).rectangle(0, 0, 40, 40);
    EXPECT_EQ(drawnMetafile(file.bytes(), {40, 40}).pixel(20, 20), kBlue);
    EXPECT_THROW(draw(Bytes(sound.begin(), sound.begin() + 60), {40, 40}), imaging::DecodeError);
    EXPECT_THROW(draw(sound, {100000, 100000}), imaging::DecodeError);
}

TEST(HostileMetafiles, EndlessWorkEnds) {
    EmfFile fills(40, 40);
    fills.stock(8).brush(1, colour(255, 0, 0)).add(20, {7});
    for (int i = 0; i < 200000; ++i) {
        fills.add(42, {0, 0, 40, 40});
    }
    EXPECT_EQ(endedSomehow(fills.bytes()), Completeness::Part);
    EmfFile blits(40, 40);
    for (int i = 0; i < 20000; ++i) {
        blits.add(
            76, {0, 0, -1, -1, 0, 0, 40, 40, 0x005A0049, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
    }
    EXPECT_EQ(endedSomehow(blits.bytes()), Completeness::Part);
    EmfFile dashes(40, 40); // dashes of a thousandth of the sheet on a line around the world
    dashes.add(95, {1, 0, 0, 0, 0, 0x10007, 1, 0, 0, 0, 2, 1, 1}).add(37, {1});
    for (int i = 0; i < 3000; ++i) {
        dashes.add(27, {-2000000000, i}).add(54, {2000000000, i});
    }
    EXPECT_NO_THROW(endedSomehow(dashes.bytes()));
}

// What a step takes is an estimate; a drawing whose steps take far longer ends too.
TEST(HostileMetafiles, ADrawingThatTakesTooLongEnds) {
    EmfFile file(40, 40);
    for (int i = 0; i < 100; ++i) {
        file.text(1, 1, u"Text", {5, 5, 5, 5}).font(1, -12, i, u"Arial");
    }
    EXPECT_EQ(completeness(file.bytes()), Completeness::Whole);
    const auto slowClock = [] {
        static double now = 0;
        return now += 0.1;
    };
    EXPECT_EQ(draw(file.bytes(), {40, 40}, slowClock).completeness, Completeness::Part);
}

TEST(HostileMetafiles, StatesObjectsAndNumbersAreBounded) {
    EmfFile file(40, 40);
    for (int i = 0; i < 50000; ++i) {
        file.add(33);
    }
    file.add(34, {-100}).add(34, {2000000000}).add(39, {-5, 0, 255, 0}).add(37, {-7});
    Bytes wild;
    for (const std::uint32_t word : {0x7F800000U, 0U, 0U, 0x7FC00000U, 0xFF800000U, 0U}) {
        put32(wild, word);
    }
    file.addBytes(35, wild).add(9, {1, 1}).add(11, {2147483647, -2147483647}).add(17, {8});
    file.rectangle(-2147483647, -2147483647, 2147483647, 2147483647);
    for (int i = 0; i < 64; ++i) {
        file.add(31, {2000000000, 1, 2000000000, 1});
    }
    file.add(2, {0, 0, -1, -1, 4, 0, 0, 2147483647, 5, -2147483647, 7, 9, 9});
    EXPECT_EQ(completeness(file.bytes()), Completeness::Whole);
}

// A polygon or polyline whose edges all cross each other and the whole 200 x 200 device.
std::vector<std::int32_t> crossing(int points) {
    std::mt19937 random(7);
    std::vector<std::int32_t> words{0, 0, 199, 199, points};
    for (int i = 0; i < 2 * points; ++i) {
        words.push_back(static_cast<std::int32_t>(random() % 200));
    }
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
    // And so is a measured curve: many steps, but where the others are already.
    EmfFile curve(200, 200);
    std::vector<std::int32_t> steps{0, 0, 199, 199, 100000};
    for (int i = 0; i < 100000; ++i) {
        steps.push_back(i / 500);
        steps.push_back(100 + static_cast<int>(std::lround(50 * std::sin(i / 5000.0))) + i % 3);
    }
    curve.add(95, {1, 0, 0, 0, 0, 0x10000, 3, 0, 255, 0, 0}).add(37, {1}).add(4, steps);
    EXPECT_EQ(completeness(curve.bytes()), Completeness::Whole);
}

// Points all over the 200 x 200 device.
Data scattered(int points) {
    std::mt19937 random(11);
    Data data = Data().word(static_cast<std::uint32_t>(points));
    for (int i = 0; i < 2 * points; ++i) {
        data.reals({static_cast<float>(random() % 200)});
    }
    return data;
}

Completeness completeness(const PlusFile& records) {
    EmfFile file(200, 200);
    return completeness(records.into(file).bytes());
}

TEST(HostileMetafiles, PensOfTheOtherHalfAreWorkToo) {
    constexpr std::uint32_t kRoundEndsAndJoins = 2 | 4 | 8;
    const auto stroked = [](float width, int points, float unevenness) {
        Data options = Data().words({2, 2, 2});
        PlusFile file;
        file.object(2, 1, penWith(kRoundEndsAndJoins, width, 0xFF000000, options));
        file.add(0x402E, 0, Data().reals({1, unevenness})); // an elliptical nib
        return completeness(file.add(0x400D, 1, scattered(points)));
    };
    EXPECT_EQ(stroked(9000, 20000, 1), Completeness::Part);
    EXPECT_EQ(stroked(60, 20000, 3), Completeness::Part);
    EXPECT_EQ(stroked(60, 30, 1), Completeness::Whole);
    EXPECT_EQ(stroked(60, 30, 3), Completeness::Whole);
}

TEST(HostileMetafiles, EveryNewClipIsWork) {
    const auto clipped = [](int points, int times) {
        Data path = Data().word(kVersion).append(scattered(points).bytes);
        path.bytes.insert(path.bytes.begin() + 8, 4, std::byte{0}); // flags
        putBytes(path.bytes, {0});
        path.bytes.insert(path.bytes.end(), static_cast<std::size_t>(points - 1), std::byte{1});
        PlusFile file;
        file.object(3, 1, path);
        for (int i = 0; i < times; ++i) {
            file.add(0x4033, 1).fill({0, 0, 200, 200}, 0xFFFF0000);
        }
        return completeness(file);
    };
    EXPECT_EQ(clipped(20000, 1), Completeness::Part);
    EXPECT_EQ(clipped(300, 2000), Completeness::Part);
    EXPECT_EQ(clipped(300, 3), Completeness::Whole);
}

// Region data: its header, then rectangles.
Bytes regionData(const std::vector<QRect>& rectangles) {
    Bytes bytes;
    for (const std::size_t word : {std::size_t{32}, std::size_t{1}, rectangles.size(),
                                   16 * rectangles.size(), std::size_t{0}, std::size_t{0}}) {
        put32(bytes, static_cast<std::uint32_t>(word));
    }
    put32(bytes, 2000);
    put32(bytes, 2000);
    for (const QRect& rectangle : rectangles) {
        for (const int edge :
             {rectangle.left(), rectangle.top(), rectangle.left() + rectangle.width(),
              rectangle.top() + rectangle.height()}) {
            put32(bytes, static_cast<std::uint32_t>(edge));
        }
    }
    return bytes;
}

Bytes headed(std::initializer_list<std::size_t> words, const Bytes& data) {
    Bytes bytes;
    for (const std::size_t word : words) {
        put32(bytes, static_cast<std::uint32_t>(word));
    }
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
    EXPECT_EQ(draw(file.bytes(), {2000, 2000}, stoppedClock).completeness, Completeness::Part);
    // A thousand states that each keep such a clip would take gigabytes.
    EmfFile states(2000, 2000);
    for (int i = 0; i < 12; ++i) {
        states.addBytes(75, headed({region.size(), 5}, region)).add(33);
    }
    EXPECT_EQ(draw(states.bytes(), {2000, 2000}, stoppedClock).completeness, Completeness::Part);
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
    EmfFile corner(40, 40); // where a cut figure begins and ends its sides are joined
    corner.stock(5).add(95, {1, 0, 0, 0, 0, 0x12200, 16, 0, 255, 0, 0}).add(37, {1});
    corner.add(3, {0, 0, -1, -1, 3, 20, 20, 50000, 20, 20, 50000});
    EXPECT_EQ(corner.drawn().pixel(14, 14), kRed);
}

TEST(HostileMetafiles, ManyClipPathsLargerThanTheSheetLetItsInsideThrough) {
    // Their pixels were made for all of them, not for the sheet alone: gigabytes, or none.
    EmfFile file(40, 40);
    file.stock(8).brush(1, colour(255, 0, 0));
    for (int i = 0; i < 6; ++i) {
        file.add(59).add(3, {0, 0, -1, -1, 3, -30000, -30000, 30000, 30000, -30000, 30000});
    }
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
    for (const std::uint32_t word : {40U, 6000U, 2500U}) {
        put32(header, word);
    }
    put16(header, 1);
    put16(header, bits);
    for (const std::uint32_t word : {compression, 0U, 0U, 0U, 1U, 0U}) {
        put32(header, word);
    }
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

TEST(HostileMetafiles, PicturesOfObjectsTogetherAreBounded) {
    const auto picture = [](Qt::GlobalColor colour) {
        QImage image(4000, 2500, QImage::Format_Mono);
        image.setColorTable({QColor(colour).rgb(), kBlack});
        image.fill(0);
        Data data = Data().word(kVersion).words({1, 0, 0, 0, 0, 1});
        return data.append(encoded(image, "PNG"));
    };
    const auto at = [](float left) {
        return Data().word(0).word(2).reals({0, 0, 4000, 2500, left, 0, 10, 40});
    };
    Data texture = Data().word(kVersion).words({2, 0, 0}).append(picture(Qt::red).bytes);
    PlusFile file;
    file.object(1, 1, texture).fillWith(1, {0, 0, 10, 40});
    file.object(5, 2, picture(Qt::blue)).add(0x401A, 2, at(10)); // two are too many pixels
    file.object(1, 1, solidBrush(0xFF000000))
        .object(5, 2, picture(Qt::blue))
        .add(0x401A, 2, at(20));
    const QImage image = file.drawn();
    EXPECT_EQ(image.pixel(5, 20), kRed);
    EXPECT_EQ(image.pixel(15, 20), kWhite);
    EXPECT_EQ(image.pixel(25, 20), kBlue);
    EXPECT_EQ(completeness(file), Completeness::Part);
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
    EXPECT_EQ(endedSomehow(file.bytes()), Completeness::Part);
}

TEST(HostileMetafiles, AFloodFindsItsWayAroundWalls) {
    EmfFile file(40, 40); // walls from the top and from the bottom in turn, and a closed chamber
    file.stock(8).brush(1, colour(0, 0, 0));
    for (int x = 5; x < 35; x += 10) {
        file.rectangle(x, 0, x + 2, 35).rectangle(x + 5, 5, x + 7, 40);
    }
    file.rectangle(36, 10, 40, 11).rectangle(36, 20, 40, 21).rectangle(36, 10, 37, 21);
    file.brush(2, colour(255, 0, 0)).add(53, {0, 0, 0xFFFFFF, 1});
    const QImage image = file.drawn();
    for (const int x : {1, 8, 13, 18, 23, 28, 33, 38}) {
        EXPECT_EQ(image.pixel(x, 38 - (x % 10 > 5 ? 0 : 36)), kRed) << x;
    }
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
    for (int i = 0; i < 5; ++i) {
        record(0x0000401A,
               headed({0, 2, 0, 0, 0x41200000, 0x41200000, 0, 0, 0x41200000, 0x41200000}, {}));
    }
    record(0x00004009, headed({0xFFFF0000}, {}));
    EmfFile file(40, 40);
    file.addBytes(70, headed({plus.size() + 4, 0x2B464D45}, plus));
    EXPECT_EQ(completeness(file.bytes()), Completeness::Whole);
    EXPECT_EQ(file.drawn().pixel(20, 20), kRed);
}

TEST(HostileMetafiles, RandomBytesNeverCrash) {
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
    WmfFile wmf;
    wmf.window(0, 0, 40, 40).add(0x02FC, {0, 255, 0, 0}).add(0x012D, {0});
    wmf.add(0x0538, {2, 3, 3, 30, 0, 40, 0, 40, 10, 30, 30, 40, 30, 40, 40});
    wmf.add(0x0A32, {1, 1, 2, 2, 0, 0, 9, 9, 0x4142, 5, 5}).add(0x0419, {0, 0, 20, 20});
    wmf.add(0x06FF, {0, 6, 0, 0, 0, 1, 2, 5, 5, 25, 15, 2, 5, 15, 5, 25, 2}).add(0x0228, {2, 1});
    std::mt19937 random(20);
    for (const Bytes& sound : {emf.bytes(), wmf.plain(), wmf.placeable(0, 0, 40, 40, 96)}) {
        EXPECT_NO_THROW(drawWithRandomBytes(sound, 0, random));
    }
}

} // namespace
} // namespace metafile::testing
