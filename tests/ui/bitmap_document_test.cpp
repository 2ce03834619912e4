#include "compound/memory_disk.h"
#include "editing/bitmap_editor/bitmap_document.h"
#include "editing/bitmap_editor/imaging_error.h"
#include "imaging/encoder_pictures.h"
#include "imaging/encoding/encoders.h"
#include "imaging/picture_bytes.h"
#include "picture/picture.h"

#include <QColorSpace>

#include <algorithm>
#include <gtest/gtest.h>
#include <string_view>

namespace {

namespace operations = imaging::operations;
using compound::ErrorCode;
using editing::BitmapDocument;
using editing::HistoryOverflow;
using editing::HistoryStack;
using imaging::PictureKind;
using imaging::testing::Alpha;
using imaging::testing::Bytes;
using imaging::testing::colourful;
using operations::Edit;

// The same pixels, with alpha, whatever the image's format.
QImage pixelsOf(const QImage& image) {
    return image.convertToFormat(QImage::Format_ARGB32);
}

// All that a step back has to bring back.
struct State {
    QImage pixels;
    QPoint hotSpot;
    int dotsPerMeter = 0;
    QColorSpace colours;

    bool operator==(const State&) const = default;
};

State stateOf(const BitmapDocument& document) {
    const auto& picture = document.picture();
    return {pixelsOf(picture.image), picture.hotSpot, picture.image.dotsPerMeterX(),
            picture.image.colorSpace()};
}

const std::vector<Edit>& someEdits() {
    static const std::vector<Edit> edits{
        operations::Flip{},
        operations::Rotation{3330, operations::Canvas::Grow, qRgb(255, 0, 0)},
        operations::ColourChange{operations::ColourProperty::Hue, 4000},
        operations::Rotation{9000, operations::Canvas::Grow, qRgb(0, 0, 0)},
        operations::Inversion{},
        operations::Reverse{}};
    return edits;
}

class BitmapDocumentTest : public testing::Test {
  protected:
    BitmapDocumentTest() {
        disk_.makeFolder("/library");
        disk_.makeFolder("/temporary");
    }

    std::unique_ptr<BitmapDocument> open(const Bytes& bytes, const std::string& type) {
        return std::make_unique<BitmapDocument>(
            library_, store::StoredPicture{{u"P"}, {1, 1, type}, bytes}, "/temporary");
    }

    std::unique_ptr<BitmapDocument> openSmall() {
        return open(imaging::encode(colourful({5, 3}, Alpha::Any), PictureKind::Bmp), "BMP");
    }

    Bytes written(const BitmapDocument& document) { return disk_.content(document.write()); }

    bool exists(const std::string& name) { return disk_.exists("/temporary/" + name); }

    void failWith(ErrorCode code, MemoryDisk::Call failing) {
        disk_.setInterceptor([=](MemoryDisk::Call call) {
            if (call == failing) {
                throw compound::Error(code, "/temporary/x", "told to fail");
            }
        });
    }

