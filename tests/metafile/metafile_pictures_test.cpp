// Blocks of pixels, gradients and text of enhanced metafiles.
#include "metafile/metafile_bytes.h"

#include <algorithm>
#include <bit>
#include <gtest/gtest.h>

namespace metafile::testing {
namespace {

constexpr QRgb kWhite = qRgb(255, 255, 255);
constexpr QRgb kBlack = qRgb(0, 0, 0);
constexpr QRgb kRed = qRgb(255, 0, 0);
constexpr QRgb kGreen = qRgb(0, 255, 0);
constexpr QRgb kBlue = qRgb(0, 0, 255);
constexpr int kNullPen = 8;
constexpr std::int32_t kCopy = 0x00CC0020;
constexpr std::int32_t kAnd = 0x008800C6;
constexpr std::int32_t kOr = 0x00EE0086;

Bytes words(const std::vector<std::int32_t>& values) {
    Bytes bytes;
    for (const std::int32_t value : values) {
        put32(bytes, static_cast<std::uint32_t>(value));
    }
    return bytes;
}

// Red and green above blue and black.
const std::vector<QRgb> kFour{kRed, kGreen, kBlue, kBlack};

// A blit's words up to the places of header and pixels, which follow at once.
EmfFile& blit(EmfFile& file, std::uint32_t type, std::vector<std::int32_t> values,
              std::size_t placesAt, const std::vector<QRgb>& pixels, int width,
              std::vector<std::int32_t> tail = {}) {
    const auto header = static_cast<std::int32_t>(8 + 4 * (values.size() + 4 + tail.size()));
    const Bytes data = bitmapPixels(width, pixels);
    const std::vector<std::int32_t> places{header, 40, header + 40,
                                           static_cast<std::int32_t>(data.size())};
    values.insert(values.begin() + static_cast<std::ptrdiff_t>(placesAt), places.begin(),
                  places.end());
    values.insert(values.end(), tail.begin(), tail.end());
    const int height = static_cast<int>(pixels.size()) / width;
    return file.addBytes(type, joined(joined(words(values), bitmapHeader(width, height)), data));
}

// StretchDIBits of a bitmap's part.
EmfFile& stretch(EmfFile& file, QRect to, QRect part, const std::vector<QRgb>& pixels, int width,
                 std::int32_t operation = kCopy) {
    return blit(file, 81,
                {0, 0, -1, -1, to.x(), to.y(), part.x(), part.y(), part.width(), part.height(), 0,
                 operation, to.width(), to.height()},
                10, pixels, width);
}

TEST(MetafilePictures, BitmapsAreStretchedCutOutAndMirrored) {
    EmfFile file(40, 40);
    stretch(file, {0, 0, 40, 40}, {0, 0, 2, 2}, kFour, 2);
    const QImage image = file.drawn();
    EXPECT_EQ(image.pixel(5, 5), kRed);
    EXPECT_EQ(image.pixel(35, 5), kGreen);
    EXPECT_EQ(image.pixel(5, 35), kBlue);

    // Rows are counted from the bottom.
    EmfFile part(40, 40);
    stretch(part, {0, 0, 40, 40}, {0, 0, 1, 1}, kFour, 2);
    EXPECT_EQ(part.drawn().pixel(20, 20), kBlue);

    EmfFile mirrored(40, 40);
    stretch(mirrored, QRect(40, 40, -40, -40), {0, 0, 2, 2}, kFour, 2);
    EXPECT_EQ(mirrored.drawn().pixel(35, 35), kRed);
    EXPECT_EQ(mirrored.drawn().pixel(5, 35), kGreen);
}

TEST(MetafilePictures, StripsOfAPictureMeetAtEverySize) {
    EmfFile file(40, 40);
    for (int strip = 0; strip < 8; ++strip) {
        stretch(file, {0, strip * 5, 40, 5}, {0, 0, 1, 1}, {kRed}, 1);
    }
    for (const double scale : {0.37, 1.0, 2.71}) {
        const QImage image = file.drawn(scale);
        for (int y = 0; y < image.height(); ++y) {
            ASSERT_EQ(image.pixel(image.width() / 2, y), kRed) << scale << ' ' << y;
        }
    }
    EmfFile beside(40, 40);
    for (int strip = 0; strip < 8; ++strip) {
        stretch(beside, {strip * 5, 0, 5, 40}, {0, 0, 1, 1}, {kRed}, 1);
    }
    for (const double scale : {0.37, 1.0, 2.71}) {
        const QImage image = beside.drawn(scale);
        for (int x = 0; x < image.width(); ++x) {
            ASSERT_EQ(image.pixel(x, image.height() / 2), kRed) << scale << ' ' << x;
        }
    }
}

TEST(MetafilePictures, MaskAndPictureMakeATransparentOne) {
    EmfFile file(40, 40);
    file.stock(kNullPen).brush(1, colour(0, 255, 0)).rectangle(0, 0, 40, 40);
    stretch(file, {0, 0, 40, 40}, {0, 0, 2, 1}, {kBlack, kWhite}, 2, kAnd);
    stretch(file, {0, 0, 40, 40}, {0, 0, 2, 1}, {kRed, kBlack}, 2, kOr);
    EXPECT_EQ(file.drawn().pixel(5, 20), kRed);
    EXPECT_EQ(file.drawn().pixel(35, 20), kGreen);
}

TEST(MetafilePictures, PatternsAreCombinedWithoutASource) {
    EmfFile file(40, 40);
    file.brush(1, colour(0, 0, 255));
    const auto pattern = [&](int x, std::int32_t operation) {
        file.add(76,
                 {0, 0, -1, -1, x, 0, 10, 40, operation, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
    };
    pattern(0, 0x00F00021);                             // copies the pattern
    pattern(10, 0x00550009);                            // inverts what is there
    pattern(20, 0x005A0049);                            // exclusive or with the pattern
    pattern(30, static_cast<std::int32_t>(0x00FF0062)); // white
    const QImage image = file.drawn();
    EXPECT_EQ(image.pixel(5, 5), kBlue);
    EXPECT_EQ(image.pixel(15, 5), kBlack);
    EXPECT_EQ(image.pixel(25, 5), qRgb(255, 255, 0));
    EXPECT_EQ(image.pixel(35, 5), kWhite);
}

TEST(MetafilePictures, DevicePixelsAreNotStretchedByTheMapping) {
    EmfFile file(40, 40);
    file.add(17, {8}).add(9, {400, 400}).add(11, {40, 40});
    blit(file, 80, {0, 0, -1, -1, 100, 100, 0, 0, 2, 2, 0, 0, 2}, 10, kFour, 2);
    const QImage image = file.drawn();
    EXPECT_EQ(image.pixel(10, 10), kRed);
    EXPECT_EQ(image.pixel(10, 11), kBlue);
    EXPECT_EQ(inkOf(image).size(), QSize(2, 2));
}

TEST(MetafilePictures, ParallelogramsAndMasksAreFollowed) {
    const std::int32_t one = std::bit_cast<std::int32_t>(1.0F);
    EmfFile turned(40, 40); // a quarter turn: the top left goes to the top right
    blit(turned, 79, {0, 0, -1, -1, 40, 0, 40, 40, 0, 0, 0, 0, 2, 2, one, 0, 0, one, 0, 0, 0, 0},
         22, kFour, 2, {0, 0, 0, 0, 0, 0, 0});
    EXPECT_EQ(turned.drawn().pixel(35, 5), kRed);
    EXPECT_EQ(turned.drawn().pixel(35, 35), kGreen);
    EXPECT_EQ(turned.drawn().pixel(5, 5), kBlue);

    // Two bitmaps in one record: the picture and the mask that keeps its right half away.
    const Bytes picture = bitmapPixels(2, {kRed, kRed});
    const Bytes mask = bitmapPixels(2, {kWhite, kBlack});
    const std::int32_t header = 128;
    Bytes body = words(
        {0,  0,           -1,  -1,          0, 0,   2, 1, static_cast<std::int32_t>(0xAACC0020),
         0,  0,           one, 0,           0, one, 0, 0, 0,
         0,  header,      40,  header + 40, 8, 0,   0, 0, header + 48,
         40, header + 88, 8});
    body = joined(joined(body, bitmapHeader(2, 1)), picture);
    body = joined(joined(body, bitmapHeader(2, 1)), mask);
    EmfFile masked(2, 1);
    masked.addBytes(78, body);
    EXPECT_EQ(masked.drawn().pixel(0, 0), kRed);
    EXPECT_EQ(masked.drawn().pixel(1, 0), kWhite);
}

TEST(MetafilePictures, PicturesBlendByTheirAlphaAndLeaveTheirKeyColourOut) {
    const std::int32_t one = std::bit_cast<std::int32_t>(1.0F);
    const auto drawn = [&](std::uint32_t type, std::int32_t how, const std::vector<QRgb>& pixels) {
        EmfFile file(40, 40);
        blit(file, type, {0, 0, -1, -1, 0, 0, 40, 40, how, 0, 0, one, 0, 0, one, 0, 0, 0, 0}, 19,
             pixels, 2, {2, 1});
        return file.drawn();
    };
    const QRgb half = drawn(114, 0x00800000, {kRed, kRed}).pixel(20, 20);
    EXPECT_NEAR(qGreen(half), 127, 2);
    EXPECT_EQ(qRed(half), 255);
    const QImage keyed = drawn(116, static_cast<std::int32_t>(colour(255, 0, 0)), {kRed, kBlue});
    EXPECT_EQ(keyed.pixel(5, 5), kWhite);
    EXPECT_EQ(keyed.pixel(35, 5), kBlue);

    // 32-bit pixels with an alpha of their own, already multiplied in.
    EmfFile own(2, 1);
    Bytes body = words({0, 0,   -1, -1, 0, 0, 2,   1,  0x01FF0000, 0, 0, one, 0,
                        0, one, 0,  0,  0, 0, 108, 40, 148,        8, 2, 1});
    body = joined(body, bitmapHeader(2, 1, 32));
    put32(body, 0x80800000);
    put32(body, 0);
    own.addBytes(114, body);
    EXPECT_EQ(qRed(own.drawn().pixel(0, 0)), 255);
    EXPECT_NEAR(qBlue(own.drawn().pixel(0, 0)), 127, 2);
    EXPECT_EQ(own.drawn().pixel(1, 0), kWhite);
}

TEST(MetafilePictures, GradientsRunFromCornerToCorner) {
    const auto vertex = [](int x, int y, int red, int blue) {
        return std::vector<std::int32_t>{x, y, red << 8, blue << 8};
    };
    const auto drawn = [&](int mode, std::vector<std::int32_t> mesh) {
        const int corners = mode == 2 ? 3 : 2;
        std::vector<std::int32_t> values{0, 0, -1, -1, corners, 1, mode};
        for (const auto& corner :
             {vertex(0, 0, 255, 0), vertex(40, 40, 0, 255), vertex(0, 40, 0, 0)}) {
            if (static_cast<int>(values.size()) < 7 + 4 * corners) {
                values.insert(values.end(), corner.begin(), corner.end());
            }
        }
        values.insert(values.end(), mesh.begin(), mesh.end());
        return EmfFile(40, 40).add(118, values).drawn();
    };
    const QImage across = drawn(0, {0, 1});
    EXPECT_GT(qRed(across.pixel(2, 30)), 230);
    EXPECT_GT(qBlue(across.pixel(37, 10)), 230);
    const QImage down = drawn(1, {0, 1});
    EXPECT_GT(qRed(down.pixel(30, 2)), 230);
    const QImage triangle = drawn(2, {0, 1, 2});
    EXPECT_EQ(triangle.pixel(35, 5), kWhite);
    EXPECT_NEAR(qRed(triangle.pixel(13, 26)), 85, 12);
    EXPECT_TRUE(inkOf(drawn(0, {0, 7})).isNull()); // a vertex that is not there
}

EmfFile lettered(int height, int escapement) {
    EmfFile file(200, 200);
    file.font(1, height, escapement, u"Arial").add(18, {1});
    return file;
}

TEST(MetafileText, LettersStandWhereAlignmentAndAngleSay) {
    const auto ink = [](int alignment, int escapement) {
        return inkOf(
            lettered(-40, escapement).add(22, {alignment}).text(100, 100, u"HH", {}).drawn());
    };
    const QRect top = ink(0, 0);
    EXPECT_GE(top.left(), 100);
    EXPECT_GT(top.top(), 100);
    EXPECT_NEAR(top.height(), 29, 2); // capitals of a 40-pixel em
    EXPECT_NEAR(ink(24, 0).bottom(), 99, 1);
    EXPECT_LE(ink(2, 0).right(), 100);
    EXPECT_NEAR(ink(6, 0).center().x(), 100, 2);
    EXPECT_LT(ink(8, 0).bottom(), 100);
    const QRect upwards = ink(24, 900);
    EXPECT_GT(upwards.height(), upwards.width());
    EXPECT_LE(upwards.bottom(), 100);
    // A positive height is the cell's, so the letters are smaller.
    const QRect cell = inkOf(lettered(40, 0).text(100, 100, u"HH", {}).drawn());
    EXPECT_LT(cell.height(), top.height());
}

TEST(MetafileText, AdvancesSpaceTheLettersAndMoveTheCurrentPosition) {
    const QRect wide = inkOf(lettered(-20, 0).text(0, 50, u"II", {100, 20}).drawn());
    EXPECT_GT(wide.width(), 95);
    EmfFile file = lettered(-20, 0);
    file.add(22, {1}).add(27, {20, 50}).text(0, 0, u"I", {60}).pen(2, 0, 1, 0).add(54, {120, 50});
    const QImage image = file.drawn();
    EXPECT_EQ(image.pixel(70, 50), kWhite);
    EXPECT_EQ(image.pixel(100, 50), kBlack);
    // Pairs of advances: the second letter stands higher.
    const QRect raised =
        inkOf(lettered(-20, 0).text(0, 100, u"II", {30, 50, 30, 0}, 0x2000).drawn());
    EXPECT_GT(raised.height(), 55);
}

TEST(MetafileText, LeftwardScriptsAndDeviceFontsAreDrawn) {
    const auto drawn = [](std::u16string_view text) {
        return lettered(-40, 0).text(20, 50, text, {40, 40}).drawn();
    };
    EXPECT_NE(drawn(u"\u05D0\u05D1"), drawn(u"\u05D1\u05D0"));
    // The first letter read is the right one seen.
    const QImage first = lettered(-40, 0).text(60, 50, u"\u05D0", {}).drawn();
    const QImage both = drawn(u"\u05D0\u05D1");
    EXPECT_EQ(both.copy(62, 0, 38, 200), first.copy(62, 0, 38, 200));
    // The system's font is as large as the device has it, not as the mapping makes it.
    EmfFile scaled(200, 200);
    scaled.add(17, {8}).add(9, {2000, 2000}).add(11, {200, 200}).add(18, {1}).stock(13);
    EXPECT_NEAR(inkOf(scaled.text(100, 100, u"H", {}).drawn()).height(), 10, 3);
}

TEST(MetafileText, OpaqueRectanglesAndGlyphNumbersAndSymbolsAreUnderstood) {
    EmfFile opaque = lettered(-10, 0);
    opaque.add(25, {static_cast<std::int32_t>(colour(255, 0, 0))});
    EXPECT_EQ(opaque.text(100, 100, u" ", {}, 2).drawn().pixel(15, 15), kRed);

    // Glyph 43 of the usual fonts is the capital H.
    const QImage letter = lettered(-40, 0).text(20, 20, u"H", {}).drawn();
    const QImage glyph = lettered(-40, 0).text(20, 20, std::u16string(1, 43), {}, 0x10).drawn();
    EXPECT_EQ(letter, glyph);
    const auto rising = [](std::u16string_view text, int options) {
        return lettered(-20, 0).text(0, 100, text, {30, 50, 30, 0}, 0x2000 | options).drawn();
    };
    EXPECT_EQ(rising(u"HH", 0), rising(std::u16string(2, 43), 0x10)) << "in both directions";

    const auto sign = [](std::u16string_view family, std::u16string_view text, int set) {
        EmfFile file(200, 200);
        return file.font(1, -40, 0, family, set).text(20, 20, text, {}).drawn();
    };
    // A Symbol font's "a" is an alpha, told as a letter or in the private range.
    EXPECT_EQ(sign(u"Symbol", u"a", 2), sign(u"Symbol", u"\uF061", 2));
    EXPECT_NE(sign(u"Symbol", u"a", 2), sign(u"Arial", u"a", 0));
    EXPECT_FALSE(inkOf(sign(u"Symbol", u"a", 2)).isNull());
    EXPECT_EQ(sign(u"Arial", u"\uF061", 0), sign(u"Arial", u"a", 0)) << "a byte in disguise";
}

} // namespace
} // namespace metafile::testing
