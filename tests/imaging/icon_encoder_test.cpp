#include "imaging/decoders.h"
#include "imaging/encoder_pictures.h"
#include "imaging/encoding/encoders.h"
#include "imaging/picture_bytes.h"

#include <gtest/gtest.h>

namespace imaging::testing {
namespace {

constexpr int kIcon = 1;
constexpr int kCursor = 2;
constexpr std::size_t kEntry = 16;

unsigned read(const Bytes& bytes, std::size_t at, std::size_t count) {
    unsigned value = 0;
    for (std::size_t i = count; i-- > 0;) {
        value = value << 8U | std::to_integer<unsigned>(bytes.at(at + i));
    }
    return value;
}

std::size_t frameCount(const Bytes& file) {
    return read(file, 4, 2);
}

std::size_t entryAt(std::size_t number) {
    return 6 + number * kEntry;
}

// What the directory says of a frame before its place.
Bytes headOf(const Bytes& file, std::size_t number) {
    const auto at = file.begin() + static_cast<std::ptrdiff_t>(entryAt(number));
    return {at, at + 8};
}

Bytes dataOf(const Bytes& file, std::size_t number) {
    const std::size_t at = read(file, entryAt(number) + 12, 4);
    const std::size_t size = read(file, entryAt(number) + 8, 4);
    EXPECT_LE(at + size, file.size());
    return {file.begin() + static_cast<std::ptrdiff_t>(at),
            file.begin() + static_cast<std::ptrdiff_t>(at + size)};
}

Bytes smallFrame(std::uint32_t pixel) {
    return iconFrame32(2, 2, {pixel, pixel, pixel, pixel}, {0, 0});
}

const QImage& edited() {
    static const QImage image = colourful({20, 10}, Alpha::Any);
    return image;
}

QImage shown(const Bytes& file) {
    return decode(file).image.convertToFormat(QImage::Format_ARGB32);
}

TEST(IconEncoder, TheOtherFramesStayByteForByte) {
    const Bytes large = encoded(colourful({20, 10}, Alpha::Opaque), "PNG");
    const std::vector<Bytes> others{smallFrame(0xFF112233), large, smallFrame(0x80445566)};
    for (const auto& [type, kind] :
         {std::pair(kIcon, PictureKind::Ico), std::pair(kCursor, PictureKind::Cur)}) {
        const Bytes before =
            iconFile(type, {{others[0], 1, 0}, {others[1], 5, 6}, {others[2], 0, 1}});
        const Bytes after = encode(edited(), kind, {before, {19, 3}});
        EXPECT_EQ(shown(after), edited());
        ASSERT_EQ(frameCount(after), 3U);
        for (const std::size_t number : {std::size_t{0}, std::size_t{2}}) {
            EXPECT_EQ(dataOf(after, number), others[number]);
            EXPECT_EQ(headOf(after, number), headOf(before, number));
        }
        EXPECT_EQ(decode(after).facts.hotSpot, type == kCursor ? QPoint(19, 3) : QPoint());
    }
}

TEST(IconEncoder, AFileOfAnotherKindHoldsNothingThatWouldBeKept) {
    const Bytes icon = iconFile(kIcon, {{smallFrame(1), 0, 0}, {smallFrame(2), 0, 0}});
    EXPECT_EQ(frameCount(encode(edited(), PictureKind::Cur, {icon, {}})), 1U);
    const Bytes bmp = encode(edited(), PictureKind::Bmp);
    EXPECT_EQ(frameCount(encode(edited(), PictureKind::Ico, {bmp, {}})), 1U);
}

TEST(IconEncoder, ThePictureTakesThePlaceOfTheOneThatIsShown) {
    Bytes broken = encoded(QImage(40, 40, QImage::Format_RGB32), "PNG");
    broken.resize(40); // the largest one, but nothing shows it
    const Bytes before =
        iconFile(kIcon, {{smallFrame(1), 0, 0}, {broken, 0, 0}, {smallFrame(0xFF000002), 0, 0}});
    const Bytes after = encode(edited(), PictureKind::Ico, {before, {}});
    EXPECT_EQ(shown(after), edited());
    EXPECT_EQ(dataOf(after, 1), broken);
    EXPECT_EQ(dataOf(after, 2), smallFrame(0xFF000002));
}

TEST(IconEncoder, WrongLengthsLoseNothing) {
    const Bytes first = smallFrame(0xFF010203);
    const Bytes large = encoded(colourful({20, 10}, Alpha::Opaque), "PNG");
    const Bytes sound = iconFile(kIcon, {{first, 0, 0}, {large, 0, 0}});
    for (const std::uint32_t wrong : {0U, 5U, 0x7FFFFFFFU}) {
        Bytes before = sound;
        set32(before, entryAt(0) + 8, wrong);
        const Bytes after = encode(edited(), PictureKind::Ico, {before, {}});
        EXPECT_EQ(dataOf(after, 0), first) << wrong;
    }
}

TEST(IconEncoder, FramesMaySharePixelsButNotMultiplyThem) {
    const Bytes frame = smallFrame(0xFF010203);
    Bytes before =
        iconFile(kIcon, {{frame, 0, 0}, {frame, 0, 0}, {encoded(edited(), "PNG"), 0, 0}});
    set32(before, entryAt(1) + 12, read(before, entryAt(0) + 12, 4));
    const Bytes after = encode(edited(), PictureKind::Ico, {before, {}});
    ASSERT_EQ(frameCount(after), 3U);
    EXPECT_EQ(read(after, entryAt(0) + 12, 4), read(after, entryAt(1) + 12, 4));
    EXPECT_EQ(dataOf(after, 1), frame);

    // A thousand headers one behind the other, each of a picture that takes 40 kilobytes.
    constexpr std::size_t kMany = 1000;
    const Bytes header = infoHeader({100, 200, 32, 0, 0});
    std::vector<IconFrame> frames(kMany);
    for (std::size_t i = 0; i < kMany; ++i) {
        frames[0].data = joined(frames[0].data, header);
    }
    frames[0].data.resize(frames[0].data.size() + 40'000);
    Bytes hostile = iconFile(kIcon, frames);
    const std::uint32_t data = read(hostile, entryAt(0) + 12, 4);
    for (std::size_t i = 0; i < kMany; ++i) {
        set32(hostile, entryAt(i) + 12, data + static_cast<std::uint32_t>(i * header.size()));
    }
    EXPECT_THROW(encode(edited(), PictureKind::Ico, {hostile, {}}), EncodeError);
}

TEST(IconEncoder, TheMaskHidesTheSameWithoutAlpha) {
    const QImage image = colourful({33, 9}, Alpha::OnOrOff);
    Bytes file = encode(image, PictureKind::Ico);
    constexpr std::size_t kPixels = 6 + kEntry + 40;
    constexpr std::size_t kCount = std::size_t{33} * 9;
    for (std::size_t i = 0; i < kCount; ++i) {
        file.at(kPixels + 4 * i + 3) = std::byte{0};
    }
    EXPECT_EQ(shown(file), image);
}

// icotool finds fault with icons that tell a resolution.
TEST(IconEncoder, TheBitmapTellsItsSizeTwiceOverAndNoResolution) {
    const Bytes frame = dataOf(encode(edited(), PictureKind::Ico), 0);
    EXPECT_EQ(read(frame, 4, 4), 20U);
    EXPECT_EQ(read(frame, 8, 4), 20U) << "ten rows, and ten of the mask";
    EXPECT_EQ(read(frame, 14, 2), 32U);
    for (const std::size_t field : {16U, 24U, 28U, 32U, 36U}) {
        EXPECT_EQ(read(frame, field, 4), 0U) << field;
    }
}

TEST(IconEncoder, LargeFramesArePngPictures) {
    const auto isPng = [](QSize size) {
        const Bytes file = encode(colourful(size, Alpha::Any), PictureKind::Ico);
        return dataOf(file, 0).at(1) == std::byte{'P'};
    };
    EXPECT_FALSE(isPng({255, 255}));
    EXPECT_TRUE(isPng({256, 16}));
    EXPECT_TRUE(isPng({16, 256}));
    const Bytes file = encode(colourful({256, 16}, Alpha::Any), PictureKind::Ico);
    EXPECT_EQ(read(file, 6, 1), 0U) << "stands for 256";
    EXPECT_EQ(read(file, 7, 1), 16U);
}

TEST(IconEncoder, AHotSpotOutsideComesToTheEdge) {
    const auto hotSpotOf = [](QPoint wanted) {
        return decode(encode(edited(), PictureKind::Cur, {{}, wanted})).facts.hotSpot;
    };
    EXPECT_EQ(hotSpotOf({7, 8}), QPoint(7, 8));
    EXPECT_EQ(hotSpotOf({-1, 70000}), QPoint(0, 9));
    EXPECT_EQ(hotSpotOf({20, -5}), QPoint(19, 0));
}

} // namespace
} // namespace imaging::testing
