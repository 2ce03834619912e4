// The frames of icons and cursors, one by one.
#include "imaging/picture_bytes.h"
#include "picture/icon_frames.h"

#include <gtest/gtest.h>

namespace picture::testing {
namespace {

using namespace imaging::testing;

constexpr int kIcon = 1;
constexpr int kCursor = 2;

Bytes square(int side, std::uint32_t pixel) {
    const auto count = static_cast<std::size_t>(side) * static_cast<std::size_t>(side);
    return iconFrame32(side, side, std::vector(count, pixel),
                       std::vector<int>(static_cast<std::size_t>(side), 0));
}

TEST(IconFrames, StandInTheOrderOfTheFileWithTheBestOneMarked) {
    Bytes broken = square(48, 0xFF0000FF); // the largest, but it ends within its pixels
    broken.resize(60);
    const auto frames = iconFrames(iconFile(
        kIcon,
        {{square(16, 0xFF112233)}, {square(32, 0x80445566)}, {square(2, 0xFF778899)}, {broken}}));
    ASSERT_EQ(frames.size(), 4U);
    EXPECT_EQ(frames[0].size, QSize(16, 16));
    EXPECT_EQ(frames[0].image.pixel(5, 5), 0xFF112233);
    EXPECT_EQ(frames[1].image.pixel(5, 5), 0x80445566) << "alpha stays";
    EXPECT_EQ(frames[1].bitsPerPixel, 32);
    EXPECT_FALSE(frames[1].hotSpot);
    EXPECT_TRUE(frames[3].image.isNull());
    for (std::size_t i = 0; i < frames.size(); ++i) {
        EXPECT_EQ(frames[i].isShown, i == 1) << i;
    }
}

TEST(IconFrames, TellHotSpotsOfCursorsInsideTheFrame) {
    const auto frames = iconFrames(
        iconFile(kCursor, {{square(16, 0xFF112233), 3, 4}, {square(8, 0xFF112233), 900, 2}}));
    ASSERT_EQ(frames.size(), 2U);
    EXPECT_EQ(frames[0].hotSpot, QPoint(3, 4));
    EXPECT_EQ(frames[1].hotSpot, QPoint(7, 2));
}

TEST(IconFrames, AreBoundedAndNoneOfOtherPictures) {
    for (const Bytes& picture : oneOfEachKind()) {
        const bool isIcon = picture[0] == std::byte{0};
        EXPECT_EQ(iconFrames(picture).empty(), !isIcon);
    }
    const std::vector<imaging::testing::IconFrame> many(5000, {square(1, 0xFF112233)});
    EXPECT_EQ(iconFrames(iconFile(kIcon, many)).size(), 256U);
    EXPECT_TRUE(iconFrames({}).empty());
}

} // namespace
} // namespace picture::testing
