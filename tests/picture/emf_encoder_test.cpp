#include "imaging/encoder_pictures.h"
#include "imaging/encoding/encoders.h"
#include "picture/picture.h"

#include <QPainter>

#include <gtest/gtest.h>

namespace picture::testing {
namespace {

using imaging::encode;
using imaging::testing::Alpha;
using imaging::testing::colourful;
using imaging::testing::kEveryAlpha;

using Bytes = std::vector<std::byte>;

QImage onPaper(const QImage& image) {
    QImage paper(image.size(), QImage::Format_RGB32);
    paper.fill(Qt::white);
    QPainter(&paper).drawImage(0, 0, image);
    return paper;
}

std::uint32_t read32(const Bytes& bytes, std::size_t at) {
    std::uint32_t value = 0;
    for (std::size_t i = 4; i-- > 0;) {
        value = value << 8U | std::to_integer<std::uint32_t>(bytes.at(at + i));
    }
    return value;
}

// The types of the records, after checking that they fill the file.
std::vector<std::uint32_t> recordsOf(const Bytes& file) {
    std::vector<std::uint32_t> types;
    std::size_t at = 0;
    while (at < file.size()) {
        types.push_back(read32(file, at));
        const std::uint32_t size = read32(file, at + 4);
        EXPECT_EQ(size % 4, 0U);
        if (size < 8) {
            break;
        }
        at += size;
    }
    EXPECT_EQ(at, file.size());
    return types;
}

TEST(EmfEncoder, IsDrawnBackPixelForPixelOnPaper) {
    for (const Alpha alpha : kEveryAlpha) {
        for (const QSize size : {QSize(1, 1), QSize(1, 7), QSize(31, 2), QSize(100, 75),
                                 QSize(641, 479), QSize(32767, 1), QSize(2, 3001)}) {
            const QImage image = colourful(size, alpha);
            const Picture picture = decode(encode(image, PictureKind::Emf));
            EXPECT_EQ(picture.facts().kind, PictureKind::Emf);
            ASSERT_EQ(picture.facts().pixels, size);
            EXPECT_EQ(picture.scaledTo(size).convertToFormat(QImage::Format_RGB32), onPaper(image))
                << size.width() << ' ' << int(alpha);
            EXPECT_FALSE(picture.isDrawnInPart());
        }
    }
}

TEST(EmfEncoder, TheRecordsFillTheFile) {
    constexpr std::uint32_t kStretchDiBits = 81;
    constexpr std::uint32_t kAlphaBlend = 114;
    const auto typesOf = [](const QImage& image) {
        const Bytes file = encode(image, PictureKind::Emf);
        EXPECT_EQ(read32(file, 48), file.size());
        const std::vector<std::uint32_t> types = recordsOf(file);
        EXPECT_EQ(read32(file, 52), types.size());
        return types;
    };
    using Types = std::vector<std::uint32_t>;
    EXPECT_EQ(typesOf(colourful({9, 7}, Alpha::Opaque)), (Types{1, 21, kStretchDiBits, 14}));
    EXPECT_EQ(typesOf(colourful({9, 7}, Alpha::Any)), (Types{1, 21, kAlphaBlend, 14}));
}

// A picture with too many pixels for one record, each of its rows in another colour.
TEST(EmfEncoder, StripsOfALargePictureMeet) {
    constexpr int kWidth = 5000;
    constexpr int kHeight = 3203;
    QImage image(kWidth, kHeight, QImage::Format_RGB32);
    for (int y = 0; y < kHeight; ++y) {
        std::fill_n(reinterpret_cast<QRgb*>(image.scanLine(y)), kWidth, 0xFF000000U + unsigned(y));
    }
    const Bytes file = encode(image, PictureKind::Emf);
    ASSERT_EQ(recordsOf(file), (std::vector<std::uint32_t>{1, 21, 81, 81, 14}));
    std::uint32_t row = 0;
    for (std::size_t at = 108 + 12; read32(file, at) == 81; at += read32(file, at + 4)) {
        const std::uint32_t rows = read32(file, at + 76);
        EXPECT_EQ(read32(file, at + 28), row) << "where it is drawn";
        EXPECT_EQ(read32(file, at + 44), rows);
        EXPECT_GT(rows, 1500U);
        // The last three bytes are the first row's: 15000 bytes a row, rows from the bottom.
        const std::size_t end = at + read32(file, at + 4);
        EXPECT_EQ(read32(file, end - 4) >> 8U, row) << "what is drawn";
        row += rows;
    }
    EXPECT_EQ(row, kHeight);
}

} // namespace
} // namespace picture::testing
