// Pictures that lie: clear errors, no crash, no large allocation.
#include "imaging/picture_bytes.h"
#include "picture/picture.h"

#include <gtest/gtest.h>
#include <random>
#include <sys/resource.h>

namespace picture::testing {
namespace {

using imaging::testing::bmpFile;
using imaging::testing::Bytes;
using imaging::testing::Dib;
using imaging::testing::encoded;
using imaging::testing::gifFile;
using imaging::testing::iconFile;
using imaging::testing::iconFrame32;
using imaging::testing::infoHeader;
using imaging::testing::oneOfEachKind;
using imaging::testing::put32;
using imaging::testing::putBytes;
using imaging::testing::set32;

// Decodes and measures; whatever comes of it but a crash or another exception is fine.
void survive(const Bytes& bytes) {
    for (const bool whole : {false, true}) {
        try {
            if (whole) {
                decode(bytes);
            } else {
                measure(bytes);
            }
        } catch (const DecodeError& error) {
            EXPECT_STRNE(error.what(), "");
        }
    }
}

TEST(HostilePictures, TooManyPixelsAreRefusedBeforeMemoryIsTaken) {
    const auto refused = [](const Bytes& bytes) {
        EXPECT_THROW(measure(bytes), DecodeError);
        EXPECT_THROW(decode(bytes), DecodeError);
    };
    const Bytes row(64);
    refused(bmpFile(infoHeader({8000, 5001, 1, 0, 0}), row));
    refused(bmpFile(infoHeader({0x7FFFFFFF, 0x7FFFFFFF, 32, 0, 0}), row));
    refused(bmpFile(infoHeader({1, static_cast<int>(0x80000000), 32, 0, 0}), row));
    refused(bmpFile(infoHeader({0, 5, 24, 0, 0}), row));
    refused(bmpFile(infoHeader({-5, 5, 24, 0, 0}), row));
    refused(iconFile(1, {{iconFrame32(30000, 30000, {1}, {0}), 0, 0}}));
    refused(gifFile({65535, 65535, 0, 0, 1, 1, false, -1, {1}}));
    refused(gifFile({1, 1, 0, 0, 65535, 65535, false, -1, {1}}));
    Bytes jpg = encoded(QImage(8, 8, QImage::Format_RGB32), "JPG");
    for (std::size_t i = 0; i + 9 < jpg.size(); ++i) { // height and width behind the frame marker
        if (jpg[i] == std::byte{0xFF} && jpg[i + 1] == std::byte{0xC0}) {
            std::fill_n(jpg.begin() + static_cast<std::ptrdiff_t>(i + 5), 4, std::byte{0x7F});
        }
    }
    refused(jpg);
}

TEST(HostilePictures, ALargePlainPictureLoads) {
    constexpr int kSide = 6000;
    const Bytes pixels(std::size_t{kSide} * kSide / 8);
    EXPECT_EQ(decode(bmpFile(infoHeader({kSide, kSide, 1, 0, 0}), pixels)).image().size(),
              QSize(kSide, kSide));
}

// Qt's own limit is lower; whether a JPG was read before must not matter.
TEST(HostilePictures, ALargePngFrameLoads) {
    QImage image(5900, 5900, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    const Bytes icon = iconFile(1, {{encoded(image, "PNG"), 0, 0}});
    image = {};
    EXPECT_EQ(decode(icon).image().size(), QSize(5900, 5900));
}

TEST(HostilePictures, EndlessRunsStayInTheirRow) {
    Bytes dib = infoHeader({2, 2, 8, 1, 2});
    put32(dib, 0x000000);
    put32(dib, 0xFF0000);
    Bytes runs(std::size_t{17} << 20U, std::byte{0xFF}); // more pixels than an int counts
    for (std::size_t i = 1; i < runs.size(); i += 2) {
        runs[i] = std::byte{1};
    }
    putBytes(runs, {0, 2, 255, 0, 1, 1});
    const QImage image = decode(bmpFile(dib, runs)).image();
    EXPECT_EQ(image.pixel(0, 1), qRgb(255, 0, 0));
    EXPECT_EQ(image.pixel(1, 1), qRgb(255, 0, 0));
    EXPECT_EQ(qAlpha(image.pixel(0, 0)), 0);
}

TEST(HostilePictures, HeadersThatContradictThemselvesAreRefused) {
    Bytes palette(64);
    for (const Dib& dib : {Dib{4, 4, 3, 0, 0}, Dib{4, 4, 8, 2, 0}, Dib{4, 4, 24, 1, 0},
                           Dib{4, 4, 24, 3, 0}, Dib{4, 4, 32, 9, 0}}) {
        EXPECT_THROW(decode(bmpFile(infoHeader(dib), palette)), DecodeError);
    }
    EXPECT_THROW(decode(iconFile(1, {})), DecodeError);
    Bytes icon = iconFile(1, {{iconFrame32(2, 2, {1, 2, 3, 4}, {0, 0}), 0, 0}});
    set32(icon, 18, 0xFFFFFFF0); // the frame's offset
    EXPECT_THROW(decode(icon), DecodeError);
    EXPECT_THROW(decode(Bytes()), DecodeError);
}

TEST(HostilePictures, EveryTruncationIsSurvived) {
    for (const Bytes& whole : oneOfEachKind()) {
        for (std::size_t length = 0; length < whole.size(); ++length) {
            survive(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)));
        }
    }
}

TEST(HostilePictures, RandomDamageIsSurvivedWithinBounds) {
    rusage before{};
    getrusage(RUSAGE_SELF, &before);
    std::mt19937 random(20);
    const std::vector<Bytes> all = oneOfEachKind();
    for (int round = 0; round < 1500; ++round) {
        Bytes bytes = all[static_cast<std::size_t>(round) % all.size()];
        const std::size_t flips = 1 + random() % 6;
        for (std::size_t i = 0; i < flips; ++i) {
            bytes[random() % bytes.size()] = static_cast<std::byte>(random() & 0xFFU);
        }
        survive(bytes);
    }
    rusage after{};
    getrusage(RUSAGE_SELF, &after);
    // The sanitizers keep what was freed for a while, so this bound is theirs as well.
    EXPECT_LT(after.ru_maxrss - before.ru_maxrss, 600 * 1024);
}

} // namespace
} // namespace picture::testing
