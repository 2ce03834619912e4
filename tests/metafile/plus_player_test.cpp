// EMF+ records: which pixels get which colour, and which half of a file is played.
#include "metafile/metafile.h"
#include "metafile/metafile_bytes.h"
#include "metafile/plus_bytes.h"

#include <gtest/gtest.h>
#include <random>

namespace metafile::testing {
namespace {

constexpr QRgb kWhite = qRgb(255, 255, 255);
constexpr QRgb kRed = qRgb(255, 0, 0);
constexpr QRgb kBlue = qRgb(0, 0, 255);
constexpr QRgb kBlack = qRgb(0, 0, 0);

// A triangle over the upper left half of the sheet, with real points.
Data triangle() {
    Data path = Data().word(kVersion).word(3).word(0).reals({0, 0, 40, 0, 0, 40});
    putBytes(path.bytes, {0, 1, 0x81, 0});
    return path;
}

TEST(PlusPlayer, TheHalfThatShowsMoreIsPlayed) {
    const auto image = [](Half half, std::uint32_t plusColour, bool otherHalfDraws) {
        EmfFile file(40, 40);
        PlusFile(half).fill({0, 0, 40, 40}, plusColour).into(file);
        if (otherHalfDraws) {
            file.stock(8).brush(1, colour(255, 0, 0)).rectangle(0, 0, 40, 40);
        }
        return file.drawn().pixel(20, 20);
    };
    EXPECT_EQ(image(Half::Only, 0xFF0000FF, true), kBlue);
    EXPECT_EQ(image(Half::Dual, 0xFF0000FF, true), kRed); // nothing that the other half lacks
    EXPECT_EQ(image(Half::Dual, 0xFF0000FF, false), kBlue);
    EXPECT_EQ(qBlue(image(Half::Dual, 0x800000FF, true)), 255); // half transparent
    EXPECT_NEAR(qRed(image(Half::Dual, 0x800000FF, true)), 127, 2);
}

// Somebody put an EMF+ picture into a file that had begun without.
TEST(PlusPlayer, ALateHeaderDoesNotSilenceWhatIsDrawnAlready) {
    const auto image = [](Half half) {
        EmfFile file(40, 40);
        file.stock(8).brush(1, colour(255, 0, 0)).rectangle(0, 0, 20, 20);
        PlusFile(half).fill({20, 0, 20, 20}, 0xFF0000FF).into(file);
        return file.rectangle(0, 20, 20, 40).drawn();
    };
    EXPECT_EQ(image(Half::Only).pixel(10, 10), kRed);
    EXPECT_EQ(image(Half::Only).pixel(30, 10), kBlue);
    EXPECT_EQ(image(Half::Only).pixel(10, 30), kRed);
    EXPECT_EQ(image(Half::Dual).pixel(10, 10), kRed);
    EXPECT_EQ(image(Half::Dual).pixel(30, 10), kWhite) << "the other half stands in for it";
}

TEST(PlusPlayer, TheOtherHalfIsPlayedWhereThisOneIsBeyondUs) {
    // Blue if this half is played, with a record more.
    const auto isPlayed = [](unsigned type, unsigned flags, const Data& data) {
        EmfFile file(40, 40);
        PlusFile(Half::Dual).add(type, flags, data).fill({0, 0, 40, 40}, 0xFF0000FF).into(file);
        file.stock(8).brush(1, colour(255, 0, 0)).rectangle(0, 0, 40, 40);
        return file.drawn().pixel(20, 20) == kBlue;
    };
    EXPECT_TRUE(isPlayed(0x4008, 0x0201, pen(1, 0x80FF0000)));
    EXPECT_FALSE(isPlayed(0x4008, 0x0201, pen(1, 0xFFFF0000)));
    EXPECT_FALSE(isPlayed(0x4008, 0x0101, solidBrush(0x00FFFFFF)));

    const auto withGlyphs = [](std::uint32_t options) {
        EmfFile file(40, 40);
        PlusFile(Half::Dual)
            .add(0x4036, kColourFlag | 1, Data().words({0x80FF0000, options, 0, 0}))
            .object(1, 1, solidBrush(0x80000000))
            .fill({0, 0, 40, 40}, 0xFF0000FF)
            .into(file);
        file.stock(8).brush(1, colour(255, 0, 0)).rectangle(0, 0, 40, 40);
        return file.drawn().pixel(20, 20);
    };
    EXPECT_EQ(withGlyphs(1), kBlue);
    EXPECT_EQ(withGlyphs(0), kRed);
}

TEST(PlusPlayer, RecordsBehindGetContextBelongToBothHalves) {
    EmfFile file(40, 40);
    PlusFile().fill({0, 0, 10, 40}, 0xFF0000FF).into(file);
    file.stock(8).brush(1, colour(255, 0, 0)).rectangle(10, 0, 20, 40); // stands in: left out
    PlusFile().add(0x4004, 0).into(file);
    file.rectangle(20, 0, 30, 40);
    PlusFile().fill({30, 0, 10, 40}, 0xFF0000FF).into(file);
    const QImage image = file.drawn();
    EXPECT_EQ(image.pixel(5, 5), kBlue);
    EXPECT_EQ(image.pixel(15, 5), kWhite);
    EXPECT_EQ(image.pixel(25, 5), kRed);
    EXPECT_EQ(image.pixel(35, 5), kBlue);
}

TEST(PlusPlayer, TransformsContainersAndUnitsNest) {
    PlusFile file;
    file.add(0x4030, 2, Data().reals({2}));    // two pixels a unit
    file.add(0x4025, 0, Data().word(7));       // save
    file.add(0x402D, 0, Data().reals({5, 0})); // move
    file.add(0x402E, 0, Data().reals({2, 2})).fill({0, 0, 1, 1}, 0xFFFF0000);
    file.add(0x4026, 0, Data().word(7)).fill({0, 10, 1, 1}, 0xFF0000FF);
    const QImage image = file.drawn();
    EXPECT_EQ(image.pixel(12, 2), kRed);
    EXPECT_EQ(image.pixel(15, 2), kWhite);
    EXPECT_EQ(image.pixel(1, 21), kBlue);

    PlusFile container; // a sheet of 10 x 10 units in the lower right quarter
    container.add(0x4027, 2, Data().reals({20, 20, 20, 20, 0, 0, 10, 10}).word(3));
    container.fill({0, 0, 5, 5}, 0xFFFF0000).add(0x4029, 0, Data().word(3));
    container.fill({0, 0, 5, 5}, 0xFF0000FF);
    EXPECT_EQ(container.drawn().pixel(25, 25), kRed);
    EXPECT_EQ(container.drawn().pixel(35, 35), kWhite);
    EXPECT_EQ(container.drawn().pixel(2, 2), kBlue);
}

TEST(PlusPlayer, ShapesPathsAndRegionsAreDrawn) {
    PlusFile file;
    file.object(3, 1, triangle()).add(0x4014, kColourFlag | 1, Data().word(0xFFFF0000));
    EXPECT_EQ(file.drawn().pixel(5, 5), kRed);
    EXPECT_EQ(file.drawn().pixel(35, 35), kWhite);

    // The triangle without its upper left quarter of the sheet.
    Data region = Data().word(kVersion).word(2).word(4).word(0x10000001);
    const Bytes path = triangle().bytes;
    region.word(static_cast<std::uint32_t>(path.size())).append(path).word(0x10000000);
    region.reals({0, 0, 20, 20});
    PlusFile cut;
    cut.object(4, 2, region).add(0x4013, kColourFlag | 2, Data().word(0xFFFF0000));
    EXPECT_EQ(cut.drawn().pixel(10, 10), kWhite);
    EXPECT_EQ(cut.drawn().pixel(30, 3), kRed);

    PlusFile lines; // a closed line of small points, and a quarter of a pie
    Data corners = Data().word(3);
    for (const int value : {2, 2, 38, 2, 2, 38}) {
        put16(corners.bytes, static_cast<unsigned>(value));
    }
    lines.object(2, 3, pen(4, 0xFF000000)).add(0x400D, 0x6000 | 3, corners);
    EXPECT_EQ(lines.drawn().pixel(2, 20), kBlack);
    PlusFile pie;
    pie.add(0x4010, kColourFlag, Data().word(0xFFFF0000).reals({0, 90, 0, 0, 40, 40}));
    EXPECT_EQ(pie.drawn().pixel(26, 26), kRed); // with the clock: below
    EXPECT_EQ(pie.drawn().pixel(26, 14), kWhite);
}

TEST(PlusPlayer, ClipsCombine) {
    const auto image = [](unsigned combine) {
        PlusFile file;
        file.add(0x4032, 0, Data().reals({0, 0, 20, 40}));
        file.add(0x4032, combine << 8U, Data().reals({10, 0, 20, 40}));
        return file.fill({0, 0, 40, 40}, 0xFFFF0000).drawn();
    };
    const auto columns = [&](unsigned combine) {
        const QImage sheet = image(combine);
        std::string result;
        for (const int x : {5, 15, 25, 35}) {
            result += sheet.pixel(x, 20) == kRed ? 'x' : '.';
        }
        return result;
    };
    EXPECT_EQ(columns(0), ".xx."); // replace
    EXPECT_EQ(columns(1), ".x.."); // intersect
    EXPECT_EQ(columns(2), "xxx."); // unite
    EXPECT_EQ(columns(3), "x.x."); // exclusive or
    EXPECT_EQ(columns(4), "x..."); // exclude
    EXPECT_EQ(columns(5), "..x."); // complement
}

TEST(PlusPlayer, AClipOfManyPiecesHoldsAfterAnotherWasReset) {
    PlusFile file;
    file.add(0x4032, 0, Data().reals({0, 0, 10, 10})).fill({5, 5, 1, 1}, 0xFFFF0000);
    file.add(0x4031, 0).fill({6, 6, 1, 1}, 0xFFFF0000);
    file.add(0x4032, 0, Data().reals({0, 0, 20, 20}));
    file.add(0x4032, 0x200, Data().reals({20, 20, 20, 20}));
    file.add(0x400E, kColourFlag, Data().word(0xFFFF0000).reals({-20, -20, 80, 80}));
    const QImage image = file.drawn();
    EXPECT_EQ(image.pixel(10, 10), kRed);
    EXPECT_EQ(image.pixel(30, 30), kRed);
    EXPECT_EQ(image.pixel(30, 10), kWhite);
    EXPECT_EQ(image.pixel(10, 30), kWhite);
}

TEST(PlusPlayer, GradientsRunAsTheirStopsSay) {
    PlusFile linear;
    linear.object(1, 1,
                  Data()
                      .word(kVersion)
                      .word(4)
                      .word(4)
                      .word(4)
                      .reals({0, 0, 40, 40})
                      .word(0)
                      .word(0)
                      .word(0)
                      .word(0)
                      .word(3)
                      .reals({0, 0.5, 1})
                      .word(0xFFFF0000)
                      .word(0xFFFFFFFF)
                      .word(0xFF0000FF));
    const QImage across = linear.fillWith(1, {0, 0, 40, 40}).drawn();
    EXPECT_GT(qRed(across.pixel(1, 20)), 240);
    EXPECT_GT(qGreen(across.pixel(20, 20)), 230);
    EXPECT_GT(qBlue(across.pixel(38, 20)), 240);

    PlusFile sharp; // two colours in the middle, mirrored beyond the rectangle
    Data edge = Data().word(kVersion).words({4, 4, 1}).reals({0, 0, 20, 40}).words({0, 0, 0, 0, 4});
    edge.reals({0, 0.5, 0.5, 1}).words({0xFFFF0000, 0xFFFF0000, 0xFF0000FF, 0xFF0000FF});
    const QImage halves = sharp.object(1, 1, edge).fillWith(1, {0, 0, 40, 40}).drawn();
    EXPECT_EQ(halves.pixel(8, 20), kRed);
    EXPECT_EQ(halves.pixel(12, 20), kBlue);
    EXPECT_EQ(halves.pixel(28, 20), kBlue);
    EXPECT_EQ(halves.pixel(32, 20), kRed);

    PlusFile down;
    Data falling = Data().word(kVersion).words({4, 0x10, 0}).reals({0, 0, 40, 40});
    falling.words({0xFFFF0000, 0xFF0000FF, 0, 0, 2}).reals({0, 1, 0, 1});
    const QImage below = down.object(1, 1, falling).fillWith(1, {0, 0, 40, 40}).drawn();
    EXPECT_GT(qRed(below.pixel(20, 2)), 230);
    EXPECT_GT(qBlue(below.pixel(20, 37)), 230);
}

TEST(PlusPlayer, PathGradientsShadeFromEachPointInwards) {
    PlusFile inwards; // from blue edges to a red middle
    inwards.object(1, 1,
                   Data()
                       .word(kVersion)
                       .word(3)
                       .word(0)
                       .word(0)
                       .word(0xFFFF0000)
                       .reals({20, 20})
                       .word(1)
                       .word(0xFF0000FF)
                       .word(4)
                       .reals({0, 0, 40, 0, 40, 40, 0, 40}));
    const QImage middle = inwards.fillWith(1, {0, 0, 40, 40}).drawn();
    EXPECT_GT(qRed(middle.pixel(20, 20)), 220);
    EXPECT_GT(qBlue(middle.pixel(2, 20)), 220);
    EXPECT_NEAR(qRed(middle.pixel(10, 20)), 127, 20);

    // A colour for each corner of the left half, a white centre that covers half of it; repeated.
    PlusFile corners;
    Data four = Data().word(kVersion).words({3, 0x40, 0, 0xFFFFFFFF}).reals({10, 20}).word(4);
    four.words({0xFFFF0000, 0xFF0000FF, 0xFF0000FF, 0xFFFF0000, 4});
    four.reals({0, 0, 20, 0, 20, 40, 0, 40}).word(2).reals({0.5, 0.5});
    const QImage shaded = corners.object(1, 1, four).fillWith(1, {0, 0, 40, 40}).drawn();
    EXPECT_GT(qRed(shaded.pixel(0, 20)), 230);
    EXPECT_GT(qBlue(shaded.pixel(19, 20)), 230);
    EXPECT_NEAR(qRed(shaded.pixel(10, 0)), 127, 20);
    EXPECT_EQ(shaded.pixel(13, 20), kWhite);
    EXPECT_GT(qRed(shaded.pixel(20, 20)), 230); // the next one's left side
    EXPECT_EQ(shaded.pixel(33, 20), kWhite);
}

TEST(PlusPlayer, HatchesHaveAGroundAndKeepTheirSize) {
    PlusFile file;
    file.object(1, 1, Data().word(kVersion).words({1, 50, 0xFFFF0000, 0xFF0000FF}));
    file.add(0x402E, 0, Data().reals({3, 3})).fillWith(1, {0, 0, 40, 40});
    const QImage image = file.drawn(); // a checker board of four pixels a side
    EXPECT_EQ(image.pixel(1, 1), kRed);
    EXPECT_EQ(image.pixel(5, 1), kBlue);
    EXPECT_EQ(image.pixel(5, 5), kRed);
    EXPECT_EQ(image.pixel(9, 1), kRed);
}

TEST(PlusPlayer, PicturesOfEveryFormatAreDrawn) {
    const Data to = wholeImage({0, 0, 40, 40}, 2);
    PlusFile direct;
    direct.object(5, 1, bitmapImage(0x0026200A, 2, 8).word(0xFFFF0000).word(0x00000000));
    const QImage alpha = direct.add(0x401A, 1, to).drawn();
    EXPECT_EQ(alpha.pixel(3, 20), kRed);
    EXPECT_EQ(alpha.pixel(36, 20), kWhite);

    PlusFile indexed; // four bits a pixel: colour 1, then one that is not there
    Data nibbles = bitmapImage(0x00030402, 2, 4).word(0).word(2).word(0xFF00FF00).word(0xFF0000FF);
    indexed.object(5, 1, nibbles.word(0x0000001F)).add(0x401A, 1, to);
    EXPECT_EQ(indexed.drawn().pixel(3, 20), kBlue);
    EXPECT_EQ(indexed.drawn().pixel(36, 20), kBlack);
    PlusFile bytewise; // eight bits a pixel: the same
    Data wide = bitmapImage(0x00030803, 2, 4).words({0, 2, 0xFFFF0000, 0xFF0000FF});
    bytewise.object(5, 1, wide.word(0x0000C801)).add(0x401A, 1, to);
    EXPECT_EQ(bytewise.drawn().pixel(3, 20), kBlue);
    EXPECT_EQ(bytewise.drawn().pixel(36, 20), kBlack);

    QImage picture(2, 1, QImage::Format_RGB32);
    picture.fill(Qt::red);
    Data png = Data().word(kVersion).word(1).word(0).word(0).word(0).word(0).word(1);
    const Bytes whole = png.append(encoded(picture, "PNG")).bytes;
    PlusFile parts; // told in two records
    const auto total = static_cast<std::uint32_t>(whole.size());
    parts.add(0x4008, 0x8501, Data().word(total).append(Bytes(whole.begin(), whole.begin() + 30)));
    parts.add(0x4008, 0x8501, Data().word(total).append(Bytes(whole.begin() + 30, whole.end())));
    EXPECT_EQ(parts.add(0x401A, 1, to).drawn().pixel(20, 20), kRed);

    EmfFile inner(40, 40);
    const Bytes emf = inner.stock(8).brush(1, colour(0, 0, 255)).rectangle(0, 0, 40, 40).bytes();
    PlusFile nested;
    nested.object(5, 1,
                  Data()
                      .word(kVersion)
                      .word(2)
                      .word(3)
                      .word(static_cast<std::uint32_t>(emf.size()))
                      .append(emf));
    EXPECT_EQ(nested.add(0x401A, 1, to).drawn().pixel(20, 20), kBlue);
}

TEST(PlusPlayer, TextStandsInItsLayout) {
    const auto ink = [&](std::uint32_t alignment, std::vector<float> layout) {
        Data format = Data().word(kVersion).word(0).word(0).word(alignment).word(alignment);
        format.word(0).word(0).word(0).word(0).reals({0, 0, 0});
        Data text = Data().word(0xFF000000).word(2).word(1).reals(layout);
        put16(text.bytes, u'H');
        PlusFile file;
        file.object(6, 1, font(16, u"Arial"))
            .object(7, 2, format)
            .add(0x401C, kColourFlag | 1, text);
        return inkOf(file.drawn());
    };
    const QRect near = ink(0, {0, 0, 40, 40});
    EXPECT_FALSE(near.isNull());
    EXPECT_LT(near.right(), 15);
    EXPECT_LT(near.bottom(), 20);
    const QRect centre = ink(1, {0, 0, 40, 40});
    EXPECT_NEAR(centre.center().x(), 20, 2);
    EXPECT_NEAR(centre.center().y(), 20, 3);
    EXPECT_GT(ink(2, {0, 0, 40, 40}).left(), 25);
}

TEST(PlusPlayer, TextBreaksTurnsAndStaysInItsLayout) {
    const auto drawn = [](std::uint32_t flags, std::u16string_view characters,
                          const std::vector<float>& layout, std::uint32_t keys = 0) {
        Data format = Data().word(kVersion).words({flags, 0, 0, 0, 0, 0, 0, keys}).reals({0, 0});
        Data text = Data().words({0xFF000000, 2, static_cast<std::uint32_t>(characters.size())});
        text.reals(layout).text(characters);
        PlusFile file;
        file.object(6, 1, font(8, u"Arial")).object(7, 2, format);
        return inkOf(file.add(0x401C, kColourFlag | 1, text).drawn());
    };
    constexpr std::uint32_t kVertical = 2;
    constexpr std::uint32_t kNoWrap = 0x1000;
    constexpr std::uint32_t kNoClip = 0x4000;
    const QRect broken = drawn(0, u"HH HH", {0, 0, 18, 40});
    EXPECT_LT(broken.right(), 15);
    EXPECT_GT(broken.bottom(), 11);
    EXPECT_LT(drawn(0, u"HH HH", {0, 0, 18, 8}).bottom(), 9); // no room for a second line
    EXPECT_GT(drawn(kNoClip, u"HH HH", {0, 0, 18, 8}).bottom(), 11);
    EXPECT_LT(drawn(kNoWrap, u"HHHHHH", {0, 0, 18, 40}).right(), 26);
    EXPECT_GT(drawn(kNoWrap | kNoClip, u"HHHHHH", {0, 0, 18, 40}).right(), 30);
    const QRect upright = drawn(kVertical, u"HHHH", {10, 5, 20, 35});
    EXPECT_LT(upright.width(), 8);
    EXPECT_GT(upright.height(), 18);
    EXPECT_NEAR(upright.left(), 12, 2); // feet to the left
    EXPECT_EQ(drawn(0, u"&H", {0, 0, 40, 40}, 1), drawn(0, u"H", {0, 0, 40, 40}));
}

TEST(PlusPlayer, LyingRecordsAreLeftOut) {
    PlusFile file;
    file.object(3, 1, Data().word(kVersion).word(0x7FFFFFFF).word(0)); // points that are not there
    file.add(0x4014, kColourFlag | 1, Data().word(0xFF000000));
    file.add(0x4014, kColourFlag | 99, Data().word(0xFF000000)); // an object that never was
    file.fill({0, 0, std::numeric_limits<float>::infinity(), 4}, 0xFF000000);
    file.object(5, 2, bitmapImage(0x0026200A, 100000, 4))
        .add(0x401A, 2, wholeImage({0, 0, 40, 40}, 2));
    Data deep = Data().word(kVersion).word(0);
    for (int i = 0; i < 5000; ++i) {
        deep.word(1);
    }
    file.object(4, 3, deep).add(0x4013, kColourFlag | 3, Data().word(0xFF000000));
    file.add(0x4030, 2, Data().reals({1e30F})).fill({0, 0, 1, 1}, 0xFF000000);
    file.add(0x4030, 2, Data().reals({1})).fill({30, 30, 10, 10}, 0xFFFF0000);
    const QImage image = file.drawn();
    EXPECT_EQ(image.pixel(5, 5), kWhite);
    EXPECT_EQ(image.pixel(35, 35), kRed);
}

TEST(PlusPlayer, RandomBytesNeverCrash) {
    EmfFile file(40, 40);
    PlusFile plus;
    plus.object(3, 1, triangle()).object(2, 2, pen(3, 0x80FF0000)).add(0x4015, 1, Data().word(2));
    plus.object(5, 3, bitmapImage(0x0026200A, 2, 8).word(0xFFFF0000).word(0));
    plus.add(0x401A, 3, wholeImage({0, 0, 40, 40}, 2)).add(0x4033, 0x101);
    plus.object(1, 4,
                Data()
                    .word(kVersion)
                    .word(3)
                    .word(0)
                    .word(0)
                    .word(0xFFFF0000)
                    .reals({20, 20})
                    .word(1)
                    .word(0xFF0000FF)
                    .word(4)
                    .reals({0, 0, 40, 0, 40, 40, 0, 40}));
    const Bytes sound = plus.fillWith(4, {0, 0, 40, 40}).into(file).bytes();
    constexpr std::size_t kHeader = 104; // a broken one would only be refused
    std::mt19937 random(4);
    EXPECT_NO_THROW(drawWithRandomBytes(sound, kHeader, random));
}

} // namespace
} // namespace metafile::testing
