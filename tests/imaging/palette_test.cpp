#include "imaging/encoding/nearest_colour.h"
#include "imaging/encoding/palette.h"

#include <gtest/gtest.h>
#include <random>

namespace imaging::testing {
namespace {

TEST(NearestColour, IsTheOneThatComparingAllFinds) {
    std::mt19937 random(3);
    std::uniform_real_distribution<float> anywhere(0, 255);
    const auto any = [&] { return Colour{anywhere(random), anywhere(random), anywhere(random)}; };
    for (const std::size_t count : {1U, 2U, 20U, 256U}) {
        std::vector<Colour> colours(count);
        std::generate(colours.begin(), colours.end(), any);
        NearestColour nearest(colours);
        for (int i = 0; i < 5'000; ++i) {
            // Cells begin at whole numbers, so these matter more than others.
            const Colour wanted =
                i % 2 == 0 ? any() : toColour(static_cast<QRgb>(random()) & 0xF8FFF8U);
            const auto found =
                std::min_element(colours.begin(), colours.end(), [&](Colour one, Colour other) {
                    return squaredDistance(one, wanted) < squaredDistance(other, wanted);
                });
            ASSERT_EQ(nearest.of(wanted), static_cast<std::size_t>(found - colours.begin()));
        }
    }
}

TEST(Palette, FindsTheMiddlesOfClouds) {
    std::mt19937 random(5);
    const std::vector<QRgb> middles{qRgb(20, 30, 40), qRgb(200, 40, 90), qRgb(100, 220, 150),
                                    qRgb(230, 230, 30)};
    QImage image(200, 200, QImage::Format_ARGB32);
    for (int i = 0; i < 40'000; ++i) {
        const auto offset = [&] { return static_cast<int>(random() % 21) - 10; };
        const QRgb middle = middles[random() % 100 == 0 ? 3 : random() % 3]; // one is rare
        image.setPixel(
            i % 200, i / 200,
            qRgb(qRed(middle) + offset(), qGreen(middle) + offset(), qBlue(middle) + offset()));
    }
    image.setPixel(0, 0, qRgba(255, 0, 255, 100)); // seen through: no colour of the picture's
    const std::vector<QRgb> found = bestColours(image, 4);
    ASSERT_EQ(found.size(), 4U);
    for (const QRgb middle : middles) {
        EXPECT_TRUE(std::any_of(
            found.begin(), found.end(),
            [&](QRgb colour) { return squaredDistance(toColour(colour), toColour(middle)) <= 9; }))
            << std::hex << middle;
    }
}

TEST(Palette, TakesNoMoreColoursThanThereAre) {
    QImage image(4, 1, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    EXPECT_TRUE(bestColours(image, 256).empty());
    EXPECT_TRUE(exactColours(image, 256)->empty());
    image.setPixel(1, 0, qRgb(255, 255, 255));
    image.setPixel(3, 0, qRgba(9, 8, 7, 200));
    EXPECT_EQ(*exactColours(image, 2), (std::vector<QRgb>{0xFFFFFFFF, qRgb(9, 8, 7)}));
    EXPECT_FALSE(exactColours(image, 1).has_value());
    EXPECT_EQ(bestColours(image, 256).size(), 2U);
}

} // namespace
} // namespace imaging::testing
