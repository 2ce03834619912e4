// EMF+ pens: how wide lines become, how they end and what they leave out.
#include "metafile/plus_bytes.h"

#include <gtest/gtest.h>

namespace metafile::testing {
namespace {

constexpr std::uint32_t kBlack = 0xFF000000;

// A line from point to point, drawn with pen object 1.
PlusFile lineFile(const Data& penData, const std::vector<float>& points) {
    PlusFile file;
    const auto count = static_cast<std::uint32_t>(points.size() / 2);
    return file.object(2, 1, penData).add(0x400D, 1, Data().word(count).reals(points));
}

bool isInk(const QImage& image, int x, int y) {
    return qGray(image.pixel(x, y)) < 128;
}

// 'x' for ink, '.' for paper, along a column or a row.
std::string column(const QImage& image, int x, const std::vector<int>& rows) {
    std::string result;
    for (const int y : rows) {
        result += isInk(image, x, y) ? 'x' : '.';
    }
    return result;
}
std::string row(const QImage& image, int y, const std::vector<int>& columns) {
    std::string result;
    for (const int x : columns) {
        result += isInk(image, x, y) ? 'x' : '.';
    }
    return result;
}

TEST(PlusPens, WidthsFollowTheWorldInBothDirections) {
    const auto drawn = [](std::uint32_t unit) {
        Data wide = pen(2, kBlack);
        set32(wide.bytes, 12, unit);
        PlusFile file;
        file.object(2, 1, wide).add(0x402E, 0, Data().reals({1, 4}));
        file.add(0x400D, 1, Data().word(2).reals({0, 5, 40, 5}));
        file.add(0x400D, 1, Data().word(2).reals({20, 0, 20, 10}));
        return file.drawn();
    };
    const QImage world = drawn(0);
    EXPECT_EQ(column(world, 5, {14, 17, 20, 23, 26}), ".xxx.");
    EXPECT_EQ(row(world, 35, {17, 19, 20, 23}), ".xx.");
    const QImage pixels = drawn(2); // not in world units: the world does not matter
    EXPECT_EQ(column(pixels, 5, {17, 19, 20, 23}), ".xx.");
    EXPECT_EQ(row(pixels, 35, {17, 19, 20, 23}), ".xx.");
}

TEST(PlusPens, TheNibHasATransformOfItsOwn) {
    const Data nib = penWith(1, 2, kBlack, Data().reals({1, 0, 0, 4, 0, 0}));
    EXPECT_EQ(column(lineFile(nib, {0, 20, 40, 20}).drawn(), 20, {14, 17, 20, 23, 26}), ".xxx.");
    EXPECT_EQ(row(lineFile(nib, {20, 0, 20, 40}).drawn(), 20, {17, 19, 20, 23}), ".xx.");
    // A nib without any extent draws a hairline.
    const Data flat = penWith(1, 2, kBlack, Data().reals({0, 0, 0, 0, 0, 0}));
    EXPECT_TRUE(isInk(lineFile(flat, {0, 20, 40, 20}).drawn(), 20, 20));
}

TEST(PlusPens, EndsHaveCapsAndHeads) {
    const auto drawn = [](std::uint32_t start, std::uint32_t end) {
        const Data ends = penWith(6, 4, kBlack, Data().words({start, end}));
        return lineFile(ends, {12, 20, 28, 20}).drawn();
    };
    const std::vector<int> beyond{9, 11, 20, 28, 30, 31};
    EXPECT_EQ(row(drawn(0, 0), 20, beyond), "..x...");
    EXPECT_EQ(row(drawn(1, 0), 21, beyond), ".xx..."); // a square at the start alone
    EXPECT_EQ(column(drawn(0, 0x13), 28, {15, 17, 20, 22, 25}), ".xxx."); // a diamond
    const QImage arrow = drawn(0, 0x14);
    EXPECT_EQ(column(arrow, 22, {15, 17, 20, 22, 25}), ".xxx.");
    EXPECT_EQ(column(arrow, 26, {17, 18, 20, 21, 22}), "..x.."); // the line ends before the tip

    // Two figures in one path: both have ends.
    Data path = Data().word(kVersion).words({4, 0x4000}).shorts({5, 10, 20, 10, 5, 30, 20, 30});
    putBytes(path.bytes, {0, 1, 0, 1});
    PlusFile file;
    file.object(2, 1, penWith(4, 4, kBlack, Data().word(0x11))).object(3, 2, path);
    const QImage both = file.add(0x4015, 2, Data().word(1)).drawn();
    EXPECT_TRUE(isInk(both, 22, 13));
    EXPECT_TRUE(isInk(both, 22, 33));
}

TEST(PlusPens, CustomHeadsAreDrawnForTheLinesDirection) {
    // An arrow four widths wide and three long, its base straight.
    Data arrow =
        Data().word(kVersion).word(1).reals({4, 3, 0}).word(1).words({0, 0, 0}).reals({10});
    arrow.reals({1, 0, 0, 0, 0});
    Data options = Data().word(static_cast<std::uint32_t>(arrow.bytes.size()));
    const Data ends = penWith(0x1000, 4, kBlack, options.append(arrow.bytes));
    const QImage right = lineFile(ends, {2, 20, 36, 20}).drawn();
    EXPECT_EQ(column(right, 25, {11, 14, 20, 26, 29}), ".xxx.");
    EXPECT_FALSE(isInk(right, 35, 23));
    const QImage up = lineFile(ends, {20, 38, 20, 4}).drawn();
    EXPECT_EQ(row(up, 14, {11, 14, 20, 26, 29}), ".xxx.");

    // A filled square beyond the end, told as a path.
    Data square = Data().word(kVersion).words({4, 0x4000}).shorts({-1, 0, 1, 0, 1, 2, -1, 2});
    putBytes(square.bytes, {0, 1, 1, 0x81});
    Data cap = Data().word(kVersion).word(0).words({1, 0}).reals({0}).words({0, 0, 0}).reals({10});
    cap.reals({1, 0, 0, 0, 0}).word(static_cast<std::uint32_t>(square.bytes.size()));
    cap.append(square.bytes);
    Data sized = Data().word(static_cast<std::uint32_t>(cap.bytes.size()));
    const Data custom = penWith(0x1000, 4, kBlack, sized.append(cap.bytes));
    EXPECT_EQ(row(lineFile(custom, {2, 20, 20, 20}).drawn(), 23, {18, 21, 27, 29}), ".xx.");
}

TEST(PlusPens, DashesAreWidthsLong) {
    const Data dashed = penWith(0x100, 4, kBlack, Data().word(2).reals({2, 1}));
    EXPECT_EQ(row(lineFile(dashed, {0, 20, 40, 20}).drawn(), 20, {2, 6, 10, 14, 18, 22}), "xx.xx.");
    // Dashes of no length, and more than anybody could see: a line.
    const Data none = penWith(0x100, 4, kBlack, Data().word(2).reals({0, 0}));
    EXPECT_TRUE(isInk(lineFile(none, {0, 20, 40, 20}).drawn(), 10, 20));
    const Data tiny = penWith(0x100, 4, kBlack, Data().word(2).reals({1e-6F, 1e-6F}));
    EXPECT_TRUE(isInk(lineFile(tiny, {0, 20, 40, 20}).drawn(), 10, 20));
}

TEST(PlusPens, CornersBeyondTheLimitAreCutOrBevelled) {
    const auto drawn = [](std::uint32_t join, float limit) {
        const Data corner = penWith(0x18, 4, kBlack, Data().word(join).reals({limit}));
        return lineFile(corner, {0, 17, 20, 20, 0, 23}).drawn(); // 6.7 widths long
    };
    const std::vector<int> along{19, 24, 29};
    EXPECT_EQ(row(drawn(0, 8), 20, along), "xxx");
    EXPECT_EQ(row(drawn(0, 4), 20, along), "xx.");
    EXPECT_EQ(row(drawn(3, 8), 20, along), "xxx");
    EXPECT_EQ(row(drawn(3, 4), 20, along), "x..");
    EXPECT_EQ(row(drawn(1, 8), 20, along), "x..");
    EXPECT_EQ(row(drawn(9, 8), 20, along), "xxx") << "an unknown one";
}

TEST(PlusPens, LinesMayLieInsideOrBeSeveral) {
    PlusFile inside;
    inside.object(2, 1, penWith(0x200, 6, kBlack, Data().word(1)));
    inside.add(0x400B, 1, Data().word(1).reals({10, 10, 20, 20}));
    EXPECT_EQ(row(inside.fill({0, 0, 5, 40}, kBlack).drawn(), 20, {2, 8, 11, 15, 18, 24, 31}),
              "x.xx.x.");

    const Data two = penWith(0x400, 12, kBlack, Data().word(4).reals({0, 0.25F, 0.75F, 1}));
    EXPECT_EQ(column(lineFile(two, {0, 20, 40, 20}).drawn(), 20, {12, 15, 18, 21, 24, 28}),
              ".x..x.");
}

} // namespace
} // namespace metafile::testing
