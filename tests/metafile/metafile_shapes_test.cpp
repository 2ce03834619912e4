// Lines, shapes, state, clips and paths of metafiles: which pixels get which colour.
#include "metafile/metafile_bytes.h"

#include <bit>
#include <gtest/gtest.h>
#include <optional>

namespace metafile::testing {
namespace {

constexpr QRgb kWhite = qRgb(255, 255, 255);
constexpr QRgb kBlack = qRgb(0, 0, 0);
constexpr QRgb kRed = qRgb(255, 0, 0);
constexpr QRgb kBlue = qRgb(0, 0, 255);
constexpr std::uint32_t kFileRed = colour(255, 0, 0);
constexpr std::uint32_t kFileBlue = colour(0, 0, 255);
constexpr int kNullBrush = 5;
constexpr int kNullPen = 8;

// A sheet with a brush and no pen.
EmfFile filled(std::uint32_t brush) {
    EmfFile file(40, 40);
    file.stock(kNullPen).brush(1, brush);
    return file;
}

TEST(MetafileShapes, TheFrameAndNotTheBoundsIsShown) {
    EmfFile file = filled(kFileRed);
    Bytes bytes = file.rectangle(20, 20, 40, 40).bytes();
    set32(bytes, 8, 20); // bounds: the drawn part alone
    set32(bytes, 12, 20);
    const QImage image = drawnMetafile(bytes, {40, 40});
    EXPECT_EQ(image.pixel(5, 5), kWhite);
    EXPECT_EQ(image.pixel(30, 30), kRed);
}

// A picture far from the device's corner lay beside its frame when the exact size counted.
TEST(MetafileShapes, TheFrameIsMeasuredInWholeMillimetres) {
    const Bytes bytes = filled(kFileRed).rectangle(0, 0, 20, 20).bytes();
    Bytes header(bytes.begin(), bytes.begin() + 88);
    for (const std::uint32_t word : {0U, 0U, 0U, 950000U, 7929939U}) {
        put32(header, word);
    }
    set32(header, 4, 108);
    const Bytes longer = joined(header, Bytes(bytes.begin() + 88, bytes.end()));
    EXPECT_EQ(inkOf(drawnMetafile(longer, {400, 400})), QRect(0, 0, 200, 200));
}

TEST(MetafileShapes, ThinLinesStayOnePixelWideAtEverySizeAndWideOnesGrow) {
    EmfFile file(40, 40);
    for (const int width : {0, 1}) {
        file.pen(1 + width, 0, width, 0)
            .add(27, {5, 10 + 10 * width})
            .add(54, {35, 10 + 10 * width});
    }
    file.pen(3, 0, 4, 0).add(27, {5, 30}).add(54, {35, 30});
    const QImage image = file.drawn(5);
    const auto thickness = [&](int from, int to) {
        int count = 0;
        for (int y = from; y < to; ++y) {
            count += qGray(image.pixel(100, y)) < 128 ? 1 : 0;
        }
        return count;
    };
    EXPECT_EQ(thickness(40, 60), 1);
    EXPECT_EQ(thickness(90, 110), 1);
    EXPECT_EQ(thickness(130, 170), 20);
}

TEST(MetafileShapes, FillModesDifferWhereAFigureCrossesItself) {
    const std::vector<std::int32_t> star{0, 0, -1, -1, 5, 20, 2, 32, 38, 2, 14, 38, 14, 8, 38};
    const auto middle = [&](int mode) {
        return filled(kFileRed).add(19, {mode}).add(3, star).drawn().pixel(20, 20);
    };
    EXPECT_EQ(middle(1), kWhite);
    EXPECT_EQ(middle(2), kRed);
}

TEST(MetafileShapes, BoxesHaveTheirOutlines) {
    const auto shape = [](std::uint32_t type, const std::vector<std::int32_t>& words) {
        return filled(kFileRed).add(type, words).drawn();
    };
    const QImage ellipse = shape(42, {5, 5, 35, 35});
    EXPECT_EQ(ellipse.pixel(20, 20), kRed);
    EXPECT_EQ(ellipse.pixel(6, 6), kWhite);
    const QImage rounded = shape(44, {5, 5, 35, 35, 20, 20});
    EXPECT_EQ(rounded.pixel(6, 6), kWhite);
    EXPECT_EQ(rounded.pixel(15, 6), kRed);
    // From the right to the top against the clock: the upper right quarter.
    const QImage pie = shape(47, {5, 5, 35, 35, 40, 20, 20, 0});
    EXPECT_EQ(pie.pixel(26, 14), kRed);
    EXPECT_EQ(pie.pixel(14, 14), kWhite);
    const QImage chord = shape(46, {5, 5, 35, 35, 40, 20, 20, 0});
    EXPECT_EQ(chord.pixel(30, 12), kRed);
    EXPECT_EQ(chord.pixel(22, 18), kWhite);
    // With the clock: the other three quarters.
    const QImage other =
        filled(kFileRed).add(57, {2}).add(47, {5, 5, 35, 35, 40, 20, 20, 0}).drawn();
    EXPECT_EQ(other.pixel(26, 14), kWhite);
    EXPECT_EQ(other.pixel(14, 26), kRed);
}

TEST(MetafileShapes, PolygonsOfManyPartsAndSmallPointsAreRead) {
    // Two triangles of 16-bit points.
    Bytes body;
    for (const std::uint32_t word : {0U, 0U, 0U, 0U, 2U, 6U, 3U, 3U}) {
        put32(body, word);
    }
    for (const unsigned unit : {0U, 0U, 10U, 0U, 0U, 10U, 30U, 30U, 40U, 30U, 30U, 40U}) {
        put16(body, unit);
    }
    EmfFile file = filled(kFileBlue);
    const QImage image = file.addBytes(91, body).drawn();
    EXPECT_EQ(image.pixel(2, 2), kBlue);
    EXPECT_EQ(image.pixel(32, 32), kBlue);
    EXPECT_EQ(image.pixel(20, 20), kWhite);
}

TEST(MetafileShapes, WindowAndViewportAreComposedWhenSomethingIsDrawn) {
    // The viewport comes first; alone it would be meaningless.
    EmfFile file = filled(kFileRed);
    file.add(17, {8}).add(11, {40, 40}).add(9, {80, -80}).add(10, {0, 80}).rectangle(0, 0, 40, 40);
    const QImage image = file.drawn();
    EXPECT_EQ(inkOf(image), QRect(0, 20, 20, 20));
    // Isotropic: the shorter of both scales counts.
    EmfFile even = filled(kFileRed);
    even.add(17, {7}).add(9, {10, 10}).add(11, {40, 20}).rectangle(0, 0, 10, 10);
    EXPECT_EQ(inkOf(even.drawn()), QRect(0, 0, 20, 20));
    // Tenths of a millimetre, upwards.
    EmfFile metric = filled(kFileRed);
    metric.add(17, {2}).add(12, {0, 40}).rectangle(0, 0, 100, 200);
    EXPECT_EQ(inkOf(metric.drawn()), QRect(0, 20, 10, 20));
    EmfFile scaled = filled(kFileRed);
    scaled.add(17, {8}).add(9, {10, 10}).add(11, {40, 40}).add(32, {2, 1, 4, 1});
    EXPECT_EQ(inkOf(scaled.rectangle(0, 0, 10, 10).drawn()), QRect(0, 0, 20, 10));
}

EmfFile& world(EmfFile& file, std::uint32_t type, const std::vector<float>& matrix, int mode = 0) {
    Bytes body;
    for (const float value : matrix) {
        put32(body, std::bit_cast<std::uint32_t>(value));
    }
    if (type == 36) {
        put32(body, static_cast<std::uint32_t>(mode));
    }
    return file.addBytes(type, body);
}

TEST(MetafileShapes, StatesComeBackByTheirNumberOnce) {
    EmfFile file = filled(kFileRed);
    for (int i = 0; i < 2; ++i) {
        world(file.add(33), 36, {1, 0, 0, 1, 5, 0}, 2);
    }
    world(file.add(34, {1}), 36, {1, 0, 0, 1, 20, 0}, 2).add(34, {1}).rectangle(0, 0, 10, 10);
    EXPECT_EQ(inkOf(file.drawn()), QRect(20, 0, 10, 10));
}

TEST(MetafileShapes, WorldTransformsMultiplyInTheToldOrderAndStatesComeBack) {
    const auto ink = [](int mode) {
        EmfFile file = filled(kFileRed);
        file.add(33);
        world(file, 35, {1, 0, 0, 1, 10, 0});
        world(file, 36, {2, 0, 0, 2, 0, 0}, mode).rectangle(0, 0, 5, 5);
        file.add(34, {-1}).rectangle(0, 30, 10, 40);
        return file.drawn();
    };
    const QImage before = ink(2); // scaled first, moved then
    EXPECT_EQ(before.pixel(15, 5), kRed);
    EXPECT_EQ(before.pixel(25, 5), kWhite);
    EXPECT_EQ(before.pixel(5, 35), kRed);
    EXPECT_EQ(ink(3).pixel(25, 5), kRed);
}

TEST(MetafileShapes, ClipsCombine) {
    EmfFile file = filled(kFileRed);
    file.add(30, {10, 10, 30, 30}).add(29, {15, 15, 20, 20}).rectangle(0, 0, 40, 40);
    const QImage image = file.drawn();
    EXPECT_EQ(inkOf(image), QRect(10, 10, 20, 20));
    EXPECT_EQ(image.pixel(17, 17), kWhite);

    // Region data in device pixels, whatever the mapping; joined with what was there.
    EmfFile region = filled(kFileRed);
    region.add(17, {8}).add(9, {400, 400}).add(11, {40, 40}).add(30, {0, 0, 50, 50});
    region.add(75, {48, 2, 32, 1, 1, 16, 30, 30, 40, 40, 30, 30, 40, 40});
    const QImage joint = region.rectangle(0, 0, 400, 400).drawn();
    EXPECT_EQ(joint.pixel(2, 2), kRed);
    EXPECT_EQ(joint.pixel(35, 35), kRed);
    EXPECT_EQ(joint.pixel(20, 20), kWhite);

    // Many rectangles after a path and after no clip at all.
    EmfFile later(40, 40);
    later.stock(kNullPen).brush(1, kFileRed).add(33).add(59).add(42, {0, 0, 40, 40}).add(60);
    later.add(67, {5}).rectangle(0, 0, 5, 5).add(34, {-1}).add(42, {0, 0, 4, 4});
    later.add(29, {10, 10, 30, 30}).add(42, {0, 0, 40, 40});
    EXPECT_EQ(later.drawn().pixel(20, 20), kWhite);
    EXPECT_EQ(later.drawn().pixel(20, 5), kRed);

    // A frozen clip outlasts what replaces the ordinary one.
    EmfFile frozen = filled(kFileRed);
    frozen.add(30, {0, 0, 20, 40}).add(28).add(75, {0, 5});
    EXPECT_EQ(inkOf(frozen.rectangle(0, 0, 40, 40).drawn()), QRect(0, 0, 20, 40));
}

TEST(MetafileShapes, PathsBeginWhereThePenIsAndClipTheirInside) {
    // The corner that is told before the bracket belongs to the triangle.
    EmfFile file = filled(kFileRed);
    file.add(27, {0, 0}).add(59).add(54, {40, 0}).add(54, {0, 40}).add(61).add(60);
    file.add(62, {0, 0, -1, -1});
    EXPECT_EQ(file.drawn().pixel(5, 5), kRed);
    EXPECT_EQ(file.drawn().pixel(35, 35), kWhite);

    EmfFile clip = filled(kFileBlue);
    clip.add(59).add(42, {0, 0, 40, 40}).add(60).add(67, {5}).rectangle(0, 0, 40, 40);
    EXPECT_EQ(clip.drawn().pixel(20, 20), kBlue);
    EXPECT_EQ(clip.drawn().pixel(1, 1), kWhite);

    EmfFile aborted = filled(kFileBlue);
    aborted.add(59).add(42, {0, 0, 40, 40}).add(68).add(62, {0, 0, -1, -1});
    EXPECT_TRUE(inkOf(aborted.drawn()).isNull());
}

// A diamond cut its whole box out, and a path that never was hid all that followed.
TEST(MetafileShapes, ClipPathsAreWhatTheyAreAndNothingIsNoPath) {
    EmfFile diamond = filled(kFileRed);
    diamond.add(59).add(3, {0, 0, -1, -1, 4, 20, 0, 40, 20, 20, 40, 0, 20}).add(60).add(67, {1});
    const QImage image = diamond.rectangle(0, 0, 40, 40).drawn();
    EXPECT_EQ(image.pixel(20, 20), kRed);
    EXPECT_EQ(image.pixel(3, 3), kWhite);
    EmfFile none = filled(kFileRed);
    EXPECT_EQ(none.add(67, {5}).rectangle(0, 0, 40, 40).drawn().pixel(20, 20), kRed);
    // Six clip paths that reach far over the sheet took minutes, or let nothing through.
    EmfFile large = filled(kFileRed);
    for (int i = 0; i < 6; ++i) {
        large.add(59).add(42, {-500000, -500000, 500000, 500000}).add(60).add(67, {1});
    }
    EXPECT_EQ(large.rectangle(0, 0, 40, 40).drawn().pixel(20, 20), kRed);
}

TEST(MetafileShapes, OpenFiguresAreClosedWhereTheyAreFilledAndStroked) {
    EmfFile file(40, 40);
    file.stock(kNullBrush)
        .pen(1, 0, 4, 0)
        .add(59)
        .add(27, {5, 5})
        .add(54, {35, 5})
        .add(54, {35, 35});
    EXPECT_EQ(file.add(60).add(63, {0, 0, -1, -1}).drawn().pixel(20, 20), kBlack);
}

// Everything was drawn beside the frame, and nothing could be seen.
TEST(MetafileShapes, AFrameBesideThePictureIsMovedThere) {
    EmfFile file = filled(kFileRed);
    Bytes bytes = file.rectangle(100, 0, 120, 20).bytes();
    set32(bytes, 8, 100); // bounds: left and right
    set32(bytes, 16, 140);
    EXPECT_EQ(inkOf(drawnMetafile(bytes, {40, 40})), QRect(0, 0, 20, 20));
}

// Where the bounds fill the frame when they are mirrored, the device counts upwards.
TEST(MetafileShapes, AFrameThatMirroredBoundsFillMirrorsTheDevice) {
    EmfFile file = filled(kFileRed);
    file.rectangle(0, -40, 20, -20).font(2, -20, 0, u"Arial").text(22, -20, u"L", {10});
    Bytes bytes = file.bytes();
    set32(bytes, 12, static_cast<std::uint32_t>(-40)); // bounds: top and bottom
    set32(bytes, 20, 0);
    const QImage image = drawnMetafile(bytes, {40, 40});
    EXPECT_EQ(inkOf(image.copy(0, 0, 21, 40)), QRect(0, 20, 20, 20));
    // The letter stands upright: its foot is as broad as itself.
    const QRect letter = inkOf(image.copy(22, 0, 18, 40));
    ASSERT_GT(letter.height(), 8);
    const QImage top = image.copy(letter.translated(22, 0)).copy(0, 0, letter.width(), 3);
    EXPECT_LT(inkOf(top).width(), letter.width());
}

// A rectangle and the line along its edge were a pixel apart.
TEST(MetafileShapes, LinesAndEdgesTakeTheNearestPixel) {
    EmfFile file = filled(kFileRed);
    file.rectangle(18, 18, 40, 40).pen(2, 0, 0, kFileBlue);
    file.add(27, {18, 0}).add(54, {18, 40}).add(27, {0, 18}).add(54, {40, 18});
    const QImage image = file.drawn(0.7); // 18 is 12.6 there
    EXPECT_EQ(image.pixel(12, 20), kWhite);
    EXPECT_EQ(image.pixel(13, 20), kBlue);
    EXPECT_EQ(image.pixel(14, 20), kRed);
    EXPECT_EQ(image.pixel(20, 12), kWhite);
    EXPECT_EQ(image.pixel(20, 13), kBlue);
}

TEST(MetafileShapes, FiguresOfAPathThatGoOnFromTheCurrentPositionStayApart) {
    const auto path = [](const std::vector<std::int32_t>& first,
                         const std::vector<std::int32_t>& second, std::uint32_t type) {
        EmfFile file(40, 40);
        file.stock(kNullBrush).pen(1, 0, 2, 0).add(59);
        file.add(27, {5, 5}).add(type, first).add(27, {5, 35}).add(type, second);
        return file.add(60).add(64, {0, 0, -1, -1}).drawn();
    };
    const QImage lines = path({0, 0, -1, -1, 1, 35, 5}, {0, 0, -1, -1, 1, 35, 35}, 6);
    EXPECT_TRUE(inkOf(lines.copy(0, 8, 40, 24)).isNull());
    EXPECT_FALSE(inkOf(lines.copy(0, 32, 40, 8)).isNull());
    const QImage curves =
        path({0, 0, -1, -1, 3, 15, 5, 25, 5, 35, 5}, {0, 0, -1, -1, 3, 15, 35, 25, 35, 35, 35}, 5);
    EXPECT_TRUE(inkOf(curves.copy(0, 8, 40, 24)).isNull());
    EXPECT_FALSE(inkOf(curves.copy(0, 32, 40, 8)).isNull());
    // A second part without a move goes on from the first one's end.
    EmfFile joined(40, 40);
    joined.stock(kNullBrush).pen(1, 0, 2, 0).add(59).add(27, {5, 5});
    joined.add(6, {0, 0, -1, -1, 1, 35, 5}).add(6, {0, 0, -1, -1, 1, 35, 35});
    const QImage corner = joined.add(60).add(64, {0, 0, -1, -1}).drawn();
    EXPECT_FALSE(inkOf(corner.copy(30, 15, 10, 10)).isNull());
}

TEST(MetafileShapes, ALineLeadsToTheArcThatGoesOn) {
    EmfFile file(40, 40); // from (2, 20) to the arc's begin at the left of its circle
    file.pen(1, 0, 2, 0).add(27, {2, 20}).add(41, {28, 20, 8, 0x43340000, 0x42B40000});
    EXPECT_FALSE(inkOf(file.drawn().copy(8, 18, 4, 4)).isNull());
}

TEST(MetafileShapes, ColoursMayBeNumbersOfThePalette) {
    constexpr std::uint32_t kNumber = 0x01000000;
    EmfFile file(40, 40); // of two colours, with a flag behind each
    file.stock(kNullPen).add(49, {7, 0x20300, 0x04FF0000, 0x040000FF}).add(48, {7});
    file.brush(1, kNumber + 1).rectangle(0, 0, 20, 20).brush(2, kNumber).rectangle(20, 0, 40, 20);
    file.brush(3, 0x02000000 + kFileRed).rectangle(0, 20, 20, 40);
    file.brush(4, kNumber + 2).rectangle(20, 20, 40, 30);
    file.brush(5, kNumber + 0x101).rectangle(20, 30, 40, 40);
    const QImage image = file.drawn();
    EXPECT_EQ(image.pixel(5, 5), kRed);
    EXPECT_EQ(image.pixel(25, 5), kBlue);
    EXPECT_EQ(image.pixel(5, 25), kRed) << "a palette's own colour";
    EXPECT_EQ(image.pixel(25, 25), kBlack) << "beyond the palette";
    EXPECT_EQ(image.pixel(25, 35), kBlack) << "far beyond it: numbers have sixteen bits";
    EXPECT_EQ(filled(kNumber + 13).rectangle(0, 0, 40, 40).drawn().pixel(20, 20), kRed)
        << "of the default palette";
}

// Each number, less one, is the table of what the four pairs of an ink's and a paper's bit become.
TEST(MetafileShapes, EveryRasterOperationCombinesBitByBit) {
    constexpr int kPaper = 0xAA;
    constexpr int kInk = 0xCC;
    for (int operation = 1; operation <= 16; ++operation) {
        EmfFile file = filled(colour(kPaper, kPaper, kPaper));
        file.rectangle(0, 0, 40, 40).brush(2, colour(kInk, kInk, kInk));
        file.add(20, {operation}).rectangle(0, 0, 40, 40);
        int expected = 0;
        for (int bit = 0; bit < 8; ++bit) {
            const int pair = 2 * ((kInk >> bit) & 1) + ((kPaper >> bit) & 1);
            expected |= (((operation - 1) >> pair) & 1) << bit;
        }
        EXPECT_EQ(qGreen(file.drawn().pixel(20, 20)), expected) << operation;
    }
}

TEST(MetafileShapes, RasterOperationsActOnThePaper) {
    EmfFile file = filled(colour(0, 255, 255));
    file.add(20, {7}).rectangle(0, 0, 20, 40).rectangle(10, 0, 20, 40); // XOR
    file.add(20, {6}).rectangle(30, 0, 40, 40);                         // NOT
    const QImage image = file.drawn();
    EXPECT_EQ(image.pixel(5, 5), kRed);
    EXPECT_EQ(image.pixel(15, 5), kWhite);
    EXPECT_EQ(image.pixel(35, 5), kBlack);
}

TEST(MetafileShapes, HatchesShowTheGroundOnlyWhenItIsOpaque) {
    const auto image = [](int mode) {
        EmfFile file(40, 40);
        file.stock(kNullPen).add(39, {1, 2, 0, 4}).add(37, {1});
        file.add(25, {static_cast<std::int32_t>(kFileRed)}).add(18, {mode});
        return file.rectangle(0, 0, 40, 40).drawn();
    };
    const auto count = [](const QImage& sheet, QRgb wanted) {
        int found = 0;
        for (int i = 0; i < 1600; ++i) {
            found += sheet.pixel(i % 40, i / 40) == wanted ? 1 : 0;
        }
        return found;
    };
    EXPECT_GT(count(image(2), kRed), 800);
    EXPECT_GT(count(image(1), kWhite), 800);
    EXPECT_GT(count(image(1), kBlack), 100);
}

TEST(MetafileShapes, BrushesMayHaveTheColoursOfTextAndGround) {
    EmfFile file(40, 40);
    file.stock(kNullPen).add(24, {static_cast<std::int32_t>(kFileRed)});
    file.add(25, {static_cast<std::int32_t>(kFileBlue)});
    file.add(39, {1, 2, 0, 8}).add(37, {1}).rectangle(0, 0, 20, 40);
    file.add(39, {2, 2, 0, 10}).add(37, {2}).rectangle(20, 0, 40, 40);
    EXPECT_EQ(file.drawn().pixel(10, 10), kRed);
    EXPECT_EQ(file.drawn().pixel(30, 10), kBlue);
}

TEST(MetafileShapes, PatternsRepeatFromTheBrushOrigin) {
    const Bytes header = bitmapHeader(2, 1);
    const Bytes pixels = bitmapPixels(2, {kRed, kBlue});
    const auto image = [&](int origin) {
        EmfFile file(40, 40);
        Bytes body;
        for (const std::uint32_t word : {1U, 0U, 32U, 40U, 72U, 8U}) {
            put32(body, word);
        }
        file.stock(kNullPen).addBytes(94, joined(joined(body, header), pixels)).add(37, {1});
        return file.add(13, {origin, 0}).rectangle(0, 0, 40, 40).drawn();
    };
    EXPECT_EQ(image(0).pixel(10, 10), kRed);
    EXPECT_EQ(image(0).pixel(11, 10), kBlue);
    EXPECT_EQ(image(1).pixel(10, 10), kBlue);
}

TEST(MetafileShapes, PensAreDashedWideAndInsideTheirFrame) {
    EmfFile file(80, 40);
    // User dashes: 10 on, 10 off, flat ends.
    file.add(95, {1, 0, 0, 0, 0, 0x10000 | 0x200 | 7, 4, 0, 0, 0, 2, 10, 10}).add(37, {1});
    file.add(27, {0, 10}).add(54, {80, 10});
    const QImage image = file.drawn();
    EXPECT_EQ(image.pixel(5, 10), kBlack);
    EXPECT_EQ(image.pixel(15, 10), kWhite);
    EXPECT_EQ(image.pixel(25, 10), kBlack);
    EmfFile odd(80, 40); // three lengths: dashes and gaps change places from one round to the next
    odd.add(95, {1, 0, 0, 0, 0, 0x10000 | 0x200 | 7, 4, 0, 0, 0, 3, 10, 10, 10}).add(37, {1});
    const QImage alternating = odd.add(27, {0, 10}).add(54, {80, 10}).drawn();
    for (int x = 5; x < 80; x += 10) {
        EXPECT_EQ(alternating.pixel(x, 10), x % 20 == 5 ? kBlack : kWhite) << x;
    }
    EmfFile inside(40, 40);
    inside.stock(kNullBrush).pen(1, 6, 6, 0).rectangle(10, 10, 30, 30);
    EXPECT_EQ(inkOf(inside.drawn()), QRect(10, 10, 20, 20));
}

// The limit is told from a corner's tip to its inside, in widths of the line. Qt's usual corners
// were cut there instead, which left broad stumps.
TEST(MetafileShapes, SharpCornersArePointedUpToTheLimit) {
    const auto tip = [](int halfOpening, std::optional<int> limit) {
        EmfFile file(40, 40);
        file.add(95, {1, 0, 0, 0, 0, 0x10000 | 0x2000, 4, 0, 0, 0, 0, 0}).add(37, {1});
        if (limit) {
            file.add(58, {*limit});
        }
        file.add(4, {0, 0, -1, -1, 3, 0, 20 - halfOpening, 20, 20, 0, 20 + halfOpening});
        return inkOf(file.drawn()).right();
    };
    constexpr int kSharp = 3; // 6.7 widths long
    constexpr int kBlunt = 8; // 2.7
    EXPECT_NEAR(tip(kSharp, {}), 32, 2);
    EXPECT_NEAR(tip(kSharp, 8), 32, 2);
    EXPECT_NEAR(tip(kSharp, 4), 20, 1);
    EXPECT_NEAR(tip(kBlunt, 4), 25, 1);
}

TEST(MetafileShapes, RegionsAreFilledFramedAndInverted) {
    const std::vector<std::int32_t> region{32, 1, 1, 16, 0, 0, 40, 40, 10, 10, 30, 30};
    const auto drawn = [&](std::uint32_t type, const std::vector<std::int32_t>& words) {
        std::vector<std::int32_t> all{0, 0, -1, -1, 48};
        all.insert(all.end(), words.begin(), words.end());
        all.insert(all.end(), region.begin(), region.end());
        return filled(kFileRed).add(type, all).drawn();
    };
    EXPECT_EQ(inkOf(drawn(71, {1})), QRect(10, 10, 20, 20));
    const QImage framed = drawn(72, {1, 3, 3});
    EXPECT_EQ(framed.pixel(11, 20), kRed);
    EXPECT_EQ(framed.pixel(20, 20), kWhite);
    EXPECT_EQ(drawn(73, {}).pixel(20, 20), kBlack);
    EXPECT_EQ(drawn(74, {}).pixel(20, 20), kRed);
}

} // namespace
} // namespace metafile::testing
