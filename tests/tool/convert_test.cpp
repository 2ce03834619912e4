#include "imaging/encoding/encoders.h"
#include "picture/picture.h"
#include "tool/tool_fixture.h"

#include <QImage>

namespace tool::testing {
namespace {

using imaging::PictureKind;

class ConvertTest : public ToolTest {
  protected:
    // Writes a picture that differs in every pixel and returns its path.
    std::string write(const std::string& name, PictureKind kind, const imaging::Kept& kept = {}) {
        const std::vector<std::byte> bytes = imaging::encode(sample(), kind, kept);
        writeFile(folder() / name, {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
        return pathOf(name);
    }

    static QImage sample() {
        QImage image(6, 4, QImage::Format_ARGB32);
        for (int i = 0; i < 24; ++i) {
            image.setPixel(i % 6, i / 6, qRgb(10 * i, 255 - 7 * i, 100 + i));
        }
        return image;
    }

    std::string pathOf(const std::string& name) const { return (folder() / name).string(); }

    picture::Picture read(const std::string& name) const {
        const std::string content = contentOf(folder() / name);
        return picture::decode(std::as_bytes(std::span(content)));
    }

    QImage converted(const std::string& source, const std::string& name,
                     std::vector<std::string> options = {}) {
        options.insert(options.begin(), {"convert", source, pathOf(name), "--replace"});
        succeed(options);
        const picture::Picture picture = read(name);
        return picture.scaledTo(picture.facts().pixels).convertToFormat(QImage::Format_ARGB32);
    }

    void refuse(const std::vector<std::string>& words, const std::string& expected) {
        const Result result = run(words);
        EXPECT_EQ(result.status, ExitStatus::WrongUsage) << words.back();
        EXPECT_NE(result.err.find(expected), std::string::npos) << result.err;
    }
};

TEST_F(ConvertTest, EveryTypeComesOutByItsName) {
    const std::string source = write("a.bmp", PictureKind::Bmp);
    const std::vector<std::pair<std::string, PictureKind>> targets{
        {"b.bmp", PictureKind::Bmp}, {"b.GIF", PictureKind::Gif}, {"b.jpg", PictureKind::Jpg},
        {"b.ico", PictureKind::Ico}, {"b.Cur", PictureKind::Cur}, {"b.emf", PictureKind::Emf}};
    for (const auto& [name, kind] : targets) {
        const QImage image = converted(source, name);
        EXPECT_EQ(read(name).facts().kind, kind);
        if (kind == PictureKind::Jpg) {
            EXPECT_EQ(image.size(), sample().size());
        } else {
            EXPECT_EQ(image, sample()) << name;
        }
        EXPECT_EQ(converted(pathOf(name), "back.bmp").size(), sample().size()) << name;
    }
    EXPECT_EQ(converted(pathOf("b.emf"), "wide.gif", {"--width", "12"}).size(), QSize(12, 8));
    EXPECT_EQ(converted(source, "small.gif", {"--width=3"}).size(), QSize(3, 2));
}

TEST_F(ConvertTest, OperationsRunInTheOrderGiven) {
    const std::string source = write("a.bmp", PictureKind::Bmp);
    const QImage image = sample();
    EXPECT_EQ(converted(source, "b.bmp", {"--flip"}), image.mirrored(false, true));
    EXPECT_EQ(converted(source, "b.bmp", {"--reverse", "--invert", "--invert"}),
              image.mirrored(true, false));
    const std::vector<std::string> turn{"--rotate", "90", "--grow"};
    const QImage turned = converted(source, "b.bmp", turn);
    EXPECT_EQ(turned.size(), QSize(4, 6));
    EXPECT_EQ(turned.pixel(3, 0), image.pixel(0, 0));
    EXPECT_EQ(converted(source, "b.bmp", {"--rotate=90", "--grow", "--flip"}),
              turned.mirrored(false, true));
    EXPECT_EQ(converted(source, "b.bmp", {"--flip", "--rotate=90", "--grow"}),
              turned.mirrored(true, false));
    EXPECT_EQ(converted(source, "b.bmp", {"--rotate", "-90", "--grow", "--rotate", "90", "--grow"}),
              image);

    const QImage filled = converted(source, "b.bmp", {"--rotate=90", "--fill", "FF8000"});
    EXPECT_EQ(filled.size(), QSize(6, 4));
    EXPECT_EQ(filled.pixel(0, 0), qRgb(0xFF, 0x80, 0));
    EXPECT_EQ(converted(source, "b.bmp", {"--rotate=45.5", "--grow"}).size().width() > 6, true);
}

TEST_F(ConvertTest, AmountsReachTheirOperations) {
    const std::string source = write("a.bmp", PictureKind::Bmp);
    const auto pixel = [&](const std::vector<std::string>& options) {
        return converted(source, "b.bmp", options).pixel(1, 0); // of 10, 248, 101
    };
    EXPECT_EQ(pixel({"--intensity", "1000"}), 0xFFFFFFFF);
    EXPECT_EQ(pixel({"--intensity", "-1000"}), 0xFF000000);
    EXPECT_EQ(pixel({"--contrast=-1000"}), qRgb(128, 128, 128));
    EXPECT_EQ(pixel({"--saturation", "-1000"}), qRgb(129, 129, 129));
    EXPECT_EQ(pixel({"--hue", "12000"}), qRgb(101, 10, 248));
    EXPECT_EQ(pixel({"--hue", "-12000"}), qRgb(248, 101, 10));
    EXPECT_EQ(pixel({"--invert"}), qRgb(245, 7, 154));
}

TEST_F(ConvertTest, AnIconKeepsItsFramesAndACursorItsHotSpot) {
    const QImage small = QImage(2, 2, QImage::Format_RGB32);
    const std::vector<std::byte> other = imaging::encode(small, PictureKind::Ico);
    std::string two("\0\0\1\0\2\0", 6); // the sample's frame, and one of other's
    const std::string large = contentOf(write("large.ico", PictureKind::Ico));
    const std::string little(reinterpret_cast<const char*>(other.data()), other.size());
    const auto place = [](std::size_t at) { return std::string{static_cast<char>(at), 0, 0, 0}; };
    two += large.substr(6, 12) + place(38) + little.substr(6, 12) + place(38 + large.size() - 22);
    two += large.substr(22) + little.substr(22);
    writeFile(folder() / "two.ico", two);
    EXPECT_EQ(converted(pathOf("two.ico"), "two.ico", {"--flip"}), sample().mirrored(false, true));
    EXPECT_EQ(contentOf(folder() / "two.ico").size(), two.size());
    EXPECT_NE(contentOf(folder() / "two.ico").find(little.substr(22)), std::string::npos);
    EXPECT_EQ(converted(pathOf("two.ico"), "b.ico", {"--width=3"}).size(), QSize(3, 2));

    imaging::Kept kept;
    kept.hotSpot = {1, 3};
    const std::string cursor = write("a.cur", PictureKind::Cur, kept);
    const auto hotSpot = [&](const std::vector<std::string>& options) {
        converted(cursor, "b.cur", options);
        return read("b.cur").facts().hotSpot;
    };
    EXPECT_EQ(hotSpot({}), QPoint(1, 3));
    EXPECT_EQ(hotSpot({"--invert"}), QPoint(1, 3));
    EXPECT_EQ(hotSpot({"--flip"}), QPoint(1, 0));
    EXPECT_EQ(hotSpot({"--reverse"}), QPoint(4, 3));
    EXPECT_EQ(hotSpot({"--rotate=90", "--grow"}), QPoint(0, 1));
    EXPECT_EQ(hotSpot({"--rotate=-90", "--grow", "--flip"}), QPoint(3, 1));
}

TEST_F(ConvertTest, WhatIsThereStaysUnlessToldOtherwise) {
    const std::string source = write("a.bmp", PictureKind::Bmp);
    writeFile(folder() / "b.gif", "mine");
    fail({"convert", source, pathOf("b.gif")}, pathOf("b.gif"));
    fail({"convert", pathOf("missing.bmp"), pathOf("b.gif"), "--replace"}, "missing.bmp");
    writeFile(folder() / "broken.bmp", "BM, but no bitmap");
    fail({"convert", pathOf("broken.bmp"), pathOf("b.gif"), "--replace"}, "broken.bmp");
    fail({"convert", picture("wide.bmp", 40000, 1), pathOf("b.emf")}, pathOf("b.emf"));
    EXPECT_EQ(contentOf(folder() / "b.gif"), "mine");
    EXPECT_FALSE(std::filesystem::exists(folder() / "b.emf"));
    succeed({"convert", source, source, "--replace", "--flip"});
    EXPECT_EQ(read("a.bmp").image(), sample().mirrored(false, true));
}

TEST_F(ConvertTest, WrongWordsAreWrongUsage) {
    const std::string source = write("a.bmp", PictureKind::Bmp);
    const std::string target = pathOf("b.bmp");
    refuse({"convert", source, "-"}, "-");
    refuse({"convert", "-", target}, "-");
    for (const std::string name : {"b.wmf", "b.png", "b", ".bmp"}) {
        refuse({"convert", source, pathOf(name)}, name);
    }
    for (const std::string option :
         {"--rotate=x", "--rotate=361", "--rotate=nan", "--rotate=1e2", "--rotate=", "--hue=18001",
          "--hue=1.5", "--saturation=-1001", "--contrast=", "--intensity=+", "--fill=FFF",
          "--fill=GGGGGG", "--grow", "--height=3", "--width=0", "--flip=1"}) {
        refuse({"convert", source, target, option}, option.substr(0, option.find('=')));
    }
    refuse({"convert", source, target, "--grow", "--rotate=5"}, "--grow");
    refuse({"convert", source, target, "--width=5", "--width=6"}, "twice");
    EXPECT_FALSE(std::filesystem::exists(folder() / "b.bmp"));
}

} // namespace
} // namespace tool::testing