    MemoryDisk disk_;
    store::Library library_{disk_, "/library", {}};
};

class EveryKindEdited : public BitmapDocumentTest,
                        public testing::WithParamInterface<PictureKind> {};

INSTANTIATE_TEST_SUITE_P(Kinds, EveryKindEdited,
                         testing::Values(PictureKind::Bmp, PictureKind::Gif, PictureKind::Jpg,
                                         PictureKind::Ico, PictureKind::Cur, PictureKind::Emf),
                         [](const auto& kind) {
                             return imaging::typeCodeOf(kind.param).toStdString();
                         });

TEST_P(EveryKindEdited, ComesBackPixelForPixelAndIsWrittenInItsOwnFormat) {
    const std::string type = imaging::typeCodeOf(GetParam()).toStdString();
    QImage image = colourful({13, 7}, Alpha::OnOrOff);
    image.setDotsPerMeterX(5000);
    image.setDotsPerMeterY(5000);
    image.setColorSpace(QColorSpace::AdobeRgb);
    const auto document = open(imaging::encode(image, GetParam(), {{}, {12, 2}}), type);
    EXPECT_EQ(document->format(), GetParam());
    EXPECT_TRUE(exists("EditPicture." + type));
    const State original = stateOf(*document);
    std::vector<State> states{original};
    for (const Edit& edit : someEdits()) {
        document->change(edit);
        states.push_back(stateOf(*document));
        EXPECT_FALSE(states.back() == states[states.size() - 2]);
        EXPECT_TRUE(exists("Undo" + std::to_string(states.size() - 1) + "." + type));
    }
    for (std::size_t step = states.size() - 1; step-- > 0;) {
        document->undo();
        EXPECT_TRUE(stateOf(*document) == states[step]) << step;
        EXPECT_FALSE(exists("Undo" + std::to_string(step + 1) + "." + type));
    }
    EXPECT_FALSE(document->canUndo());
    for (std::size_t step = 1; step < states.size(); ++step) {
        document->redo();
        EXPECT_TRUE(stateOf(*document) == states[step]) << step;
    }
    EXPECT_FALSE(document->canRedo());

    const Bytes file = written(*document);
    EXPECT_TRUE(exists("Picture." + type));
    EXPECT_EQ(picture::measure(file).kind, GetParam());
    const auto again = open(file, type);
    EXPECT_EQ(again->picture().image.size(), document->picture().image.size());
    if (GetParam() == PictureKind::Cur) {
        EXPECT_EQ(again->picture().hotSpot, document->picture().hotSpot);
    }
    if (GetParam() != PictureKind::Jpg && GetParam() != PictureKind::Gif) { // those lose a little
        EXPECT_EQ(pixelsOf(again->picture().image), pixelsOf(document->picture().image));
    }
}

TEST_F(BitmapDocumentTest, TheContentTellsTheFormatAndTheRecordTheName) {
    const Bytes jpg = imaging::encode(colourful({8, 8}, Alpha::Opaque), PictureKind::Jpg);
    const auto document = open(jpg, "BMP");
    EXPECT_EQ(document->format(), PictureKind::Jpg);
    EXPECT_EQ(document->write(), "/temporary/Picture.BMP");
    EXPECT_EQ(picture::measure(disk_.content("/temporary/Picture.BMP")).kind, PictureKind::Jpg);
    EXPECT_EQ(open(jpg, "")->extension(), "JPG") << "without a record";
}

TEST_F(BitmapDocumentTest, AnIconKeepsItsOtherFrames) {
    const Bytes small = imaging::testing::iconFrame32(1, 1, {0xFF102030}, {0});
    const Bytes large = imaging::testing::iconFrame32(
        2, 2, {0xFF000001, 0xFF000002, 0xFF000003, 0xFF000004}, {0, 0});
    const auto document = open(imaging::testing::iconFile(1, {{small}, {large}}), "ICO");
    ASSERT_EQ(document->picture().image.size(), QSize(2, 2));
    document->change(operations::Inversion{});
    document->undo();
    document->change(operations::Flip{});
    const Bytes file = written(*document);
    EXPECT_NE(std::search(file.begin(), file.end(), small.begin(), small.end()), file.end());
    EXPECT_EQ(open(file, "ICO")->picture().image.pixel(0, 0), 0xFF000001U) << "was at the bottom";
}

// Else programs that go by the tag would turn the upright picture once more.
TEST_F(BitmapDocumentTest, ATurnedJpgIsUprightAndLosesItsTag) {
    const auto hasExif = [](const Bytes& file) {
        const std::string_view text(reinterpret_cast<const char*>(file.data()), file.size());
        return text.find("Exif") != std::string_view::npos;
    };
    const Bytes turned = imaging::testing::turnedJpg(colourful({24, 8}, Alpha::Opaque));
    ASSERT_TRUE(hasExif(turned));
    const auto document = open(turned, "JPG");
    EXPECT_EQ(document->picture().image.size(), QSize(8, 24));
    const Bytes file = written(*document);
    EXPECT_FALSE(hasExif(file));
    EXPECT_EQ(open(file, "JPG")->picture().image.size(), QSize(8, 24));
}

TEST_F(BitmapDocumentTest, WhatIsNoPictureIsFaulty) {
    for (const std::size_t size : {std::size_t{0}, std::size_t{40}}) {
        try {
            open(Bytes(size), "BMP");
            ADD_FAILURE() << size;
        } catch (const editing::ImagingError& error) {
            EXPECT_EQ(error.number(), 20009);
        }
    }
}

TEST_F(BitmapDocumentTest, TheMenusFollowTheCounts) {
    const auto document = openSmall();
    const auto expect = [&](int undo, bool canUndo, int redo, bool canRedo) {
        EXPECT_EQ(document->undoCount(), undo);
        EXPECT_EQ(document->canUndo(), canUndo);
        EXPECT_EQ(document->redoCount(), redo);
        EXPECT_EQ(document->canRedo(), canRedo);
    };
    expect(0, false, 0, false);
    document->change(operations::Flip{});
    expect(1, true, 0, false);
    document->change(operations::Flip{});
    document->undo();
    expect(1, true, 1, true);
    document->undo();
    expect(0, false, 2, true);
    document->redo();
    expect(1, true, 1, true);
    document->change(operations::Inversion{});
    expect(2, true, 0, false);
    EXPECT_FALSE(exists("Redo1.BMP"));
    document->undo();
    document->startHistoryAfresh(); // one to be undone, one to be done again
    expect(0, false, 1, false);
    EXPECT_TRUE(exists("Undo1.BMP"));
    EXPECT_TRUE(exists("Redo1.BMP"));
    const State now = stateOf(*document);
    document->undo();
    expect(0, false, 1, false);
    EXPECT_TRUE(stateOf(*document) == now);
    document->change(operations::Reverse{});
    expect(1, true, 0, false);
    EXPECT_FALSE(exists("Redo1.BMP"));
    document->undo();
    EXPECT_TRUE(stateOf(*document) == now) << "not the file that was left from before";
    document->change(operations::Flip{});
    document->removeHistory();
    expect(0, false, 0, false);
    EXPECT_FALSE(exists("Undo1.BMP"));
}

TEST_F(BitmapDocumentTest, AMissingHistoryFileChangesNothingButCounts) {
    const auto document = openSmall();
    const State original = stateOf(*document);
    for (int i = 0; i < 3; ++i) {
        document->change(operations::Rotation{9000, operations::Canvas::Grow});
    }
    const State changed = stateOf(*document);
    disk_.removeTemporary("/temporary/Undo3.BMP");
    disk_.setContent("/temporary/Undo2.BMP", Bytes(10));
    document->undo();
    EXPECT_TRUE(stateOf(*document) == changed);
    EXPECT_EQ(document->undoCount(), 2);
    document->undo();
    EXPECT_TRUE(stateOf(*document) == changed);
    EXPECT_EQ(document->undoCount(), 1);
    EXPECT_EQ(document->redoCount(), 2);
    document->undo();
    EXPECT_TRUE(stateOf(*document) == original);
    EXPECT_FALSE(document->canUndo());
    disk_.removeTemporary("/temporary/Redo3.BMP");
    document->redo();
    EXPECT_TRUE(stateOf(*document) == original);
    EXPECT_EQ(document->redoCount(), 2);
}

TEST_F(BitmapDocumentTest, TheStepTooManyFailsAndChangesNothing) {
    const auto document = openSmall();
    for (int i = 0; i < HistoryStack::kMost; ++i) {
        document->change(operations::Inversion{});
    }
    const State before = stateOf(*document);
    EXPECT_THROW(document->change(operations::Flip{}), HistoryOverflow);
    EXPECT_TRUE(stateOf(*document) == before);
    EXPECT_EQ(document->undoCount(), 255);
    EXPECT_FALSE(exists("Undo256.BMP"));
    for (int i = 0; i < HistoryStack::kMost; ++i) {
        document->undo();
    }
    EXPECT_EQ(document->redoCount(), 255);
    EXPECT_FALSE(document->canUndo());
    document->change(operations::Flip{});
    EXPECT_EQ(document->undoCount(), 1);
    EXPECT_FALSE(exists("Redo255.BMP"));
}

TEST_F(BitmapDocumentTest, AFullOrReadOnlyFolderLosesNoEdit) {
    const auto document = openSmall();
    document->change(operations::Flip{});
    document->change(operations::Inversion{});
    document->undo();
    const State before = stateOf(*document);
    const auto expectUntouched = [&] {
        disk_.setInterceptor({});
        EXPECT_TRUE(stateOf(*document) == before);
        EXPECT_EQ(document->undoCount(), 1);
        EXPECT_EQ(document->redoCount(), 1);
        EXPECT_TRUE(document->canUndo() && document->canRedo());
        EXPECT_FALSE(exists("Undo2.BMP")) << "a part of a file";
        EXPECT_FALSE(exists("Redo2.BMP"));
    };
    document->write(); // a stale one
    for (const auto& [code, call] : {std::pair(ErrorCode::NoSpace, MemoryDisk::Call::Write),
                                     std::pair(ErrorCode::Denied, MemoryDisk::Call::Folder)}) {
        for (const auto& step : std::initializer_list<std::function<void()>>{
                 [&] { document->change(operations::Reverse{}); }, [&] { document->undo(); },
                 [&] { document->redo(); }, [&] { document->write(); }}) {
            failWith(code, call);
            EXPECT_THROW(step(), compound::Error);
            expectUntouched();
        }
    }
    document->undo();
    document->redo();
    document->redo();
    EXPECT_EQ(document->undoCount(), 2) << "all goes on where the disk does";
}

TEST_F(BitmapDocumentTest, APictureThatWouldBeTooLargeIsLeftAlone) {
    const auto document =
        open(imaging::encode(QImage(30000, 40, QImage::Format_RGB32), PictureKind::Bmp), "BMP");
    document->change(operations::Flip{});
    document->undo();
    EXPECT_THROW(document->change(operations::Rotation{4500, operations::Canvas::Grow}),
                 std::length_error);
    EXPECT_EQ(document->picture().image.size(), QSize(30000, 40));
    EXPECT_FALSE(document->canUndo());
    EXPECT_TRUE(document->canRedo());
}

} // namespace
