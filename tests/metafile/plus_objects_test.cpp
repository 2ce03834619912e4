// EMF+ objects in all the forms that files have them in, and what keeps hostile ones small.
#include "metafile/metafile.h"
#include "metafile/plus_bytes.h"

#include <gtest/gtest.h>

namespace metafile::testing {
namespace {

constexpr QRgb kWhite = qRgb(255, 255, 255);
constexpr QRgb kRed = qRgb(255, 0, 0);
constexpr QRgb kBlue = qRgb(0, 0, 255);

// Whether the middle of the sheet is red where `path`, object 1, is filled with it.
QRgb middleFilledWith(const Data& path, int y = 20) {
    PlusFile file;
    file.object(3, 1, path).add(0x4014, kColourFlag | 1, Data().word(0xFFFF0000));
    return file.drawn().pixel(20, y);
}

TEST(PlusObjects, AnObjectInPiecesNeedNotFlagTheLastOne) {
    const Bytes brush = solidBrush(0xFFFF0000).bytes;
    const auto piece = [&](std::size_t from, std::size_t to) {
        return Data().append({brush.begin() + static_cast<std::ptrdiff_t>(from),
                              brush.begin() + static_cast<std::ptrdiff_t>(to)});
    };
    const Data head = Data().word(12).append(piece(0, 5).bytes);
    PlusFile file;
    file.add(0x4008, 0x8101, head).add(0x4008, 0x0101, piece(5, 12));
    EXPECT_EQ(file.fillWith(1, {0, 0, 40, 40}).drawn().pixel(20, 20), kRed);

    PlusFile broken; // something else comes between, then a whole object
    broken.add(0x4008, 0x8101, head).add(0x4003, 0).object(1, 1, solidBrush(0xFF0000FF));
    EXPECT_EQ(broken.fillWith(1, {0, 0, 40, 40}).drawn().pixel(20, 20), kBlue);
}

TEST(PlusObjects, PathsComeInFourEncodings) {
    // The same square, 10 to 30.
    const std::vector<int> corners{10, 10, 30, 10, 30, 30, 10, 30};
    const Bytes runTypes{std::byte{0x41}, std::byte{0},    std::byte{0x42},
                         std::byte{1},    std::byte{0x41}, std::byte{0x81}};
    const auto closed = Bytes{std::byte{0}, std::byte{1}, std::byte{1}, std::byte{0x81}};
    EXPECT_EQ(
        middleFilledWith(Data().word(kVersion).words({4, 0x4000}).shorts(corners).append(closed)),
        kRed);
    Data runs = Data().word(kVersion).words({4, 0x5000}).shorts(corners);
    EXPECT_EQ(middleFilledWith(runs.append(runTypes)), kRed);
    Data steps = Data().word(kVersion).words({4, 0x0800});
    putBytes(steps.bytes, {10, 10, 20, 0, 0, 20, 0x80 | 0x7F, 0xEC, 0}); // -20 in two bytes
    EXPECT_EQ(middleFilledWith(steps.append(runTypes)), kRed);
}

TEST(PlusObjects, FiguresThatCrossAreFilledByThePathsRule) {
    Data twice = Data().word(kVersion).words({8, 0x4000});
    twice.shorts({0, 0, 40, 0, 40, 40, 0, 40, 10, 10, 30, 10, 30, 30, 10, 30});
    putBytes(twice.bytes, {0, 1, 1, 0x81, 0, 1, 1, 0x81});
    EXPECT_EQ(middleFilledWith(twice), kWhite);
    EXPECT_EQ(middleFilledWith(twice, 5), kRed);
    set32(twice.bytes, 8, 0x6000);
    EXPECT_EQ(middleFilledWith(twice), kRed);
}

TEST(PlusObjects, RegionsOfManyPartsAreRead) {
    // Two hundred columns of a fifth of a pixel, each united with all before it.
    constexpr int kParts = 200;
    Data region = Data().word(kVersion).word(2 * kParts);
    for (int i = 0; i < kParts; ++i) {
        region.word(2);
    }
    for (int i = 0; i <= kParts; ++i) {
        region.word(0x10000000).reals({static_cast<float>(i) / 5, 0, 1, 20});
    }
    PlusFile file;
    file.object(4, 2, region).add(0x4013, kColourFlag | 2, Data().word(0xFFFF0000));
    const QImage image = file.drawn();
    EXPECT_EQ(image.pixel(1, 10), kRed);
    EXPECT_EQ(image.pixel(38, 10), kRed);
    EXPECT_EQ(image.pixel(20, 30), kWhite);
}

TEST(PlusObjects, SixteenBitPixelsHaveTheirAlpha) {
    PlusFile file;
    file.object(5, 1, bitmapImage(0x00061007, 2, 4).shorts({0xFC00, 0x7C00}));
    const QImage image = file.add(0x401A, 1, wholeImage({0, 0, 40, 40}, 2)).drawn();
    EXPECT_EQ(image.pixel(3, 20), kRed);
    EXPECT_EQ(image.pixel(36, 20), kWhite);
}

TEST(PlusObjects, PicturesFollowTheirCornersMirroredAndTurned) {
    const auto drawn = [](const std::vector<float>& corners) {
        PlusFile file; // red left, blue right
        file.object(5, 1, bitmapImage(0x0026200A, 2, 8).words({0xFFFF0000, 0xFF0000FF}));
        Data data = Data().words({0, 2}).reals({0, 0, 2, 1}).word(3).reals(corners);
        return file.add(0x401B, 1, data).drawn();
    };
    const QImage upright = drawn({0, 0, 40, 0, 0, 40});
    EXPECT_EQ(upright.pixel(3, 20), kRed);
    EXPECT_EQ(upright.pixel(36, 20), kBlue);
    const QImage mirrored = drawn({40, 0, 0, 0, 40, 40});
    EXPECT_EQ(mirrored.pixel(3, 20), kBlue);
    EXPECT_EQ(mirrored.pixel(36, 20), kRed);
    const QImage turned = drawn({40, 0, 40, 40, 0, 0}); // with the clock
    EXPECT_EQ(turned.pixel(20, 3), kRed);
    EXPECT_EQ(turned.pixel(20, 36), kBlue);
}

TEST(PlusObjects, PlaceableMetafilesInsideArePaddedAndMayBeShownInPart) {
    WmfFile inner; // red left, blue right
    inner.window(0, 0, 40, 40).add(0x02FA, {5, 0, 0, 0, 0}).add(0x012D, {0});
    inner.add(0x02FC, {0, 255, 0, 0}).add(0x012D, {1}).add(0x041B, {40, 20, 0, 0});
    inner.add(0x02FC, {0, 0, 255, 0}).add(0x012D, {2}).add(0x041B, {40, 40, 0, 20});
    Bytes padded = inner.placeable(0, 0, 40, 40, 96);
    padded.insert(padded.begin() + 22, 2, std::byte{0});
    const auto drawn = [&](const std::vector<float>& part) {
        PlusFile file;
        file.object(5, 1, metafileImage(2, padded));
        return file.add(0x401A, 1, Data().words({0, 2}).reals(part).reals({0, 0, 40, 40})).drawn();
    };
    const QImage whole = drawn({0, 0, 40, 40});
    EXPECT_EQ(whole.pixel(10, 20), kRed);
    EXPECT_EQ(whole.pixel(30, 20), kBlue);
    const QImage part = drawn({20, 0, 20, 40});
    EXPECT_EQ(part.pixel(3, 20), kBlue);
    EXPECT_EQ(part.pixel(30, 20), kBlue);
}

TEST(PlusObjects, MetafilesInsideThatCannotBeReadDoNotEndTheDrawing) {
    PlusFile file;
    file.object(5, 1, metafileImage(2, Bytes(50)));
    for (int i = 0; i < 5; ++i) {
        file.add(0x401A, 1, wholeImage({0, 0, 40, 40}, 2));
    }
    EXPECT_EQ(file.fill({0, 0, 40, 40}, 0xFFFF0000).drawn().pixel(20, 20), kRed);
}

TEST(PlusObjects, LargePicturesAreNotKeptInNumbers) {
    // Each takes 64 MB; one is kept and drawn, the second has no room until the first has gone.
    QImage large(4000, 4000, QImage::Format_Mono);
    large.fill(0);
    large.setColorTable({kBlue, kWhite});
    const Data data = Data().word(kVersion).words({1, 0, 0, 0, 0, 1});
    const Data blue = Data(data).append(encoded(large, "PNG"));
    large.setColorTable({kRed, kWhite});
    const Data red = Data(data).append(encoded(large, "PNG"));
    const Data show = Data().words({0, 2}).reals({0, 0, 4000, 4000}).reals({0, 0, 40, 40});
    PlusFile file;
    file.object(5, 1, blue).object(5, 2, red).add(0x401A, 1, show).add(0x401A, 2, show);
    EXPECT_EQ(file.drawn().pixel(20, 20), kBlue);
    file.object(1, 1, solidBrush(0xFF000000)).object(5, 2, red).add(0x401A, 2, show);
    EXPECT_EQ(file.drawn().pixel(20, 20), kRed);
}

} // namespace
} // namespace metafile::testing
